#include <algorithm>
#include <array>

#include <xmptoolkit/model/Names.h>
#include <xmptoolkit/rdf/RDFAttributes.h>

namespace xmptoolkit {

namespace {

using zelcore::xml::AttributeView;
using zelcore::xml::NameView;

constexpr std::array<std::string_view, 5> kKnownWithoutPrefix = {"about", "ID", "parseType",
                                                                 "resource", "type"};

// The name, in RDF's namespace if RDF reads it there without a prefix.
NameView Interpret(NameView name, const Refuser& refuser) {
  if (name.mLocalName.find(':') != std::string_view::npos) {
    refuser.Refuse(kXMPErr_BadXML, WrittenName(name) + " is not a name with a namespace prefix");
  }
  if (!name.mURI.empty()) return name;
  if (!name.mPrefix.empty()) {
    refuser.Refuse(kXMPErr_BadXML,
                   "the prefix of the attribute " + WrittenName(name) + " is not declared");
  }
  const auto known =
      std::find(kKnownWithoutPrefix.begin(), kKnownWithoutPrefix.end(), name.mLocalName);
  if (known == kKnownWithoutPrefix.end()) {
    refuser.Refuse(kXMPErr_BadRDF, "the attribute " + WrittenName(name) + " has no namespace");
  }
  name.mURI = kRDFNamespace;
  return name;
}

// An attribute of XML or RDF is not a property, except for rdf:type.
bool IsProperty(const NameView& name) {
  return name.mURI != kXMLNamespace && (name.mURI != kRDFNamespace || name.mLocalName == "type");
}

// Where an attribute of XML's or RDF's own goes; null for one that is not allowed.
std::optional<std::string_view>* TargetOf(const NameView& name, const AllowedAttributes& allowed,
                                          RDFAttributes& sorted) {
  if (name.mURI == kXMLNamespace) return name.mLocalName == "lang" ? &sorted.mLang : nullptr;
  if (name.mLocalName == "about") return allowed.mAbout ? &sorted.mAbout : nullptr;
  if (name.mLocalName == "value") return allowed.mValue ? &sorted.mValue : nullptr;
  if (!allowed.mValueForm) return nullptr;
  if (name.mLocalName == "resource") return &sorted.mResource;
  if (name.mLocalName == "datatype") return &sorted.mDatatype;
  if (name.mLocalName == "parseType") return &sorted.mParseType;
  return nullptr;
}

}  // namespace

std::string WrittenName(const NameView& name) {
  std::string written(name.mPrefix);
  if (!written.empty()) written += ':';
  return written.append(name.mLocalName);
}

bool IsRDF(const NameView& name, std::string_view localName) {
  return name.mLocalName == localName && name.mURI == kRDFNamespace;
}

RDFAttributes SortAttributes(const NameView& element, std::span<const AttributeView> attributes,
                             const AllowedAttributes& allowed, const Refuser& refuser) {
  RDFAttributes sorted;
  for (const AttributeView& attribute : attributes) {
    const NameView name = Interpret(attribute.mName, refuser);
    const bool isProperty = IsProperty(name);
    std::optional<std::string_view>* target =
        isProperty ? nullptr : TargetOf(name, allowed, sorted);
    if (isProperty ? !allowed.mProperties : target == nullptr) {
      refuser.Refuse(kXMPErr_BadRDF,
                     WrittenName(element) + " must not have the attribute " + WrittenName(name));
    }
    if (isProperty) {
      sorted.mProperties.push_back({name, attribute.mValue});
      continue;
    }
    if (target->has_value()) {
      refuser.Refuse(kXMPErr_BadRDF,
                     WrittenName(element) + " has the attribute " + WrittenName(name) + " twice");
    }
    *target = attribute.mValue;
  }
  return sorted;
}

}  // namespace xmptoolkit
