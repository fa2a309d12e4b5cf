#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <xmptoolkit/model/Document.h>
#include <xmptoolkit/rdf/RDFAttributes.h>
#include <xmptoolkit/rdf/Refuser.h>
#include <zelcore/xml/SAXDriver.h>

namespace xmptoolkit {

// Makes nodes of the property elements of a packet and adds them to its document. RDF can say the
// same in many ways, so a property is only known when its element ends: until then it is open, and
// what its attributes, its node element or container, and its rdf:value say is gathered. Refuses
// what RDF or XMP do not allow.
//
// `lang` is always the xml:lang that the enclosing element passes on to the properties within it.
class PropertyBuilder {
 public:
  PropertyBuilder(Document& document, const Refuser& refuser)
      : mDocument(document), mRefuser(refuser) {}

  // The name of a property element, or of an item of the open container; refused when a property or
  // an item cannot have it here.
  NameId ResolvePropertyName(const zelcore::xml::NameView& name);
  NameId ResolveItemName(const zelcore::xml::NameView& name);

  // Opens a property below the one opened last, and closes the one opened last.
  void StartProperty(NameId id, const zelcore::xml::NameView& name, const RDFAttributes& attributes,
                     std::optional<std::string_view> lang, Comments before);
  void EndProperty(Comments atEnd);

  // The properties that the attributes of an rdf:Description in rdf:RDF are.
  void AddTopProperties(const RDFAttributes& attributes, std::optional<std::string_view> lang);

  // The rest is about the property opened last.

  // Whether its element holds the elements of its fields (rdf:parseType="Resource").
  bool HoldsFields() const { return mOpen.back().mContent == Content::kFields; }

  // Refuses an element in it that cannot follow what was read before.
  void CheckMayHold(const zelcore::xml::NameView& element) const;

  // The node element that is its value; `type` names a typed one, and is null for rdf:Description.
  void StartNode(const zelcore::xml::NameView* type, const RDFAttributes& attributes,
                 std::optional<std::string_view> lang);
  void EndNode(Comments atEnd) { FinishResource(mOpen.back(), std::move(atEnd)); }

  // The container that is its value; `form` is the array's.
  void StartContainer(const zelcore::xml::NameView& name, XMP_OptionBits form);
  void EndContainer(Comments atEnd);

  // Whether text in its element may be its value, and a piece of such text.
  bool TakesText() const { return mOpen.back().mContent == Content::kAny; }
  void AddText(std::string_view text, bool isWhiteSpace);

  // A comment in its element, beside its value.
  void AddComment(std::string markup);

 private:
  using NameView = zelcore::xml::NameView;

  // What may still follow inside a property element.
  enum class Content {
    kAny,     // text, or one node element or container
    kFields,  // property elements: rdf:parseType="Resource"
    kNone,    // nothing: its attributes are its value
    kDone,    // nothing: its node element or container has been read
  };

  struct OpenProperty {
    OpenProperty(const NameView& name, Node node) : mName(name), mNode(std::move(node)) {}

    NameView mName;  // of its element
    Node mNode;
    std::optional<Node> mValue;  // the value that rdf:value gave it
    std::string mText;
    std::optional<zelcore::xml::Position> mTextPosition;  // of the first text beside white space
    Content mContent = Content::kAny;
    NameView mContainer;             // its container, once there is one
    std::size_t mNumberedItems = 0;  // how many rdf:li that has had
  };

  NameId ResolveName(const NameView& name);
  void ApplyAttributes(const RDFAttributes& attributes);
  void ApplyParseType(const RDFAttributes& attributes);
  void ApplyDatatype(const RDFAttributes& attributes);
  void ApplyResource(const RDFAttributes& attributes);
  void ApplyValue(const RDFAttributes& attributes);
  Node MakeAttributeNode(const zelcore::xml::AttributeView& attribute);
  void AddAttributeFields(Node& owner, const RDFAttributes& attributes,
                          std::optional<std::string_view> lang);
  void AddAttributeQualifiers(Node& node, const RDFAttributes& attributes);
  void SetValue(OpenProperty& owner, Node value);
  void FinishResource(OpenProperty& property, Comments atEnd);
  Node& OwnerOfProperties();
  void CheckNesting() const;
  void CheckDuplicate(const NodeList& nodes, NameId id, const NameView& name) const;

  Document& mDocument;
  const Refuser& mRefuser;
  std::vector<OpenProperty> mOpen;
  std::size_t mNesting = 0;  // of the open properties, rdf:value not counted
};

}  // namespace xmptoolkit
