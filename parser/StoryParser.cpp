#include <algorithm>
#include <string_view>

#include <zelstoryparser/StoryParser.h>

#include "parser/ElementTable.h"
#include "text/StringTokenizer.h"

namespace zelstoryparser {
namespace {

using zelcore::utility::AsciiToUTF16;

struct AttributeNames {
  const UTF16String mObjID = u"objID";
  const UTF16String mVersion = u"version";
  const UTF16String mDocumentType = u"documentType";
  const UTF16String mTemplate = u"template";
  const UTF16String mName = u"name";
  const UTF16String mCommentAuthor = u"commentAuthor";
  const UTF16String mDependent = u"dependent";
  const UTF16String mCommentAuthorID = u"commentAuthorID";
  const UTF16String mSceneNumber = u"sceneNumber";
  const UTF16String mElement = u"element";
  const UTF16String mShotDuration = u"shotDuration";
  const UTF16String mLabel = u"label";
};

// A local static, since a host may build objects that parse before global ones of this library.
const AttributeNames& Names() {
  static const AttributeNames names;
  return names;
}

UTF16String GetAttributeValue(const StoryParser::Attributes& attributes, const UTF16String& name) {
  const auto attribute = attributes.find(name);
  return attribute == attributes.end() ? UTF16String() : attribute->second;
}

ObjectID GetObjectIDAttribute(const StoryParser::Attributes& attributes) {
  const auto attribute = attributes.find(Names().mObjID);
  return attribute == attributes.end() ? ObjectID() : ObjectID(attribute->second);
}

bool IsASCIIText(const UTF16String& text, std::string_view ascii) {
  return std::equal(text.begin(), text.end(), ascii.begin(), ascii.end(),
                    [](char16_t unit, char c) { return unit == static_cast<unsigned char>(c); });
}

bool CheckStoryVersion(const UTF16String& version) {
  StringTokenizer parts(version, u".", false);
  const UTF16String major = parts.NextToken();
  const UTF16String minor = parts.NextToken();
  return major == u"1" && minor == u"0";
}

}  // namespace

StoryParser::StoryParser() : mCurrentElement(kElementUnknown), mParseError(false) {
  for (const ElementEntry& entry : kElements) {
    mElementMap.emplace(AsciiToUTF16(entry.mName), entry.mCode);
  }
}
StoryParser::StoryParser(const StoryParser& other) = default;
StoryParser& StoryParser::operator=(const StoryParser& other) = default;
StoryParser::~StoryParser() = default;

bool StoryParser::IsParseError() const {
  return mParseError;
}

UTF16String StoryParser::GetErrorString() {
  return mErrorString;
}

boost::intrusive_ptr<TavroStory> StoryParser::GetStory() {
  return mStory;
}

void StoryParser::SetParseError(const UTF16String& message) {
  mParseError = true;
  mErrorString = message;
}

std::int32_t StoryParser::GetElement(const Attributes& attributes) {
  const auto element = attributes.find(Names().mElement);
  if (element == attributes.end()) return kUnknownElement;
  for (const ParagraphKind& kind : kParagraphKinds) {
    if (IsASCIIText(element->second, kind.mName)) return kind.mType;
  }
  return kUnknownElement;
}

void StoryParser::StartDocument() {
  mParseError = false;
  mStory.reset();
  CloseAll();
}

void StoryParser::EndDocument() {
  CloseAll();
}

void StoryParser::CloseAll() {
  mCurrentDocument.reset();
  mCurrentCommentStream.reset();
  mCurrentStream.reset();
  mCurrentSection.reset();
  mCurrentScene.reset();
  mCurrentParagraph.reset();
}

void StoryParser::Characters(const UTF16String& text) {
  if (!mParseError) mCharacters += text;
}

void StoryParser::LookUpElement(const UTF16String& name) {
  const auto element = mElementMap.find(name);
  mCurrentElement = element == mElementMap.end() ? +kElementUnknown : element->second;
}

void StoryParser::StartElement(const UTF16String& name, const Attributes& attributes) {
  mCharacters.clear();
  if (mParseError) return;
  LookUpElement(name);
  switch (mCurrentElement) {
    case kElementStory:
      return StartStory(attributes);
    case kElementDocument:
      return StartDocumentElement(attributes);
    case kElementStream:
      return StartStream(attributes);
    case kElementSection:
      return StartSection(attributes);
    case kElementScene:
      return StartScene(attributes);
    case kElementParagraph:
      return StartParagraph(attributes);
    case kElementTextRun:
      return StartTextRun(attributes);
    case kElementCommentStream:
      return StartCommentStream(attributes);
    case kElementTag:
      if (mStory) mStory->mTags.push_back(GetAttributeValue(attributes, Names().mLabel));
      return;
    default:
      return;  // "metaData" is handled at its end tag; unknown names are ignored
  }
}

void StoryParser::StartStory(const Attributes& attributes) {
  mStory = new TavroStory;
  mStory->mVersion = GetAttributeValue(attributes, Names().mVersion);
  mStory->mDocumentType = GetAttributeValue(attributes, Names().mDocumentType);
  mStory->mTemplate = GetAttributeValue(attributes, Names().mTemplate);
  if (CheckStoryVersion(mStory->mVersion)) return;
  SetParseError(AsciiToUTF16("Wrong Version.  The parser doesn't support version:  ") +
                mStory->mVersion);
}

void StoryParser::StartDocumentElement(const Attributes& attributes) {
  if (!mStory || mStory->mDocument || mCurrentDocument) {
    return SetParseError(
        AsciiToUTF16("We found a Document, but we already had one, are there two?"));
  }
  mCurrentDocument = new Document;
  mCurrentDocument->mVersion = GetAttributeValue(attributes, Names().mVersion);
  mStory->mDocument = mCurrentDocument;
}

void StoryParser::StartStream(const Attributes& attributes) {
  if (!mCurrentDocument || mCurrentStream) {
    return SetParseError(
        AsciiToUTF16("We found a Stream, but we already found one.  Are there two?"));
  }
  mCurrentStream = new Stream;
  mCurrentStream->mObjectID = GetObjectIDAttribute(attributes);
  mCurrentStream->mName = GetAttributeValue(attributes, Names().mName);
  const UTF16String& name = mCurrentStream->mName;
  if (name == u"body") {
    LinkStream(mCurrentDocument->mBodyStream,
               "We found a Stream, but it's not part of a BodyStream?");
  } else if (name == u"header") {
    LinkStream(mCurrentDocument->mHeaderStream,
               "We found a Header, but it's not part of a HeaderStream?");
  } else if (name == u"footer") {
    LinkStream(mCurrentDocument->mFooterStream,
               "We found a Footer, but it's not part of a FooterStream?");
  }
}

void StoryParser::LinkStream(boost::intrusive_ptr<Stream>& slot, const char* occupiedMessage) {
  if (slot) return SetParseError(AsciiToUTF16(occupiedMessage));
  slot = mCurrentStream;
}

// Prefers the open stream. A comment stream takes a section only while no section is open.
void StoryParser::StartSection(const Attributes& attributes) {
  if (mCurrentStream && !mCurrentStream->mSection) {
    return OpenSection(attributes, mCurrentStream->mSection);
  }
  if (mCurrentCommentStream && !mCurrentCommentStream->mSection && !mCurrentSection) {
    return OpenSection(attributes, mCurrentCommentStream->mSection);
  }
  SetParseError(
      AsciiToUTF16("We found a Section, but it's not part of a Stream or CommentStream?"));
}

void StoryParser::OpenSection(const Attributes& attributes, boost::intrusive_ptr<Section>& slot) {
  mCurrentSection = new Section;
  mCurrentSection->mObjectID = GetObjectIDAttribute(attributes);
  slot = mCurrentSection;
}

void StoryParser::StartScene(const Attributes& attributes) {
  if (!mCurrentSection) {
    return SetParseError(AsciiToUTF16("We founda a Scene, but it's not part of a Section?"));
  }
  mCurrentScene = new Scene;
  mCurrentScene->mObjectID = GetObjectIDAttribute(attributes);
  mCurrentScene->mSceneNumber = GetAttributeValue(attributes, Names().mSceneNumber);
  mCurrentSection->mScenes.push_back(mCurrentScene);
}

void StoryParser::StartParagraph(const Attributes& attributes) {
  if (!mCurrentScene) return;
  mCurrentParagraph = new Paragraph;
  mCurrentParagraph->mObjectID = GetObjectIDAttribute(attributes);
  mCurrentParagraph->mElementType = GetElement(attributes);
  if (mCurrentParagraph->mElementType == kSceneHeading) {
    mCurrentScene->mShotDuration = GetAttributeValue(attributes, Names().mShotDuration);
  }
  mCurrentScene->mParagraphs.push_back(mCurrentParagraph);
}

void StoryParser::StartTextRun(const Attributes& attributes) {
  if (!mCurrentParagraph) return;
  mCurrentTextRun = new TextRun;
  mCurrentTextRun->mObjectID = GetObjectIDAttribute(attributes);
  mCurrentParagraph->mTextRuns.push_back(mCurrentTextRun);
}

void StoryParser::StartCommentStream(const Attributes& attributes) {
  if (!mCurrentDocument) {
    return SetParseError(AsciiToUTF16("We found a CommentStream, but it's not part of Document?"));
  }
  mCurrentCommentStream = new CommentStream;
  mCurrentCommentStream->mObjectID = GetObjectIDAttribute(attributes);
  mCurrentCommentStream->mName = GetAttributeValue(attributes, Names().mName);
  mCurrentCommentStream->mCommentAuthor = GetAttributeValue(attributes, Names().mCommentAuthor);
  mCurrentCommentStream->mDependent = GetAttributeValue(attributes, Names().mDependent);
  mCurrentCommentStream->mCommentAuthorID = GetAttributeValue(attributes, Names().mCommentAuthorID);
  mCurrentDocument->mCommentStreams.push_back(mCurrentCommentStream);
}

void StoryParser::EndElement(const UTF16String& name) {
  if (mParseError) return;
  LookUpElement(name);
  switch (mCurrentElement) {
    case kElementDocument:
      return mCurrentDocument.reset();
    case kElementStream:
      return mCurrentStream.reset();
    case kElementSection:
      return mCurrentSection.reset();
    case kElementScene:
      return mCurrentScene.reset();
    case kElementParagraph:
      return mCurrentParagraph.reset();
    case kElementTextRun:
      return EndTextRun();
    case kElementCommentStream:
      return mCurrentCommentStream.reset();
    case kElementMetaData:
      return EndMetaData();
    default:
      return;  // the root stays available from GetStory
  }
}

void StoryParser::EndTextRun() {
  if (!mCurrentTextRun || !mCurrentTextRun->mText.empty()) return;
  mCurrentTextRun->mText = mCharacters;
  mCharacters.clear();
}

void StoryParser::EndMetaData() {
  if (!mStory || !mStory->mMetaData.empty()) {
    return SetParseError(AsciiToUTF16("Metadata already exists.  Are there two?"));
  }
  mStory->mMetaData = mCharacters;
  mCharacters.clear();
}

}  // namespace zelstoryparser
