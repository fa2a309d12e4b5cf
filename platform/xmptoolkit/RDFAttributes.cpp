#include "RDFAttributes.h"

#include <algorithm>
#include <array>

#include "Names.h"

namespace xmptoolkit {

namespace {

using zelcore::xml::AttributeView;
using zelcore::xml::NameView;

constexpr std::array<std::string_view, 5> kKnownWithoutPrefix = {"about", "ID", "parseType",
                                                                 "resource", "type"};

// The name with RDF's namespace where RDF says that it is meant.
NameView Interpret(NameView name, const Refusal& refuse) {
  if (name.mLocalName.find(':') != std::string_view::npos) {
    refuse(kXMPErr_BadXML, WrittenName(name) + " is no name with a namespace prefix");
  }
  if (!name.mURI.empty()) return name;
  if (!name.mPrefix.empty()) {
    refuse(kXMPErr_BadXML, "the prefix of the attribute " + WrittenName(name) + " is not declared");
  }
  const auto known =
      std::find(kKnownWithoutPrefix.begin(), kKnownWithoutPrefix.end(), name.mLocalName);
  if (known == kKnownWithoutPrefix.end()) {
    refuse(kXMPErr_BadRDF, "the attribute " + WrittenName(name) + " has no namespace");
  }
  name.mURI = kRDFNamespace;
  return name;
}

// Where an attribute of RDF's own goes; null for one that is not allowed.
std::optional<std::string_view>* TargetOf(std::string_view localName, RDFAttributes& sorted,
                                          const AllowedAttributes& allowed) {
  if (localName == "about") return allowed.mAbout ? &sorted.mAbout : nullptr;
  if (localName == "value") return allowed.mValue ? &sorted.mValue : nullptr;
  if (!allowed.mValueForm) return nullptr;
  if (localName == "resource") return &sorted.mResource;
  if (localName == "datatype") return &sorted.mDatatype;
  if (localName == "parseType") return &sorted.mParseType;
  return nullptr;
}

}  // namespace

std::string WrittenName(const NameView& name) {
  std::string written(name.mPrefix);
  if (!written.empty()) written += ':';
  return written.append(name.mLocalName);
}

RDFAttributes SortAttributes(const NameView& element, std::span<const AttributeView> attributes,
                             const AllowedAttributes& allowed, const Refusal& refuse) {
  RDFAttributes sorted;
  const auto refuseAttribute = [&](const NameView& name) {
    refuse(kXMPErr_BadRDF,
           WrittenName(element) + " must not have the attribute " + WrittenName(name));
  };
  for (const AttributeView& attribute : attributes) {
    const NameView name = Interpret(attribute.mName, refuse);
    std::optional<std::string_view>* target = nullptr;
    if (name.mURI == kXMLNamespace) {
      if (name.mLocalName != "lang") refuseAttribute(name);
      target = &sorted.mLang;
    } else if (name.mURI != kRDFNamespace || name.mLocalName == "type") {
      if (!allowed.mProperties) refuseAttribute(name);
      sorted.mProperties.push_back({name, attribute.mValue});
      continue;
    } else {
      target = TargetOf(name.mLocalName, sorted, allowed);
    }
    if (target == nullptr) return refuseAttribute(name), sorted;
    if (target->has_value()) {
      refuse(kXMPErr_BadRDF,
             WrittenName(element) + " has the attribute " + WrittenName(name) + " twice");
    }
    *target = attribute.mValue;
  }
  return sorted;
}

}  // namespace xmptoolkit
