#include <algorithm>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/StoryWriter.h>
#include <zelstoryhost/Text.h>

#include "formats/XMLWriter.h"

namespace zelstoryhost {
namespace {

using namespace zelstoryparser;

class StoryWriter {
 public:
  explicit StoryWriter(const std::string& name) : mName(name), mXML(name, mPlace) {}

  std::string Write(const TavroStory& story);

 private:
  [[noreturn]] void Refuse(const std::string& reason) const {
    throw Error(mName, std::nullopt, reason, mPlace.Describe());
  }

  void CheckVersion(const UTF16String& version) const;
  void Write(const Document& document);
  void Write(const Stream* stream, std::u16string_view name);
  void Write(const CommentStream& stream);
  void Write(const Section& section);
  void Write(const Scene& scene);
  void Write(const Paragraph& paragraph, std::u16string_view duration);

  XMLWriter& Begin(std::string_view element, const ObjectID& id) {
    return mXML.Begin(element).OptionalAttribute("objID", id.AsString());
  }

  const std::string& mName;
  StoryPlace mPlace;
  XMLWriter mXML;
};

std::string StoryWriter::Write(const TavroStory& story) {
  CheckVersion(story.mVersion);
  mXML.Begin("TavroStory")
      .Attribute("version", story.mVersion)
      .OptionalAttribute("documentType", story.mDocumentType)
      .OptionalAttribute("template", story.mTemplate);
  if (story.mDocument) Write(*story.mDocument);
  mPlace = StoryPlace();
  if (!story.mMetaData.empty()) mXML.Begin("metaData").Text(story.mMetaData).End();
  for (const UTF16String& label : story.mTags) {
    mXML.Begin("Tag").OptionalAttribute("label", label).End();
  }
  mXML.End();
  return mXML.Take();
}

// The parser's rule: of the parts that full stops separate, the first is 1 and the second 0.
void StoryWriter::CheckVersion(const UTF16String& version) const {
  if (version == u"1.0" || version.starts_with(u"1.0.")) return;
  Refuse("the story has the version '" + ToUTF8(version) + "', not 1.0");
}

void StoryWriter::Write(const Document& document) {
  mXML.Begin("document").OptionalAttribute("version", document.mVersion);
  Write(document.mHeaderStream.get(), u"header");
  Write(document.mBodyStream.get(), u"body");
  Write(document.mFooterStream.get(), u"footer");
  for (const auto& stream : document.mCommentStreams) {
    if (stream) Write(*stream);
  }
  mXML.End();
}

void StoryWriter::Write(const Stream* stream, std::u16string_view name) {
  if (stream == nullptr) return;
  mPlace.EnterStream(ToUTF8(name));
  if (stream->mName != name) Refuse("the stream has the name '" + ToUTF8(stream->mName) + "'");
  Begin("stream", stream->mObjectID).Attribute("name", name);
  if (stream->mSection) Write(*stream->mSection);
  mXML.End();
}

void StoryWriter::Write(const CommentStream& stream) {
  mPlace.EnterCommentStream();
  Begin("commentStream", stream.mObjectID)
      .OptionalAttribute("name", stream.mName)
      .OptionalAttribute("commentAuthor", stream.mCommentAuthor)
      .OptionalAttribute("dependent", stream.mDependent)
      .OptionalAttribute("commentAuthorID", stream.mCommentAuthorID);
  if (stream.mSection) Write(*stream.mSection);
  mXML.End();
}

void StoryWriter::Write(const Section& section) {
  Begin("section", section.mObjectID);
  for (const auto& scene : section.mScenes) {
    if (scene) Write(*scene);
  }
  mXML.End();
  mPlace.LeaveScene();
}

// The scene's duration is an attribute of its last heading.
void StoryWriter::Write(const Scene& scene) {
  mPlace.EnterScene(ToUTF8(scene.mSceneNumber));
  Begin("scene", scene.mObjectID).OptionalAttribute("sceneNumber", scene.mSceneNumber);
  const auto heading = std::find_if(
      scene.mParagraphs.rbegin(), scene.mParagraphs.rend(),
      [](const auto& paragraph) { return paragraph && paragraph->mElementType == kSceneHeading; });
  if (heading == scene.mParagraphs.rend() && !scene.mShotDuration.empty()) {
    Refuse("the scene has a duration, but no heading to carry it");
  }
  for (auto it = scene.mParagraphs.begin(); it != scene.mParagraphs.end(); ++it) {
    if (*it) Write(**it, it + 1 == heading.base() ? scene.mShotDuration : UTF16String());
  }
  mXML.End();
}

void StoryWriter::Write(const Paragraph& paragraph, std::u16string_view duration) {
  mPlace.EnterParagraph();
  Begin("paragraph", paragraph.mObjectID);
  const auto* const kind = std::find_if(
      kParagraphKinds.begin(), kParagraphKinds.end(),
      [&](const ParagraphKind& known) { return known.mType == paragraph.mElementType; });
  if (kind != kParagraphKinds.end()) {
    mXML.Attribute("element", kind->mName);
  } else if (paragraph.mElementType != kUnknownElement) {
    Refuse("the paragraph has the unknown kind " + std::to_string(paragraph.mElementType));
  }
  mXML.OptionalAttribute("shotDuration", duration);
  for (const auto& run : paragraph.mTextRuns) {
    if (!run) continue;
    Begin("textRun", run->mObjectID).Text(run->mText);
    mXML.End();
  }
  mXML.End();
  mPlace.LeaveParagraph();
}

}  // namespace

std::string WriteStory(const TavroStory& story, const std::string& name) {
  return StoryWriter(name).Write(story);
}

}  // namespace zelstoryhost
