#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <xmptoolkit/rdf/Refuser.h>
#include <zelcore/xml/SAXDriver.h>

namespace xmptoolkit {

// The name as the file writes it.
std::string WrittenName(const zelcore::xml::NameView& name);

// True for a name in RDF's namespace.
bool IsRDF(const zelcore::xml::NameView& name, std::string_view localName);

// The attributes of an element of RDF, sorted by what they mean. Valid as long as the event.
struct RDFAttributes {
  std::optional<std::string_view> mLang;                 // xml:lang
  std::optional<std::string_view> mAbout;                // rdf:about
  std::optional<std::string_view> mResource;             // rdf:resource
  std::optional<std::string_view> mDatatype;             // rdf:datatype
  std::optional<std::string_view> mParseType;            // rdf:parseType
  std::optional<std::string_view> mValue;                // rdf:value
  std::vector<zelcore::xml::AttributeView> mProperties;  // those of schemas, and rdf:type

  bool HasProperties() const { return mValue.has_value() || !mProperties.empty(); }
};

// What an element may carry besides xml:lang.
struct AllowedAttributes {
  bool mAbout = false;
  bool mValueForm = false;  // rdf:resource, rdf:datatype, rdf:parseType
  bool mValue = false;
  bool mProperties = false;
};

// Sorts the attributes of `element` and refuses those that RDF or XMP do not allow there. As RDF
// asks, "about", "ID", "resource", "parseType" and "type" without prefix are those of RDF.
RDFAttributes SortAttributes(const zelcore::xml::NameView& element,
                             std::span<const zelcore::xml::AttributeView> attributes,
                             const AllowedAttributes& allowed, const Refuser& refuser);

}  // namespace xmptoolkit
