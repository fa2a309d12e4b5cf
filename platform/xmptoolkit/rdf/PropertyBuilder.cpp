#include <algorithm>
#include <charconv>
#include <utility>

#include <xmptoolkit/model/Text.h>
#include <xmptoolkit/rdf/PropertyBuilder.h>

namespace xmptoolkit {

using zelcore::xml::AttributeView;
using zelcore::xml::NameView;

namespace {

void AddLang(Node& node, std::optional<std::string_view> lang) {
  if (!lang) return;
  Node qualifier(kLangName);
  qualifier.SetValue(std::string(*lang));
  node.AddQualifier(std::move(qualifier));
}

// Gives a property the language of the element around it if it has none. A property with its own
// language on rdf:value passes the outer one to its qualifiers.
void PassLang(const Node& lang, Node& node) {
  if (node.FindQualifier(kLangName) == nullptr) {
    if (!node.IsURI() || !node.Qualifiers().Empty()) node.AddQualifier(Node(lang));
  } else if (node.Is(Node::kLangAtValue)) {
    NodeList& qualifiers = node.MutableQualifiers();
    for (std::size_t i = 0; i < qualifiers.Size(); ++i) {
      if (qualifiers[i].Name() != kLangName && qualifiers[i].Name() != kDatatypeName) {
        PassLang(lang, qualifiers[i]);
      }
    }
  }
}

// If rdf:value has its own language, that of the property is the language of the qualifiers, which
// are still the node's children.
void PassLangToChildren(Node& node) {
  const Node* outer = node.FindQualifier(kLangName);
  if (outer == nullptr) return;
  const Node lang = *outer;
  node.RemoveQualifier(node.Qualifiers().Find(kLangName));
  for (std::size_t i = 0; i < node.Children().Size(); ++i) PassLang(lang, node.Children()[i]);
}

}  // namespace

NameId PropertyBuilder::ResolvePropertyName(const NameView& name) {
  if (!mOpen.empty() && IsRDF(name, "value")) {
    if (mOpen.back().mNode.Name() == kValueName) {
      mRefuser.Refuse(kXMPErr_BadRDF, "rdf:value is directly within rdf:value");
    }
    if (mOpen.back().mValue) mRefuser.Refuse(kXMPErr_BadRDF, "a second rdf:value");
    return kValueName;
  }
  const NameId id = ResolveName(name);
  CheckDuplicate(OwnerOfProperties().Children(), id, name);
  return id;
}

NameId PropertyBuilder::ResolveItemName(const NameView& name) {
  OpenProperty& array = mOpen.back();
  const std::size_t position = array.mNode.Children().Size() + 1;
  std::size_t number = 0;
  if (IsRDF(name, "li")) {
    number = ++array.mNumberedItems;
  } else if (name.mURI == kRDFNamespace && name.mLocalName.starts_with('_')) {
    const std::string_view digits = name.mLocalName.substr(1);
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (std::to_string(number) != digits) number = 0;
  }
  if (number == 0) {
    mRefuser.Refuse(kXMPErr_BadRDF, WrittenName(array.mContainer) + " holds a " +
                                        WrittenName(name) + ", but may only hold rdf:li");
  }
  if (number != position) {
    mRefuser.Refuse(kXMPErr_BadRDF, WrittenName(name) + " is item " + std::to_string(number) +
                                        ", but is in place " + std::to_string(position));
  }
  return kItemName;
}

NameId PropertyBuilder::ResolveName(const NameView& name) {
  if (name.mURI.empty()) {
    mRefuser.Refuse(kXMPErr_BadRDF, "the property " + WrittenName(name) + " has no namespace");
  }
  const bool isForeign = name.mURI != kRDFNamespace && name.mURI != kXMLNamespace;
  if (!isForeign && !IsRDF(name, "type")) {
    mRefuser.Refuse(kXMPErr_BadRDF, WrittenName(name) + " is not a property");
  }
  return mDocument.mNames.AddName(mDocument.mNames.AddNamespace(name.mURI, name.mPrefix),
                                  name.mLocalName);
}

void PropertyBuilder::StartProperty(NameId id, const NameView& name,
                                    const RDFAttributes& attributes,
                                    std::optional<std::string_view> lang, Comments before) {
  Node node(id);
  // A URI has no language, but passes that of its element to the texts written beside it.
  const bool isMereURI = attributes.mResource && attributes.mProperties.empty();
  if (attributes.mLang || !isMereURI) AddLang(node, attributes.mLang ? attributes.mLang : lang);
  node.AddCommentsBefore(std::move(before));
  if (id != kValueName) {
    CheckNesting();
    ++mNesting;
  }
  mOpen.emplace_back(name, std::move(node));
  ApplyAttributes(attributes);
}

void PropertyBuilder::EndProperty(Comments atEnd) {
  if (HoldsFields()) FinishResource(mOpen.back(), std::move(atEnd));
  OpenProperty property = std::move(mOpen.back());
  mOpen.pop_back();
  Node& node = property.mNode;
  if (property.mContent == Content::kAny) node.SetValue(std::move(property.mText));
  if (node.Name() == kValueName) {
    mOpen.back().mNode.AddCommentsBefore(node.CommentsBefore());
    return SetValue(mOpen.back(), std::move(node));
  }
  --mNesting;
  OwnerOfProperties().Children().Append(std::move(node));
}

void PropertyBuilder::AddTopProperties(const RDFAttributes& attributes,
                                       std::optional<std::string_view> lang) {
  AddAttributeFields(mDocument.mRoot, attributes, lang);
}

void PropertyBuilder::CheckMayHold(const NameView& element) const {
  const OpenProperty& property = mOpen.back();
  const std::string holder = WrittenName(property.mName);
  if (property.mContent == Content::kNone) {
    mRefuser.Refuse(kXMPErr_BadRDF, holder + " holds a " + WrittenName(element) +
                                        ", although its value is in its attributes");
  }
  if (property.mContent == Content::kDone) {
    mRefuser.Refuse(kXMPErr_BadRDF, holder + " holds a second element, " + WrittenName(element) +
                                        ", but may only hold one");
  }
  if (property.mTextPosition) {
    mRefuser.RefuseAt(*property.mTextPosition, kXMPErr_BadRDF,
                      holder + " holds text beside the element " + WrittenName(element));
  }
  if (property.mNode.FindQualifier(kDatatypeName) != nullptr) {
    mRefuser.Refuse(kXMPErr_BadRDF, holder + " has rdf:datatype, but holds an element");
  }
}

void PropertyBuilder::StartNode(const NameView* type, const RDFAttributes& attributes,
                                std::optional<std::string_view> lang) {
  OpenProperty& property = mOpen.back();
  property.mContent = Content::kDone;
  if (type != nullptr) {
    CheckNesting();
    Node typeNode(kTypeName, kXMP_PropValueIsURI);
    typeNode.SetValue(std::string(type->mURI).append(type->mLocalName));
    property.mNode.Children().Append(std::move(typeNode));
  }
  if (attributes.mValue) {
    Node value(kValueName);
    value.SetValue(std::string(*attributes.mValue));
    AddLang(value, lang);
    SetValue(property, std::move(value));
  }
  AddAttributeFields(property.mNode, attributes, lang);
}

void PropertyBuilder::StartContainer(const NameView& name, XMP_OptionBits form) {
  OpenProperty& property = mOpen.back();
  property.mContent = Content::kDone;
  property.mContainer = name;
  property.mNode.AddForm(form);
}

void PropertyBuilder::EndContainer(Comments atEnd) {
  Node& array = mOpen.back().mNode;
  array.AddCommentsAtEnd(std::move(atEnd));
  const NodeList& items = array.Children();
  const bool allHaveLang = std::all_of(items.begin(), items.end(), [](const Node& item) {
    return item.IsSimple() && item.FindQualifier(kLangName) != nullptr;
  });
  if (array.Is(kXMP_PropArrayIsAlternate) && !items.Empty() && allHaveLang) {
    array.AddForm(kXMP_PropArrayIsAltText);
  }
}

void PropertyBuilder::AddText(std::string_view text, bool isWhiteSpace) {
  OpenProperty& property = mOpen.back();
  property.mText += text;
  if (!isWhiteSpace && !property.mTextPosition) {
    property.mTextPosition = mRefuser.CurrentPosition();
  }
}

void PropertyBuilder::AddComment(std::string markup) {
  Node& node = mOpen.back().mNode;
  if (node.IsSimple()) return node.AddCommentsBefore({std::move(markup)});
  node.AddCommentsAtEnd({std::move(markup)});
}

// The value, as far as the attributes of the property element give it.
void PropertyBuilder::ApplyAttributes(const RDFAttributes& attributes) {
  if (attributes.mParseType) return ApplyParseType(attributes);
  if (attributes.mDatatype) return ApplyDatatype(attributes);
  OpenProperty& property = mOpen.back();
  if (!attributes.mResource && !attributes.HasProperties()) return;
  property.mContent = Content::kNone;
  if (attributes.mResource) return ApplyResource(attributes);
  if (attributes.mValue) return ApplyValue(attributes);
  property.mNode.AddForm(kXMP_PropValueIsStruct);
  AddAttributeFields(property.mNode, attributes, {});
}

void PropertyBuilder::ApplyParseType(const RDFAttributes& attributes) {
  OpenProperty& property = mOpen.back();
  if (*attributes.mParseType != "Resource") {
    mRefuser.Refuse(kXMPErr_BadRDF, "rdf:parseType is " + Quoted(*attributes.mParseType) +
                                        ", but XMP only knows \"Resource\"");
  }
  if (attributes.mResource || attributes.mDatatype || attributes.HasProperties()) {
    mRefuser.Refuse(kXMPErr_BadRDF,
                    WrittenName(property.mName) +
                        " has rdf:parseType and another attribute that describes its value");
  }
  property.mContent = Content::kFields;
}

void PropertyBuilder::ApplyDatatype(const RDFAttributes& attributes) {
  OpenProperty& property = mOpen.back();
  if (attributes.mResource || attributes.HasProperties()) {
    mRefuser.Refuse(kXMPErr_BadRDF,
                    WrittenName(property.mName) + " has rdf:datatype, but its value is not text");
  }
  Node datatype(kDatatypeName);
  datatype.SetValue(std::string(*attributes.mDatatype));
  CheckNesting();
  property.mNode.AddQualifier(std::move(datatype));
}

void PropertyBuilder::ApplyResource(const RDFAttributes& attributes) {
  Node& node = mOpen.back().mNode;
  if (attributes.mValue) {
    mRefuser.Refuse(kXMPErr_BadRDF,
                    WrittenName(mOpen.back().mName) + " has both rdf:resource and rdf:value");
  }
  node.AddForm(kXMP_PropValueIsURI);
  node.SetValue(std::string(*attributes.mResource));
  if (attributes.mProperties.empty()) return;
  if (node.Name() == kValueName) {
    mRefuser.Refuse(kXMPErr_BadRDF, "rdf:value has its own qualifiers");
  }
  node.AddForm(Node::kQualifiersOfResource);
  AddAttributeQualifiers(node, attributes);
}

// rdf:value as an attribute; the other attributes qualify it.
void PropertyBuilder::ApplyValue(const RDFAttributes& attributes) {
  Node& node = mOpen.back().mNode;
  if (node.Name() == kValueName) {
    mRefuser.Refuse(kXMPErr_BadRDF, "rdf:value has its own rdf:value");
  }
  node.AddForm(Node::kWrittenWithValue);
  node.SetValue(std::string(*attributes.mValue));
  AddAttributeQualifiers(node, attributes);
}

Node PropertyBuilder::MakeAttributeNode(const AttributeView& attribute) {
  const NameId id = ResolveName(attribute.mName);
  CheckNesting();
  Node node(id, id == kTypeName ? kXMP_PropValueIsURI : 0);
  node.SetValue(std::string(attribute.mValue));
  return node;
}

void PropertyBuilder::AddAttributeFields(Node& owner, const RDFAttributes& attributes,
                                         std::optional<std::string_view> lang) {
  for (const AttributeView& attribute : attributes.mProperties) {
    Node field = MakeAttributeNode(attribute);
    CheckDuplicate(owner.Children(), field.Name(), attribute.mName);
    if (field.Name() != kTypeName) AddLang(field, lang);
    owner.Children().Append(std::move(field));
  }
}

void PropertyBuilder::AddAttributeQualifiers(Node& node, const RDFAttributes& attributes) {
  for (const AttributeView& attribute : attributes.mProperties) {
    Node qualifier = MakeAttributeNode(attribute);
    CheckDuplicate(node.Qualifiers(), qualifier.Name(), attribute.mName);
    node.AddQualifier(std::move(qualifier));
  }
}

void PropertyBuilder::SetValue(OpenProperty& owner, Node value) {
  if (owner.mNode.Name() == kValueName) {
    mRefuser.Refuse(kXMPErr_BadRDF, "rdf:value is directly within rdf:value");
  }
  owner.mValue = std::move(value);
}

// Ends a resource: rdf:Description, a typed node, or rdf:parseType="Resource". Its properties have
// been gathered as the node's children. Without rdf:value they are the fields of a struct. Beside
// an rdf:value they are qualifiers, and the node takes its value, form and children from rdf:value.
void PropertyBuilder::FinishResource(OpenProperty& property, Comments atEnd) {
  Node& node = property.mNode;
  if (!property.mValue) {
    node.AddForm(kXMP_PropValueIsStruct);
    return node.AddCommentsAtEnd(std::move(atEnd));
  }
  Node& value = *property.mValue;
  // First the languages: the node's own goes to its children, as long as these are the qualifiers,
  // and makes room for that of rdf:value. Language and datatype precede all other qualifiers.
  if (const Node* lang = value.FindQualifier(kLangName)) {
    PassLangToChildren(node);
    node.AddForm(Node::kLangAtValue);
    node.AddQualifier(Node(*lang));
  }
  if (const Node* datatype = value.FindQualifier(kDatatypeName)) node.AddQualifier(Node(*datatype));
  // Then the children, which are the qualifiers, change places with those of rdf:value.
  NodeList qualifiers = std::exchange(node.Children(), std::move(value.Children()));
  for (std::size_t i = 0; i < qualifiers.Size(); ++i) node.AddQualifier(std::move(qualifiers[i]));
  // The form comes before the comments, which belong in an array or struct, but before a value.
  node.AddForm(value.Form() | Node::kWrittenWithValue);
  node.SetValue(value.Value());
  node.AddCommentsAtEnd(value.CommentsAtEnd());
  if (node.IsSimple()) return node.AddCommentsBefore(std::move(atEnd));
  node.AddCommentsAtEnd(std::move(atEnd));
}

Node& PropertyBuilder::OwnerOfProperties() {
  return mOpen.empty() ? mDocument.mRoot : mOpen.back().mNode;
}

// Refuses one more level below the open properties.
void PropertyBuilder::CheckNesting() const {
  if (mNesting + 1 > static_cast<std::size_t>(kXMP_MaxNesting)) {
    mRefuser.Refuse(kXMPErr_BadXMP,
                    "properties nest deeper than " + std::to_string(kXMP_MaxNesting) + " levels");
  }
}

void PropertyBuilder::CheckDuplicate(const NodeList& nodes, NameId id, const NameView& name) const {
  if (nodes.Find(id) != NodeList::npos) {
    mRefuser.Refuse(kXMPErr_BadXMP, "a second property " + WrittenName(name));
  }
}

}  // namespace xmptoolkit
