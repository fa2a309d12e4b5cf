#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include <xmptoolkit/model/Document.h>
#include <xmptoolkit/patch/SourceTree.h>

namespace xmptoolkit {

// The prefixes for nodes that will be written into an element of a packet: those in force there,
// and new ones for namespaces that have none.
class ScopedPrefixes {
 public:
  ScopedPrefixes(const SourceTree& tree, std::size_t element, const Document& document,
                 const std::vector<const Node*>& nodes);

  const std::vector<std::string>& Prefixes() const { return mPrefixes; }  // by namespace
  // The namespaces to declare, in the order of their first use.
  const std::vector<NamespaceId>& New() const { return mNew; }

 private:
  void Collect(const Node& node);
  void Add(NamespaceId space);
  bool Offer(NamespaceId space, std::string_view prefix);

  const SourceTree& mTree;
  const std::size_t mElement;
  const Document& mDocument;
  std::vector<std::string> mPrefixes;
  std::vector<NamespaceId> mNew;
  std::unordered_set<std::string> mTaken;  // of the new ones
};

}  // namespace xmptoolkit
