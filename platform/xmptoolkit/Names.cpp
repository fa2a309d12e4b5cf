#include "Names.h"

namespace xmptoolkit {

NameTable::NameTable() {
  AddNamespace(kRDFNamespace, "rdf");
  AddNamespace(kXMLNamespace, "xml");
  AddName(kRDFSpace, "li");
  AddName(kXMLSpace, "lang");
  AddName(kRDFSpace, "type");
  AddName(kRDFSpace, "datatype");
  AddName(kRDFSpace, "value");
}

NamespaceId NameTable::AddNamespace(std::string_view uri, std::string_view prefix) {
  if (const auto found = mNamespaceByURI.find(uri); found != mNamespaceByURI.end()) {
    Namespace& known = mNamespaces[found->second];
    if (known.mPrefix.empty()) known.mPrefix = prefix;
    return found->second;
  }
  const auto number = static_cast<NamespaceId>(mNamespaces.size());
  mNamespaces.push_back({std::string(uri), std::string(prefix), {}});
  mNamespaceByURI.emplace(uri, number);
  return number;
}

NameId NameTable::AddName(NamespaceId space, std::string_view localName) {
  NumberByText& names = mNamespaces[space].mNames;
  if (const auto found = names.find(localName); found != names.end()) return found->second;
  const auto number = static_cast<NameId>(mNames.size());
  mNames.push_back({space, std::string(localName)});
  names.emplace(localName, number);
  return number;
}

std::optional<NameId> NameTable::FindName(std::string_view uri, std::string_view localName) const {
  const auto space = mNamespaceByURI.find(uri);
  if (space == mNamespaceByURI.end()) return std::nullopt;
  const NumberByText& names = mNamespaces[space->second].mNames;
  const auto found = names.find(localName);
  if (found == names.end()) return std::nullopt;
  return found->second;
}

}  // namespace xmptoolkit
