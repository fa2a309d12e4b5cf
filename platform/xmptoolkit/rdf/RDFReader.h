#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <xmptoolkit/model/Document.h>
#include <xmptoolkit/rdf/PropertyBuilder.h>
#include <xmptoolkit/rdf/RDFAttributes.h>
#include <xmptoolkit/rdf/Refuser.h>
#include <zelcore/xml/SAXDriver.h>

namespace xmptoolkit {

// Reads the RDF/XML of one packet into a document. What RDF or XMP do not allow throws XMP_Error
// from an event, which ends the parse.
//
// The reader keeps a frame for each open element and decides what may follow where. The properties
// themselves are made by a PropertyBuilder: a property element and the node element or container
// within it are two frames, but one open property.
class RDFReader final : public zelcore::xml::SAXEvents {
 public:
  // `start` is the place in the buffer where the text of the packet begins, for messages.
  RDFReader(zelcore::xml::Position start, bool hasWrapper);
  RDFReader(const RDFReader&) = delete;
  RDFReader& operator=(const RDFReader&) = delete;

  // Reads UTF-8 text. Call it once.
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
    std::optional<std::string> mLang;  // xml:lang of an element that is not a property
    Comments mComments{};              // waiting for the next property in it, or for its end
  };

  void StartRoot(const NameView& name, Attributes attributes);
  void StartMeta(const NameView& name, Attributes attributes);
  void StartRDF(const NameView& name, Attributes attributes);
  void StartDescription(const NameView& name, Attributes attributes);
  void StartInProperty(const NameView& name, Attributes attributes);
  void StartNode(const NameView& name, Attributes attributes);
  void StartContainer(const NameView& name, Attributes attributes, XMP_OptionBits form);
  void StartProperty(const NameView& name, Attributes attributes);

  Frame& PushFrame(FrameKind kind, const NameView& name, std::optional<std::string_view> lang = {});
  std::optional<std::string_view> LangInForce() const;
  void CheckName(const NameView& name) const;
  void AddComment(std::string markup);

  zelcore::xml::SAXDriver mDriver;
  const Refuser mRefuser;
  const bool mHasWrapper;
  Document mDocument;
  PropertyBuilder mProperties;
  std::vector<Frame> mFrames;
  bool mSawHeader = false;
  bool mSawTrailer = false;
  bool mSawRoot = false;
  bool mSawRDF = false;
  bool mSawDescription = false;
};

}  // namespace xmptoolkit
