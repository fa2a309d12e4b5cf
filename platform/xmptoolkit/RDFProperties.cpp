// The part of RDFHandler that reads property elements and makes nodes of them.

#include <charconv>
#include <utility>

#include "RDFHandler.h"
#include "Text.h"

namespace xmptoolkit {

using zelcore::xml::AttributeView;
using zelcore::xml::NameView;

namespace {

// Gives a property the language of the element around it, where it has none. What has its own on
// rdf:value leaves the outer one to its qualifiers.
void HandLang(const Node& lang, Node& node) {
  if (node.FindQualifier(kLangName) == nullptr) {
    if (!node.IsURI() || !node.Qualifiers().Empty()) node.AddQualifier(Node(lang));
  } else if (node.Is(Node::kLangAtValue)) {
    NodeList& qualifiers = node.MutableQualifiers();
    for (std::size_t i = 0; i < qualifiers.Size(); ++i) {
      if (qualifiers[i].Name() != kLangName && qualifiers[i].Name() != kDatatypeName) {
        HandLang(lang, qualifiers[i]);
      }
    }
  }
}

}  // namespace

void RDFHandler::StartProperty(const NameView& name, Attributes attributes) {
  const FrameKind holder = mFrames.back().mKind;
  const NameId id =
      holder == FrameKind::kContainer ? ResolveItemName(name) : ResolvePropertyName(name);
  AllowedAttributes allowed;
  allowed.mValueForm = allowed.mValue = allowed.mProperties = true;
  const RDFAttributes sorted = SortAttributes(name, attributes, allowed, Refuser());

  Node node(id);
  // A URI has no language, but hands that of its element to the texts beside it.
  const bool isMereURI = sorted.mResource && sorted.mProperties.empty();
  if (sorted.mLang || !isMereURI) AddLang(node, sorted.mLang);
  node.AddRemarksBefore(std::exchange(mFrames.back().mRemarks, {}));
  if (id != kValueName) {
    CheckNesting(1);
    ++mNesting;
  }
  PushFrame(FrameKind::kProperty, name);
  mOpen.emplace_back(std::move(node));
  ApplyAttributes(name, sorted);
}

NameId RDFHandler::ResolvePropertyName(const NameView& name) {
  const bool isTop = mFrames.back().mKind == FrameKind::kDescription;
  if (!isTop && IsRDF(name, "value")) {
    if (mOpen.back().mNode.Name() == kValueName) {
      Refuse(kXMPErr_BadRDF, "rdf:value stands directly within rdf:value");
    }
    if (mOpen.back().mValue) Refuse(kXMPErr_BadRDF, "a second rdf:value stands here");
    return kValueName;
  }
  const NameId id = ResolveName(name);
  CheckDuplicate(OwnerOfProperties().Children(), id, name);
  return id;
}

NameId RDFHandler::ResolveItemName(const NameView& name) {
  Frame& container = mFrames.back();
  const std::size_t place = mOpen.back().mNode.Children().Size() + 1;
  std::size_t number = 0;
  if (IsRDF(name, "li")) {
    number = ++container.mNumberedItems;
  } else if (name.mURI == kRDFNamespace && name.mLocalName.starts_with('_')) {
    const std::string_view digits = name.mLocalName.substr(1);
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (std::to_string(number) != digits) number = 0;
  }
  if (number == 0) {
    Refuse(kXMPErr_BadRDF, WrittenName(container.mName) + " holds a " + WrittenName(name) +
                               ", where only rdf:li may stand");
  }
  if (number != place) {
    Refuse(kXMPErr_BadRDF, WrittenName(name) + " is item " + std::to_string(number) +
                               ", but stands in place " + std::to_string(place));
  }
  return kItemName;
}

NameId RDFHandler::ResolveName(const NameView& name) {
  if (name.mURI.empty()) {
    Refuse(kXMPErr_BadRDF, "the property " + WrittenName(name) + " has no namespace");
  }
  const bool isForeign = name.mURI != kRDFNamespace && name.mURI != kXMLNamespace;
  if (!isForeign && !IsRDF(name, "type")) {
    Refuse(kXMPErr_BadRDF, WrittenName(name) + " stands where only a property may stand");
  }
  return mDocument.mNames.AddName(mDocument.mNames.AddNamespace(name.mURI, name.mPrefix),
                                  name.mLocalName);
}

// What the attributes of a property element say of its value.
void RDFHandler::ApplyAttributes(const NameView& name, const RDFAttributes& attributes) {
  OpenProperty& property = mOpen.back();
  Node& node = property.mNode;
  const bool hasResource = attributes.mResource.has_value();
  if (attributes.mParseType) return ApplyParseType(name, attributes);
  if (attributes.mDatatype) {
    if (hasResource || attributes.HasProperties()) {
      Refuse(kXMPErr_BadRDF, WrittenName(name) + " has rdf:datatype, but its value is no text");
    }
    Node datatype(kDatatypeName);
    datatype.SetValue(std::string(*attributes.mDatatype));
    CheckNesting(1);
    return node.AddQualifier(std::move(datatype));
  }
  if (!hasResource && !attributes.HasProperties()) return;
  property.mContent = Content::kNone;
  if (hasResource) return ApplyResource(name, attributes);
  if (!attributes.mValue) {
    node.AddForm(kXMP_PropValueIsStruct);
    return AddAttributeFields(node, attributes, false);
  }
  if (node.Name() == kValueName) {
    Refuse(kXMPErr_BadRDF, "rdf:value has a value of its own within it");
  }
  node.AddForm(Node::kWrittenWithValue);
  node.SetValue(std::string(*attributes.mValue));
  AddAttributeQualifiers(node, attributes);
}

void RDFHandler::ApplyParseType(const NameView& name, const RDFAttributes& attributes) {
  if (*attributes.mParseType != "Resource") {
    Refuse(kXMPErr_BadRDF, "rdf:parseType is " + Quoted(*attributes.mParseType) +
                               ", where XMP only knows \"Resource\"");
  }
  if (attributes.mResource || attributes.mDatatype || attributes.HasProperties()) {
    Refuse(kXMPErr_BadRDF,
           WrittenName(name) + " has rdf:parseType and another attribute that describes its value");
  }
  mOpen.back().mContent = Content::kFields;
}

void RDFHandler::ApplyResource(const NameView& name, const RDFAttributes& attributes) {
  Node& node = mOpen.back().mNode;
  if (attributes.mValue) {
    Refuse(kXMPErr_BadRDF, WrittenName(name) + " has both rdf:resource and rdf:value");
  }
  node.AddForm(kXMP_PropValueIsURI);
  node.SetValue(std::string(*attributes.mResource));
  if (attributes.mProperties.empty()) return;
  if (node.Name() == kValueName) {
    Refuse(kXMPErr_BadRDF, "rdf:value has qualifiers of its own");
  }
  node.AddForm(Node::kQualifiersOfResource);
  AddAttributeQualifiers(node, attributes);
}

// An element that is no property hands its language on to the properties directly within it, since
// the document keeps languages at properties alone.
void RDFHandler::AddLang(Node& node, std::optional<std::string_view> own) {
  const std::optional<std::string_view> lang = own ? own : LangForProperties();
  if (!lang) return;
  Node qualifier(kLangName);
  qualifier.SetValue(std::string(*lang));
  node.AddQualifier(std::move(qualifier));
}

Node RDFHandler::MakeAttributeNode(const AttributeView& attribute) {
  const NameId id = ResolveName(attribute.mName);
  CheckNesting(1);
  Node node(id, id == kTypeName ? kXMP_PropValueIsURI : 0);
  node.SetValue(std::string(attribute.mValue));
  return node;
}

void RDFHandler::AddAttributeFields(Node& owner, const RDFAttributes& attributes,
                                    bool inheritLang) {
  for (const AttributeView& attribute : attributes.mProperties) {
    Node field = MakeAttributeNode(attribute);
    CheckDuplicate(owner.Children(), field.Name(), attribute.mName);
    if (inheritLang && field.Name() != kTypeName) AddLang(field, {});
    owner.Children().Append(std::move(field));
  }
}

void RDFHandler::AddAttributeQualifiers(Node& node, const RDFAttributes& attributes) {
  for (const AttributeView& attribute : attributes.mProperties) {
    Node qualifier = MakeAttributeNode(attribute);
    CheckDuplicate(node.Qualifiers(), qualifier.Name(), attribute.mName);
    node.AddQualifier(std::move(qualifier));
  }
}

void RDFHandler::SetValue(OpenProperty& owner, Node value) {
  if (owner.mNode.Name() == kValueName) {
    Refuse(kXMPErr_BadRDF, "rdf:value stands directly within rdf:value");
  }
  owner.mValue = std::move(value);
}

void RDFHandler::EndProperty(Frame& frame) {
  if (mOpen.back().mContent == Content::kFields) {
    FinishResource(mOpen.back(), std::move(frame.mRemarks));
  }
  OpenProperty property = std::move(mOpen.back());
  mOpen.pop_back();
  Node& node = property.mNode;
  if (property.mContent == Content::kAny) node.SetValue(std::move(property.mText));
  if (node.Name() == kValueName) {
    mOpen.back().mNode.AddRemarksBefore(node.RemarksBefore());
    return SetValue(mOpen.back(), std::move(node));
  }
  --mNesting;
  OwnerOfProperties().Children().Append(std::move(node));
}

// Without rdf:value, the properties of the resource are the fields of a struct; beside an
// rdf:value, they are its qualifiers.
void RDFHandler::FinishResource(OpenProperty& property, Remarks remarks) {
  Node& node = property.mNode;
  if (!property.mValue) {
    node.AddForm(kXMP_PropValueIsStruct);
    return node.AddRemarksAtEnd(std::move(remarks));
  }
  Node& value = *property.mValue;
  if (const Node* lang = value.FindQualifier(kLangName)) {
    HandLangToFields(node);
    node.AddForm(Node::kLangAtValue);
    node.AddQualifier(Node(*lang));
  }
  if (const Node* datatype = value.FindQualifier(kDatatypeName)) node.AddQualifier(Node(*datatype));
  NodeList qualifiers = std::exchange(node.Children(), std::move(value.Children()));
  for (std::size_t i = 0; i < qualifiers.Size(); ++i) node.AddQualifier(std::move(qualifiers[i]));
  node.AddForm(value.Form() | Node::kWrittenWithValue);
  node.SetValue(value.Value());
  node.AddRemarksAtEnd(value.RemarksAtEnd());
  if (node.IsSimple()) return node.AddRemarksBefore(std::move(remarks));
  node.AddRemarksAtEnd(std::move(remarks));
}

// Where rdf:value has a language of its own, that of the property is the language of the
// qualifiers.
void RDFHandler::HandLangToFields(Node& node) {
  const Node* outer = node.FindQualifier(kLangName);
  if (outer == nullptr) return;
  const Node lang = *outer;
  node.RemoveQualifier(node.Qualifiers().Find(kLangName));
  for (std::size_t i = 0; i < node.Children().Size(); ++i) HandLang(lang, node.Children()[i]);
}

void RDFHandler::CheckNesting(std::size_t below) const {
  if (mNesting + below > static_cast<std::size_t>(kXMP_MaxNesting)) {
    Refuse(kXMPErr_BadXMP,
           "properties nest deeper than " + std::to_string(kXMP_MaxNesting) + " levels");
  }
}

void RDFHandler::CheckDuplicate(const NodeList& nodes, NameId id, const NameView& name) const {
  if (nodes.Find(id) != NodeList::npos) {
    Refuse(kXMPErr_BadXMP, "the property " + WrittenName(name) + " is there already");
  }
}

std::optional<std::string_view> RDFHandler::LangForProperties() const {
  const Frame& frame = mFrames.back();
  if (frame.mKind == FrameKind::kProperty || !frame.mLang) return std::nullopt;
  return *frame.mLang;
}

Node& RDFHandler::OwnerOfProperties() {
  return mFrames.back().mKind == FrameKind::kDescription ? mDocument.mRoot : mOpen.back().mNode;
}

}  // namespace xmptoolkit
