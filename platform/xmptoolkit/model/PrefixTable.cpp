#include <xmptoolkit/model/NamespaceRegistry.h>
#include <xmptoolkit/model/PrefixTable.h>
#include <xmptoolkit/model/Text.h>

namespace xmptoolkit {

PrefixChooser::PrefixChooser() : mTaken{"rdf", "x"} {}

bool PrefixChooser::Take(std::string_view prefix) {
  if (prefix.empty() || IsReservedName(prefix)) return false;
  return mTaken.emplace(prefix).second;
}

std::string PrefixChooser::Fresh() {
  std::string prefix;
  do {
    prefix = "ns" + std::to_string(++mLastFresh);
  } while (!Take(prefix));
  return prefix;
}

PrefixTable::PrefixTable(const Document& document)
    : mDocument(document), mPrefixes(document.mNames.NamespaceCount()) {
  std::vector<bool> isUsed(mPrefixes.size());
  mPrefixes[kRDFSpace] = "rdf";
  isUsed[kRDFSpace] = isUsed[kXMLSpace] = true;
  for (const Node& property : document.mRoot.Children()) Collect(property, isUsed);
  Assign();
}

void PrefixTable::Collect(const Node& node, std::vector<bool>& isUsed) {
  const NamespaceId space = mDocument.mNames.NamespaceOf(node.Name());
  if (!isUsed[space]) {
    isUsed[space] = true;
    mDeclared.push_back(space);
  }
  for (const Node& child : node.Children()) Collect(child, isUsed);
  for (const Node& qualifier : node.Qualifiers()) Collect(qualifier, isUsed);
}

void PrefixTable::Assign() {
  const NameTable& names = mDocument.mNames;
  PrefixChooser chooser;
  const auto offer = [&](NamespaceId space, std::string_view prefix) {
    if (mPrefixes[space].empty() && chooser.Take(prefix)) mPrefixes[space] = prefix;
  };
  for (const NamespaceId space : mDeclared) {
    if (names.URI(space) == kMetaNamespace) mPrefixes[space] = "x";
    offer(space, names.FilePrefix(space));
  }
  for (const NamespaceId space : mDeclared) {
    if (!mPrefixes[space].empty()) continue;
    offer(space,
          NamespaceRegistry::Global().PrefixOf(names.URI(space)).value_or(std::string_view()));
  }
  for (const NamespaceId space : mDeclared) {
    if (mPrefixes[space].empty()) mPrefixes[space] = chooser.Fresh();
  }
}

}  // namespace xmptoolkit
