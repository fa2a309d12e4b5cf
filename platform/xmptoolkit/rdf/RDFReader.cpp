#include <iterator>
#include <set>
#include <utility>

#include <xmptoolkit/model/Text.h>
#include <xmptoolkit/rdf/RDFReader.h>

namespace xmptoolkit {

using zelcore::xml::NamespaceView;
using zelcore::xml::NameView;
using zelcore::xml::Position;

RDFReader::RDFReader(Position start, bool hasWrapper)
    : mDriver(*this),
      mRefuser(mDriver, start),
      mHasWrapper(hasWrapper),
      mProperties(mDocument, mRefuser) {}

Document RDFReader::Read(std::string_view text) {
  const auto error = mDriver.ParseBuffer(text);
  if (error) mRefuser.RefuseAt(error->mPosition, kXMPErr_BadXML, error->mReason);
  if (mHasWrapper && !mSawTrailer) {
    mRefuser.RefuseAt({}, kXMPErr_BadXMP,
                      "the packet that begins here has no trailer outside of its elements");
  }
  return std::move(mDocument);
}

void RDFReader::StartElement(const NameView& name, std::span<const NamespaceView>,
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

void RDFReader::EndElement() {
  Frame frame = std::move(mFrames.back());
  mFrames.pop_back();
  switch (frame.mKind) {
    case FrameKind::kMeta:
      if (!mSawRDF) {
        mRefuser.Refuse(kXMPErr_BadRDF, WrittenName(frame.mName) + " holds no rdf:RDF");
      }
      return;
    case FrameKind::kRDF:
      mDocument.CommentsAt(Place::kAfterDescription) = std::move(frame.mComments);
      return;
    case FrameKind::kDescription:
      return mDocument.mRoot.AddCommentsAtEnd(std::move(frame.mComments));
    case FrameKind::kProperty:
      return mProperties.EndProperty(std::move(frame.mComments));
    case FrameKind::kNode:
      return mProperties.EndNode(std::move(frame.mComments));
    case FrameKind::kContainer:
      return mProperties.EndContainer(std::move(frame.mComments));
  }
}

void RDFReader::Characters(std::string_view text) {
  const bool isInProperty = !mFrames.empty() && mFrames.back().mKind == FrameKind::kProperty;
  const bool isWhiteSpace = IsWhiteSpace(text);
  if (isInProperty && mProperties.TakesText()) {
    mProperties.AddText(text, isWhiteSpace);
  } else if (!isWhiteSpace) {
    mRefuser.Refuse(kXMPErr_BadRDF, WrittenName(mFrames.back().mName) + " must not hold text");
  }
}

void RDFReader::Comment(std::string_view text) {
  AddComment("<!--" + std::string(text) + "-->");
}

// Those of the wrapper are written anew; all others are kept like comments.
void RDFReader::ProcessingInstruction(std::string_view target, std::string_view data) {
  if (target != "xpacket") {
    const char* blank = data.empty() ? "" : " ";
    return AddComment("<?" + std::string(target) + blank + std::string(data) + "?>");
  }
  if (!mHasWrapper) {
    mRefuser.Refuse(kXMPErr_BadXMP,
                    "an xpacket instruction without a header, which begins with \"<?xpacket "
                    "begin=\" and, in UTF-16 or UTF-32, a byte-order mark");
  }
  const bool isHeader = !mSawHeader;
  const bool isTrailer =
      mSawHeader && !mSawTrailer && mSawRoot && mFrames.empty() && data.starts_with("end=");
  if (!isHeader && !isTrailer) {
    mRefuser.Refuse(kXMPErr_BadXMP,
                    "an xpacket instruction that is neither the header nor the trailer of "
                    "the one packet");
  }
  (isHeader ? mSawHeader : mSawTrailer) = true;
}

void RDFReader::Doctype() {
  mRefuser.Refuse(kXMPErr_BadXMP, "a packet must not have a document type declaration");
}

void RDFReader::StartRoot(const NameView& name, Attributes attributes) {
  mSawRoot = true;
  if (name.mURI == kMetaNamespace && name.mLocalName == "xmpmeta") {
    StartMeta(name, attributes);
  } else if (IsRDF(name, "RDF")) {
    StartRDF(name, attributes);
  } else {
    mRefuser.Refuse(kXMPErr_BadRDF, "the root element is " + WrittenName(name) +
                                        ", but must be x:xmpmeta or rdf:RDF");
  }
}

void RDFReader::StartMeta(const NameView& name, Attributes attributes) {
  PushFrame(FrameKind::kMeta, name);
  std::set<std::pair<std::string_view, std::string_view>> names;
  for (const auto& [own, value] : attributes) {
    CheckName(own);
    if (!names.emplace(own.mURI, own.mLocalName).second) {
      mRefuser.Refuse(kXMPErr_BadXML,
                      WrittenName(name) + " has the attribute " + WrittenName(own) + " twice");
    }
    mDocument.mMetaAttributes.push_back({std::string(own.mPrefix), std::string(own.mURI),
                                         std::string(own.mLocalName), std::string(value)});
  }
}

void RDFReader::StartRDF(const NameView& name, Attributes attributes) {
  if (!IsRDF(name, "RDF")) {
    mRefuser.Refuse(kXMPErr_BadRDF, WrittenName(mFrames.back().mName) + " holds a " +
                                        WrittenName(name) + ", but may only hold rdf:RDF");
  }
  if (std::exchange(mSawRDF, true)) mRefuser.Refuse(kXMPErr_BadXMP, "a second rdf:RDF");
  const RDFAttributes sorted = SortAttributes(name, attributes, {}, mRefuser);
  PushFrame(FrameKind::kRDF, name, sorted.mLang);
}

void RDFReader::StartDescription(const NameView& name, Attributes attributes) {
  if (!IsRDF(name, "Description")) {
    mRefuser.Refuse(kXMPErr_BadRDF,
                    "rdf:RDF holds a " + WrittenName(name) + ", but may only hold rdf:Description");
  }
  AllowedAttributes allowed;
  allowed.mAbout = allowed.mProperties = true;
  const RDFAttributes sorted = SortAttributes(name, attributes, allowed, mRefuser);
  const std::string about(sorted.mAbout.value_or(std::string_view()));
  if (!mSawDescription) mDocument.mAbout = about;
  if (about != mDocument.mAbout) {
    mRefuser.Refuse(kXMPErr_BadXMP, "rdf:about is " + Quoted(about) + ", but was " +
                                        Quoted(mDocument.mAbout) +
                                        " before: a packet has one subject");
  }
  Comments waiting = std::exchange(mFrames.back().mComments, {});
  const std::optional<std::string> outerLang = mFrames.back().mLang;
  Frame& frame = PushFrame(FrameKind::kDescription, name, sorted.mLang);
  if (!frame.mLang) frame.mLang = outerLang;
  if (std::exchange(mSawDescription, true)) {
    // The Descriptions become one, so what was between them is now inside.
    frame.mComments = mDocument.mRoot.TakeCommentsAtEnd();
    std::move(waiting.begin(), waiting.end(), std::back_inserter(frame.mComments));
  } else {
    mDocument.CommentsAt(Place::kBeforeDescription) = std::move(waiting);
  }
  mProperties.AddTopProperties(sorted, LangInForce());
}

void RDFReader::StartInProperty(const NameView& name, Attributes attributes) {
  if (mProperties.HoldsFields()) return StartProperty(name, attributes);
  mProperties.CheckMayHold(name);
  if (IsRDF(name, "Bag")) return StartContainer(name, attributes, kXMP_PropValueIsArray);
  constexpr XMP_OptionBits kSeq = kXMP_PropValueIsArray | kXMP_PropArrayIsOrdered;
  if (IsRDF(name, "Seq")) return StartContainer(name, attributes, kSeq);
  if (IsRDF(name, "Alt")) return StartContainer(name, attributes, kSeq | kXMP_PropArrayIsAlternate);
  StartNode(name, attributes);
}

void RDFReader::StartNode(const NameView& name, Attributes attributes) {
  const bool isTyped = name.mURI != kRDFNamespace;
  if (name.mURI.empty() || (!isTyped && name.mLocalName != "Description")) {
    mRefuser.Refuse(kXMPErr_BadRDF, WrittenName(mFrames.back().mName) + " holds a " +
                                        WrittenName(name) + ", which is not a value in RDF");
  }
  AllowedAttributes allowed;
  allowed.mValue = allowed.mProperties = true;
  const RDFAttributes sorted = SortAttributes(name, attributes, allowed, mRefuser);
  PushFrame(FrameKind::kNode, name, sorted.mLang);
  mProperties.StartNode(isTyped ? &name : nullptr, sorted, LangInForce());
}

void RDFReader::StartContainer(const NameView& name, Attributes attributes, XMP_OptionBits form) {
  const RDFAttributes sorted = SortAttributes(name, attributes, {}, mRefuser);
  PushFrame(FrameKind::kContainer, name, sorted.mLang);
  mProperties.StartContainer(name, form);
}

void RDFReader::StartProperty(const NameView& name, Attributes attributes) {
  const NameId id = mFrames.back().mKind == FrameKind::kContainer
                        ? mProperties.ResolveItemName(name)
                        : mProperties.ResolvePropertyName(name);
  AllowedAttributes allowed;
  allowed.mValueForm = allowed.mValue = allowed.mProperties = true;
  const RDFAttributes sorted = SortAttributes(name, attributes, allowed, mRefuser);
  Comments before = std::exchange(mFrames.back().mComments, {});
  mProperties.StartProperty(id, name, sorted, LangInForce(), std::move(before));
  PushFrame(FrameKind::kProperty, name);
}

RDFReader::Frame& RDFReader::PushFrame(FrameKind kind, const NameView& name,
                                       std::optional<std::string_view> lang) {
  mFrames.push_back({kind, name, std::nullopt});
  if (lang) mFrames.back().mLang = *lang;
  return mFrames.back();
}

// An element that is not a property passes its language on to the properties directly within it,
// since the document keeps languages at properties only.
std::optional<std::string_view> RDFReader::LangInForce() const {
  const std::optional<std::string>& lang = mFrames.back().mLang;
  return lang ? std::optional<std::string_view>(*lang) : std::nullopt;
}

// The driver also accepts names that are well-formed XML but not well-formed with namespaces.
void RDFReader::CheckName(const NameView& name) const {
  if (name.mLocalName.find(':') != std::string_view::npos) {
    mRefuser.Refuse(kXMPErr_BadXML, WrittenName(name) + " is not a name with a namespace prefix");
  }
  if (name.mURI.empty() && !name.mPrefix.empty()) {
    mRefuser.Refuse(kXMPErr_BadXML, "the prefix of " + WrittenName(name) + " is not declared");
  }
}

void RDFReader::AddComment(std::string markup) {
  const auto addTo = [&](Place place) { mDocument.CommentsAt(place).push_back(std::move(markup)); };
  if (mFrames.empty()) return addTo(mSawRoot ? Place::kAfterMeta : Place::kBeforeMeta);
  Frame& frame = mFrames.back();
  if (frame.mKind == FrameKind::kMeta) {
    return addTo(mSawRDF ? Place::kAfterRDF : Place::kBeforeRDF);
  }
  const bool holdsProperties = frame.mKind != FrameKind::kProperty || mProperties.HoldsFields();
  if (holdsProperties) return frame.mComments.push_back(std::move(markup));
  mProperties.AddComment(std::move(markup));
}

}  // namespace xmptoolkit
