#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include <xmptoolkit/model/Document.h>

namespace xmptoolkit {

// Hands out namespace prefixes that are all different and not reserved by XML or used by RDF.
class PrefixChooser {
 public:
  PrefixChooser();

  // Takes a prefix if it is free and may be used, and returns whether it did.
  bool Take(std::string_view prefix);

  // Takes the next free prefix of ns1, ns2, and so on.
  std::string Fresh();

 private:
  std::unordered_set<std::string> mTaken;
  std::size_t mLastFresh = 0;
};

// The prefixes under which a document's namespaces are written: the one in the file that was read,
// else the registry's, else a fresh one. If two namespaces have the same, the one that is used
// first keeps it.
class PrefixTable {
 public:
  explicit PrefixTable(const Document& document);

  // The namespaces to declare, in the order of their first use, without rdf and xml.
  const std::vector<NamespaceId>& Declared() const { return mDeclared; }
  const std::string& PrefixOf(NamespaceId space) const { return mPrefixes[space]; }
  const std::vector<std::string>& Prefixes() const { return mPrefixes; }  // by namespace

 private:
  void Collect(const Node& node, std::vector<bool>& isUsed);
  void Assign();

  const Document& mDocument;
  std::vector<NamespaceId> mDeclared;
  std::vector<std::string> mPrefixes;  // by namespace, empty where unused
};

}  // namespace xmptoolkit
