#include <xmptoolkit/model/NamespaceRegistry.h>
#include <xmptoolkit/model/Text.h>
#include <xmptoolkit/patch/ScopedPrefixes.h>

namespace xmptoolkit {

ScopedPrefixes::ScopedPrefixes(const SourceTree& tree, std::size_t element,
                               const Document& document, const std::vector<const Node*>& nodes)
    : mTree(tree),
      mElement(element),
      mDocument(document),
      mPrefixes(document.mNames.NamespaceCount()) {
  mPrefixes[kXMLSpace] = "xml";
  mPrefixes[kRDFSpace] = "rdf";
  if (tree.NamespaceOf(element, "rdf") != kRDFNamespace) mNew.push_back(kRDFSpace);
  for (const Node* node : nodes) Collect(*node);
}

void ScopedPrefixes::Collect(const Node& node) {
  const NamespaceId space = mDocument.mNames.NamespaceOf(node.Name());
  if (mPrefixes[space].empty()) Add(space);
  for (const Node& child : node.Children()) Collect(child);
  for (const Node& qualifier : node.Qualifiers()) Collect(qualifier);
}

void ScopedPrefixes::Add(NamespaceId space) {
  const std::string& uri = mDocument.mNames.URI(space);
  if (auto prefix = mTree.PrefixOf(mElement, uri)) {
    mPrefixes[space] = std::move(*prefix);
    return;
  }
  mNew.push_back(space);
  if (Offer(space, mDocument.mNames.FilePrefix(space))) return;
  if (Offer(space, NamespaceRegistry::Global().PrefixOf(uri).value_or(std::string_view()))) return;
  for (std::size_t number = 1; !Offer(space, "ns" + std::to_string(number)); ++number) {
  }
}

// A prefix that is in force for another namespace stays so.
bool ScopedPrefixes::Offer(NamespaceId space, std::string_view prefix) {
  if (prefix.empty() || prefix == "rdf" || IsReservedName(prefix)) return false;
  if (!mTree.NamespaceOf(mElement, prefix).empty()) return false;
  if (!mTaken.emplace(prefix).second) return false;
  mPrefixes[space] = prefix;
  return true;
}

}  // namespace xmptoolkit
