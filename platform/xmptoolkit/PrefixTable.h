#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "Document.h"

namespace xmptoolkit {

// Hands out namespace prefixes that are all different and that XML and RDF do not keep for
// themselves.
class PrefixChooser {
 public:
  PrefixChooser();

  // True, and the prefix is taken from now on, when it was free and may be used.
  bool Take(std::string_view prefix);

  // A prefix that nobody has taken: ns1, ns2, and so on.
  std::string Fresh();

 private:
  std::unordered_set<std::string> mTaken;
  std::size_t mLastFresh = 0;
};

// The prefixes under which a document's namespaces are written: the file's own where it had one,
// else the registry's, else a fresh one; where two namespaces want the same, the first to be used
// gets it.
class PrefixTable {
 public:
  explicit PrefixTable(const Document& document);

  // The namespaces to declare, in the order of their first use, rdf and xml left out.
  const std::vector<NamespaceId>& Declared() const { return mDeclared; }
  const std::string& PrefixOf(NamespaceId space) const { return mPrefixes[space]; }

 private:
  void Collect(const Node& node, std::vector<bool>& isUsed);
  void Assign();

  const Document& mDocument;
  std::vector<NamespaceId> mDeclared;
  std::vector<std::string> mPrefixes;  // by namespace, empty where unused
};

}  // namespace xmptoolkit
