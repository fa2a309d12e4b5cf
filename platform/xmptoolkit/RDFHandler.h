#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <zelcore/xml/SAXDriver.h>

#include "Document.h"
#include "RDFAttributes.h"

namespace xmptoolkit {

// Builds a document from the events of one packet. What RDF or XMP do not allow throws XMP_Error
// from the event, which ends the parse.
//
// A property element and the node element or container within it are two elements, but one node of
// the document: mFrames holds an entry for each open element, mOpen one for each open property.
class RDFHandler final : public zelcore::xml::SAXEvents {
 public:
  // `start` is where the text that will be read begins in its buffer, for messages.
  RDFHandler(zelcore::xml::Position start, bool hasWrapper);
  RDFHandler(const RDFHandler&) = delete;
  RDFHandler& operator=(const RDFHandler&) = delete;

  // Reads UTF-8 text. To be called once.
  Document Read(std::string_view text);

  void StartElement(const zelcore::xml::NameView& name,
                    std::span<const zelcore::xml::NamespaceView> declarations,
                    std::span<const zelcore::xml::AttributeView> attributes) override;
  void EndElement() override;
  void Characters(std::string_view text) override;
  void Comment(std::string_view text) override;
  void ProcessingInstruction(std::string_view target, std::string_view data) override;
  void Doctype() override;

 private:
  using NameView = zelcore::xml::NameView;
  using Attributes = std::span<const zelcore::xml::AttributeView>;

  enum class FrameKind {
    kMeta,         // x:xmpmeta
    kRDF,          // rdf:RDF
    kDescription,  // rdf:Description in rdf:RDF
    kProperty,     // a property, field, qualifier, item, or rdf:value
    kNode,         // rdf:Description, or a typed node, as the value of a property
    kContainer,    // rdf:Bag, rdf:Seq or rdf:Alt
  };

  struct Frame {
    FrameKind mKind;
    NameView mName;
    std::optional<std::string> mLang;  // xml:lang of an element that is no property
    Remarks mRemarks{};                // that wait for the next property in it, or for its end
    std::size_t mNumberedItems = 0;    // how many rdf:li a container has had
  };

  // What may still stand inside a property element.
  enum class Content {
    kAny,     // text, or one node element
    kFields,  // property elements: rdf:parseType="Resource"
    kNone,    // its attributes have said all
    kDone,    // its node element has been read
  };

  struct OpenProperty {
    explicit OpenProperty(Node node) : mNode(std::move(node)) {}

    Node mNode;
    std::optional<Node> mValue;  // what rdf:value said
    std::string mText;
    std::optional<zelcore::xml::Position>
        mTextPosition;  // of the first text that is no white space
    Content mContent = Content::kAny;
  };

  // Elements.
  void StartRoot(const NameView& name, Attributes attributes);
  void StartMeta(const NameView& name, Attributes attributes);
  void StartRDF(const NameView& name, Attributes attributes);
  void StartDescription(const NameView& name, Attributes attributes);
  void StartInProperty(const NameView& name, Attributes attributes);
  void StartNode(const NameView& name, Attributes attributes);
  void StartContainer(const NameView& name, Attributes attributes, XMP_OptionBits form);
  void StartProperty(const NameView& name, Attributes attributes);
  void EndProperty(Frame& frame);
  void EndContainer(Frame& frame);
  void EndRDF(Frame& frame);

  // Properties.
  NameId ResolvePropertyName(const NameView& name);
  NameId ResolveItemName(const NameView& name);
  NameId ResolveName(const NameView& name);
  void ApplyAttributes(const NameView& name, const RDFAttributes& attributes);
  void ApplyParseType(const NameView& name, const RDFAttributes& attributes);
  void ApplyResource(const NameView& name, const RDFAttributes& attributes);
  void AddLang(Node& node, std::optional<std::string_view> own);
  Node MakeAttributeNode(const zelcore::xml::AttributeView& attribute);
  void AddAttributeFields(Node& owner, const RDFAttributes& attributes, bool inheritLang);
  void AddAttributeQualifiers(Node& node, const RDFAttributes& attributes);
  void SetValue(OpenProperty& owner, Node value);
  void FinishResource(OpenProperty& property, Remarks remarks);
  static void HandLangToFields(Node& node);
  void CheckNesting(std::size_t below) const;
  void CheckDuplicate(const NodeList& nodes, NameId id, const NameView& name) const;

  bool IsRDF(const NameView& name, std::string_view localName) const;
  void CheckName(const NameView& name) const;
  Frame& PushFrame(FrameKind kind, const NameView& name, std::optional<std::string_view> lang = {});
  std::optional<std::string_view> LangForProperties() const;
  Node& OwnerOfProperties();
  void AddRemark(std::string markup);
  Refusal Refuser() const;
  [[noreturn]] void Refuse(XMP_ErrorID id, const std::string& why) const;
  [[noreturn]] void RefuseAt(zelcore::xml::Position position, XMP_ErrorID id,
                             const std::string& why) const;

  zelcore::xml::SAXDriver mDriver;
  zelcore::xml::Position mStart;
  bool mHasWrapper;
  Document mDocument;
  std::vector<Frame> mFrames;
  std::vector<OpenProperty> mOpen;
  std::size_t mNesting = 0;  // of the open properties, rdf:value not counted
  bool mSawHeader = false;
  bool mSawTrailer = false;
  bool mSawRoot = false;
  bool mSawRDF = false;
  bool mSawDescription = false;
};

}  // namespace xmptoolkit
