#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The names that a document uses. Namespaces and names have small numbers, so that a node stores
// its name as one number and two names are compared in one step.
namespace xmptoolkit {

inline constexpr std::string_view kRDFNamespace = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
inline constexpr std::string_view kXMLNamespace = "http://www.w3.org/XML/1998/namespace";
inline constexpr std::string_view kXMLNSNamespace = "http://www.w3.org/2000/xmlns/";
inline constexpr std::string_view kMetaNamespace = "adobe:ns:meta/";

using NamespaceId = std::uint32_t;
using NameId = std::uint32_t;

// The first entries of every table.
inline constexpr NamespaceId kRDFSpace = 0;
inline constexpr NamespaceId kXMLSpace = 1;

inline constexpr NameId kItemName = 0;      // rdf:li, the name of every array item
inline constexpr NameId kLangName = 1;      // xml:lang
inline constexpr NameId kTypeName = 2;      // rdf:type
inline constexpr NameId kDatatypeName = 3;  // rdf:datatype
inline constexpr NameId kValueName = 4;     // rdf:value

class NameTable {
 public:
  NameTable();

  // The number of a namespace, or of a name, which is added when it is new. `prefix` is the one in
  // the file; the first that is not empty is kept.
  NamespaceId AddNamespace(std::string_view uri, std::string_view prefix = {});
  NameId AddName(NamespaceId space, std::string_view localName);

  // Nothing for a name that the document never used.
  std::optional<NameId> FindName(std::string_view uri, std::string_view localName) const;

  bool HasNamespace(std::string_view uri) const { return FindNamespace(uri).has_value(); }
  std::size_t NamespaceCount() const { return mNamespaces.size(); }
  const std::string& URI(NamespaceId space) const { return mNamespaces[space].mURI; }
  const std::string& FilePrefix(NamespaceId space) const { return mNamespaces[space].mPrefix; }

  NamespaceId NamespaceOf(NameId name) const { return mNames[name].mNamespace; }
  const std::string& LocalName(NameId name) const { return mNames[name].mLocalName; }

 private:
  struct Namespace {
    std::string mURI;
    std::string mPrefix;
  };
  struct Name {
    NamespaceId mNamespace;
    std::string mLocalName;
  };
  using Index = std::unordered_multimap<std::size_t, std::uint32_t>;  // number by hash

  std::optional<NamespaceId> FindNamespace(std::string_view uri) const;
  std::optional<NameId> FindName(NamespaceId space, std::string_view localName) const;

  // Small tables have no index; see Names.cpp.
  std::vector<Namespace> mNamespaces;
  std::vector<Name> mNames;
  Index mNamespaceIndex;
  Index mNameIndex;
};

}  // namespace xmptoolkit
