#include "RDFHandler.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "PacketLocation.h"
#include "Text.h"

namespace xmptoolkit {

using zelcore::xml::AttributeView;
using zelcore::xml::NamespaceView;
using zelcore::xml::NameView;
using zelcore::xml::Position;

RDFHandler::RDFHandler(Position start, bool hasWrapper)
    : mDriver(*this), mStart(start), mHasWrapper(hasWrapper) {}

Document RDFHandler::Read(std::string_view text) {
  const auto error = mDriver.ParseBuffer(text);
  if (error) RefuseAt(error->mPosition, kXMPErr_BadXML, error->mReason);
  if (mHasWrapper && !mSawTrailer) {
    RefuseAt({}, kXMPErr_BadXMP,
             "the packet that begins here has no trailer outside of its elements");
  }
  return std::move(mDocument);
}

void RDFHandler::StartElement(const NameView& name, std::span<const NamespaceView>,
                              Attributes attributes) {
  CheckName(name);
  if (mFrames.empty()) return StartRoot(name, attributes);
  switch (mFrames.back().mKind) {
    case FrameKind::kMeta:
      return StartRDF(name, attributes);
    case FrameKind::kRDF:
      return StartDescription(name, attributes);
    case FrameKind::kProperty:
      return StartInProperty(name, attributes);
    case FrameKind::kDescription:
    case FrameKind::kNode:
    case FrameKind::kContainer:
      return StartProperty(name, attributes);
  }
}

void RDFHandler::EndElement() {
  Frame frame = std::move(mFrames.back());
  mFrames.pop_back();
  switch (frame.mKind) {
    case FrameKind::kMeta:
      if (!mSawRDF) Refuse(kXMPErr_BadRDF, WrittenName(frame.mName) + " holds no rdf:RDF");
      return;
    case FrameKind::kRDF:
      return EndRDF(frame);
    case FrameKind::kDescription:
      return mDocument.mRoot.AddRemarksAtEnd(std::move(frame.mRemarks));
    case FrameKind::kProperty:
      return EndProperty(frame);
    case FrameKind::kNode:
      return FinishResource(mOpen.back(), std::move(frame.mRemarks));
    case FrameKind::kContainer:
      return EndContainer(frame);
  }
}

void RDFHandler::Characters(std::string_view text) {
  const bool mayBeValue = !mFrames.empty() && mFrames.back().mKind == FrameKind::kProperty &&
                          mOpen.back().mContent == Content::kAny;
  const bool isWhiteSpace = IsWhiteSpace(text);
  if (mayBeValue) {
    OpenProperty& property = mOpen.back();
    property.mText += text;
    if (!isWhiteSpace && !property.mTextPosition)
      property.mTextPosition = mDriver.CurrentPosition();
  } else if (!isWhiteSpace) {
    Refuse(kXMPErr_BadRDF,
           "text stands in " + WrittenName(mFrames.back().mName) + ", which may not hold any");
  }
}

void RDFHandler::Comment(std::string_view text) {
  AddRemark("<!--" + std::string(text) + "-->");
}

// Instructions of others are kept like comments; those of the wrapper are written anew.
void RDFHandler::ProcessingInstruction(std::string_view target, std::string_view data) {
  if (target != "xpacket") {
    const char* blank = data.empty() ? "" : " ";
    return AddRemark("<?" + std::string(target) + blank + std::string(data) + "?>");
  }
  if (!mHasWrapper) {
    Refuse(kXMPErr_BadXMP,
           "an xpacket instruction, but no header: that begins with \"<?xpacket begin=\", and in "
           "UTF-16 or UTF-32 a byte-order mark follows");
  }
  const bool isHeader = !mSawHeader;
  const bool isTrailer =
      mSawHeader && !mSawTrailer && mSawRoot && mFrames.empty() && data.starts_with("end=");
  if (!isHeader && !isTrailer) {
    Refuse(kXMPErr_BadXMP,
           "an xpacket instruction that is neither the header nor the trailer of "
           "the one packet");
  }
  (isHeader ? mSawHeader : mSawTrailer) = true;
}

void RDFHandler::Doctype() {
  Refuse(kXMPErr_BadXMP, "a document type declaration may not stand in a packet");
}

void RDFHandler::StartRoot(const NameView& name, Attributes attributes) {
  mSawRoot = true;
  if (name.mURI == kMetaNamespace && name.mLocalName == "xmpmeta") {
    StartMeta(name, attributes);
  } else if (IsRDF(name, "RDF")) {
    StartRDF(name, attributes);
  } else {
    Refuse(kXMPErr_BadRDF, "the root element is " + WrittenName(name) +
                               ", where only x:xmpmeta or rdf:RDF may stand");
  }
}

void RDFHandler::StartMeta(const NameView& name, Attributes attributes) {
  PushFrame(FrameKind::kMeta, name);
  std::set<std::pair<std::string_view, std::string_view>> names;
  for (const auto& [own, value] : attributes) {
    CheckName(own);
    if (!names.emplace(own.mURI, own.mLocalName).second) {
      Refuse(kXMPErr_BadXML, "the attribute " + WrittenName(own) + " is there twice");
    }
    mDocument.mMetaAttributes.push_back({std::string(own.mPrefix), std::string(own.mURI),
                                         std::string(own.mLocalName), std::string(value)});
  }
}

void RDFHandler::StartRDF(const NameView& name, Attributes attributes) {
  if (!IsRDF(name, "RDF")) {
    Refuse(kXMPErr_BadRDF, WrittenName(mFrames.back().mName) + " holds a " + WrittenName(name) +
                               ", where only rdf:RDF may stand");
  }
  if (std::exchange(mSawRDF, true)) Refuse(kXMPErr_BadXMP, "a second rdf:RDF begins");
  const RDFAttributes sorted = SortAttributes(name, attributes, {}, Refuser());
  PushFrame(FrameKind::kRDF, name, sorted.mLang);
}

void RDFHandler::StartDescription(const NameView& name, Attributes attributes) {
  if (!IsRDF(name, "Description")) {
    Refuse(kXMPErr_BadRDF,
           "rdf:RDF holds a " + WrittenName(name) + ", where only rdf:Description may stand");
  }
  AllowedAttributes allowed;
  allowed.mAbout = allowed.mProperties = true;
  const RDFAttributes sorted = SortAttributes(name, attributes, allowed, Refuser());
  const std::string about(sorted.mAbout.value_or(std::string_view()));
  if (!mSawDescription) mDocument.mAbout = about;
  if (about != mDocument.mAbout) {
    Refuse(kXMPErr_BadXMP, "rdf:about is " + Quoted(about) + ", but was " +
                               Quoted(mDocument.mAbout) + " before: a packet has one subject");
  }
  Remarks waiting = std::exchange(mFrames.back().mRemarks, {});
  const std::optional<std::string> outerLang = mFrames.back().mLang;
  Frame& frame = PushFrame(FrameKind::kDescription, name, sorted.mLang);
  if (!frame.mLang) frame.mLang = outerLang;
  if (std::exchange(mSawDescription, true)) {
    // The Descriptions become one, so that what stood between them comes to stand within.
    frame.mRemarks = mDocument.mRoot.TakeRemarksAtEnd();
    std::move(waiting.begin(), waiting.end(), std::back_inserter(frame.mRemarks));
  } else {
    mDocument.RemarksAt(Place::kBeforeDescription) = std::move(waiting);
  }
  AddAttributeFields(mDocument.mRoot, sorted, true);
}

void RDFHandler::EndRDF(Frame& frame) {
  mDocument.RemarksAt(Place::kAfterDescription) = std::move(frame.mRemarks);
}

void RDFHandler::StartInProperty(const NameView& name, Attributes attributes) {
  const OpenProperty& property = mOpen.back();
  const std::string holder = WrittenName(mFrames.back().mName);
  switch (property.mContent) {
    case Content::kFields:
      return StartProperty(name, attributes);
    case Content::kAny:
      break;
    case Content::kNone:
      Refuse(kXMPErr_BadRDF, holder + " holds a " + WrittenName(name) +
                                 ", though its attributes say that it is empty");
    case Content::kDone:
      Refuse(kXMPErr_BadRDF, holder + " holds a second element, " + WrittenName(name) +
                                 ", where only one may stand");
  }
  if (property.mTextPosition) {
    RefuseAt(*property.mTextPosition, kXMPErr_BadRDF,
             "text stands in " + holder + " beside the element " + WrittenName(name));
  }
  if (property.mNode.FindQualifier(kDatatypeName) != nullptr) {
    Refuse(kXMPErr_BadRDF, holder + " has rdf:datatype, but holds an element");
  }
  if (IsRDF(name, "Bag")) return StartContainer(name, attributes, kXMP_PropValueIsArray);
  constexpr XMP_OptionBits kSeq = kXMP_PropValueIsArray | kXMP_PropArrayIsOrdered;
  if (IsRDF(name, "Seq")) return StartContainer(name, attributes, kSeq);
  if (IsRDF(name, "Alt")) return StartContainer(name, attributes, kSeq | kXMP_PropArrayIsAlternate);
  StartNode(name, attributes);
}

void RDFHandler::StartNode(const NameView& name, Attributes attributes) {
  const bool isTyped = name.mURI != kRDFNamespace;
  if (name.mURI.empty() || (!isTyped && name.mLocalName != "Description")) {
    Refuse(kXMPErr_BadRDF, WrittenName(mFrames.back().mName) + " holds a " + WrittenName(name) +
                               ", which is no value in RDF");
  }
  AllowedAttributes allowed;
  allowed.mValue = allowed.mProperties = true;
  const RDFAttributes sorted = SortAttributes(name, attributes, allowed, Refuser());
  OpenProperty& property = mOpen.back();
  property.mContent = Content::kDone;
  PushFrame(FrameKind::kNode, name, sorted.mLang);
  if (isTyped) {
    CheckNesting(1);
    Node type(kTypeName, kXMP_PropValueIsURI);
    type.SetValue(std::string(name.mURI).append(name.mLocalName));
    property.mNode.Children().Append(std::move(type));
  }
  if (sorted.mValue) {
    Node value(kValueName);
    value.SetValue(std::string(*sorted.mValue));
    AddLang(value, {});
    SetValue(property, std::move(value));
  }
  AddAttributeFields(property.mNode, sorted, true);
}

void RDFHandler::StartContainer(const NameView& name, Attributes attributes, XMP_OptionBits form) {
  const RDFAttributes sorted = SortAttributes(name, attributes, {}, Refuser());
  OpenProperty& property = mOpen.back();
  property.mContent = Content::kDone;
  property.mNode.AddForm(form);
  PushFrame(FrameKind::kContainer, name, sorted.mLang);
}

void RDFHandler::EndContainer(Frame& frame) {
  Node& array = mOpen.back().mNode;
  array.AddRemarksAtEnd(std::move(frame.mRemarks));
  const NodeList& items = array.Children();
  const bool allHaveLang = std::all_of(items.begin(), items.end(), [](const Node& item) {
    return item.IsSimple() && item.FindQualifier(kLangName) != nullptr;
  });
  if (array.Is(kXMP_PropArrayIsAlternate) && !items.Empty() && allHaveLang) {
    array.AddForm(kXMP_PropArrayIsAltText);
  }
}

bool RDFHandler::IsRDF(const NameView& name, std::string_view localName) const {
  return name.mLocalName == localName && name.mURI == kRDFNamespace;
}

// The driver also lets names through that are well-formed XML, but not to its namespaces.
void RDFHandler::CheckName(const NameView& name) const {
  if (name.mLocalName.find(':') != std::string_view::npos) {
    Refuse(kXMPErr_BadXML, WrittenName(name) + " is no name with a namespace prefix");
  }
  if (name.mURI.empty() && !name.mPrefix.empty()) {
    Refuse(kXMPErr_BadXML, "the prefix of " + WrittenName(name) + " is not declared");
  }
}

RDFHandler::Frame& RDFHandler::PushFrame(FrameKind kind, const NameView& name,
                                         std::optional<std::string_view> lang) {
  mFrames.push_back({kind, name, std::nullopt});
  if (lang) mFrames.back().mLang = *lang;
  return mFrames.back();
}

void RDFHandler::AddRemark(std::string markup) {
  const auto addTo = [&](Place place) { mDocument.RemarksAt(place).push_back(std::move(markup)); };
  if (mFrames.empty()) return addTo(mSawRoot ? Place::kAfterMeta : Place::kBeforeMeta);
  Frame& frame = mFrames.back();
  if (frame.mKind == FrameKind::kMeta) {
    return addTo(mSawRDF ? Place::kAfterRDF : Place::kBeforeRDF);
  }
  const bool waits =
      frame.mKind != FrameKind::kProperty || mOpen.back().mContent == Content::kFields;
  if (waits) return frame.mRemarks.push_back(std::move(markup));
  Node& node = mOpen.back().mNode;
  if (node.IsSimple()) return node.AddRemarksBefore({std::move(markup)});
  node.AddRemarksAtEnd({std::move(markup)});
}

Refusal RDFHandler::Refuser() const {
  return [this](XMP_ErrorID id, const std::string& why) { Refuse(id, why); };
}

void RDFHandler::Refuse(XMP_ErrorID id, const std::string& why) const {
  RefuseAt(mDriver.CurrentPosition(), id, why);
}

void RDFHandler::RefuseAt(Position position, XMP_ErrorID id, const std::string& why) const {
  if (position.mLine == 1) position.mColumn += mStart.mColumn - 1;
  position.mLine += mStart.mLine - 1;
  throw XMP_Error(id, Describe(position) + why);
}

}  // namespace xmptoolkit
