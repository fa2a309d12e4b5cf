#include <algorithm>
#include <utility>

#include <zelstoryhost/FDX.h>
#include <zelstoryhost/Text.h>

#include "UTF16.h"
#include "formats/FindingList.h"
#include "formats/Lines.h"
#include "formats/SceneComments.h"
#include "formats/StoryBuilder.h"
#include "formats/XMLWriter.h"
#include "formats/fdx/FDXElements.h"
#include "formats/fdx/FDXTitlePage.h"

namespace zelstoryhost {
namespace {

using namespace zelstoryparser;

using Texts = std::vector<UTF16String>;

// Where a scene begins in the text, and how long its first paragraph is, as notes count.
struct SceneRange {
  std::size_t mStart, mLength;
};

bool IsHeading(const Paragraph& paragraph) {
  return paragraph.mElementType == kSceneHeading;
}

bool IsNamed(const CommentStream& stream, std::string_view name) {
  return ToUTF8(stream.mName) == name;
}

bool HasText(const Scene& scene) {
  return std::ranges::any_of(scene.mParagraphs, [](const auto& paragraph) {
    return paragraph && !TextOf(*paragraph).empty();
  });
}

bool HasText(const Stream* stream) {
  return stream != nullptr && stream->mSection &&
         std::ranges::any_of(stream->mSection->mScenes,
                             [](const auto& scene) { return scene && HasText(*scene); });
}

class FDXWriter {
 public:
  explicit FDXWriter(const std::string& name) : mXML(name, mPlace) {}

  WrittenScript Write(const TavroStory& story);

 private:
  // A paragraph of the script as it is written.
  struct Line {
    std::string_view mType;
    std::u16string_view mText{};
    std::u16string_view mNumber{};
    std::string_view mMark{};  // StoryScene
  };

  void WriteContent(const TavroStory& story);
  void WriteScene(const Scene& scene, const Texts& synopses);
  void WriteParagraph(const Paragraph& paragraph, bool isFirst, std::u16string_view number,
                      const Texts& synopses);
  void WriteLine(const Line& line, const Texts& synopses);
  void WriteSynopses(const Texts& synopses);
  void WriteTitlePage(const TavroStory& story);
  void WriteNotes();
  void WriteNote(const SceneComment& note);
  void WriteTags(const TavroStory& story);

  void SortComments(const TavroStory& story);
  void FindLosses(const TavroStory& story);
  void Find(Severity severity, const std::string& text) {
    mFindings.Add(severity, text, std::nullopt, mPlace.Describe());
  }

  StoryPlace mPlace;
  XMLWriter mXML;
  FindingList mFindings;
  std::vector<Texts> mSynopses;      // by scene
  std::vector<SceneComment> mNotes;  // that belong to a scene, and are not empty
  std::vector<SceneRange> mRanges;   // of the scenes written
  std::size_t mLength = 0;           // of the text written: UTF-16 code units, and line ends
};

WrittenScript FDXWriter::Write(const TavroStory& story) {
  mXML.Begin(kFDXRoot)
      .Attribute("DocumentType", std::string_view("Script"))
      .Attribute("Template", std::string_view("No"))
      .Attribute("Version", std::string_view("5"));
  FindLosses(story);
  SortComments(story);
  WriteContent(story);
  WriteTitlePage(story);
  WriteNotes();
  WriteTags(story);
  mXML.End();
  return {mXML.Take(), mFindings.Take()};
}

// Comments that belong to no scene are kept at the first one, if there is one.
void FDXWriter::SortComments(const TavroStory& story) {
  const std::size_t scenes = BodyScenes(story).size();
  mSynopses.resize(scenes);
  for (SceneComment& comment : CommentsOf(story)) {
    if (comment.mText.empty()) continue;
    if (!comment.mScene) {
      Find(Severity::kWarning, scenes == 0 ? "comments without a scene are left out"
                                           : "comments of no scene are kept at the first one");
      if (scenes == 0) continue;
      comment.mScene = 0;
    }
    if (!IsNamed(*comment.mStream, kSynopses)) {
      mNotes.push_back(std::move(comment));
      continue;
    }
    if (!comment.mStream->mCommentAuthor.empty()) {
      Find(Severity::kWarning, "the authors of synopses have no place in FDX");
    }
    mSynopses[*comment.mScene].push_back(std::move(comment.mText));
  }
}

void FDXWriter::WriteContent(const TavroStory& story) {
  mPlace.EnterStream("body");
  mXML.Begin("Content");
  std::size_t index = 0;
  for (const auto& scene : BodyScenes(story)) {
    const Texts& synopses = mSynopses[index++];
    mRanges.push_back({mLength, 0});
    if (!scene) continue;
    mPlace.EnterScene(ToUTF8(scene->mSceneNumber));
    WriteScene(*scene, synopses);
    if (!scene->mShotDuration.empty()) {
      Find(Severity::kWarning, "the durations of scenes have no place in FDX");
    }
    mPlace.LeaveScene();
  }
  mXML.End();
  mPlace = StoryPlace();
}

// In FDX a heading begins each scene but the first. A heading without text stands for one that is
// missing, and for the number of a scene without one.
void FDXWriter::WriteScene(const Scene& scene, const Texts& synopses) {
  std::vector<const Paragraph*> paragraphs;
  for (const auto& paragraph : scene.mParagraphs) {
    if (paragraph) paragraphs.push_back(paragraph.get());
  }
  const bool isHeaded = !paragraphs.empty() && IsHeading(*paragraphs[0]);
  const bool needsMark =
      !isHeaded && (mRanges.size() > 1 || paragraphs.empty() || !scene.mSceneNumber.empty());
  if (needsMark) {
    Find(Severity::kNote, "scenes without a heading begin with an empty one");
    WriteLine({FDXTypeOf(kSceneHeading).mName, {}, scene.mSceneNumber, kBegins}, synopses);
  }
  bool isFirst = !needsMark;
  for (const Paragraph* const paragraph : paragraphs) {
    mPlace.EnterParagraph();
    WriteParagraph(*paragraph, isFirst, isFirst ? scene.mSceneNumber : UTF16String(),
                   isFirst ? synopses : Texts());
    mPlace.LeaveParagraph();
    isFirst = false;
  }
}

void FDXWriter::WriteParagraph(const Paragraph& paragraph, bool isFirst, std::u16string_view number,
                               const Texts& synopses) {
  const bool continues = IsHeading(paragraph) && !isFirst;
  if (continues) {
    Find(Severity::kNote, "scenes with several headings are several scenes to other programs");
  }
  const bool isKnown = std::ranges::any_of(
      kParagraphKinds,
      [&paragraph](const ParagraphKind& known) { return known.mType == paragraph.mElementType; });
  if (!isKnown) {
    Find(Severity::kNote, "paragraphs without a kind have a type that other programs do not know");
  }
  const auto kind =
      isKnown ? static_cast<ParagraphElementType>(paragraph.mElementType) : kUnknownElement;
  const UTF16String text = JoinedText(paragraph);
  WriteLine({FDXTypeOf(kind).mName, text, number, continues ? kContinues : ""}, synopses);
}

void FDXWriter::WriteLine(const Line& line, const Texts& synopses) {
  mXML.Begin("Paragraph").OptionalAttribute("Number", line.mNumber).Attribute("Type", line.mType);
  if (!line.mMark.empty()) mXML.Attribute(kStoryScene, line.mMark);
  if (!synopses.empty()) WriteSynopses(synopses);
  mXML.Begin("Text").Text(line.mText).End();
  mXML.End();
  SceneRange& range = mRanges.back();
  if (mLength == range.mStart) range.mLength = line.mText.size();
  mLength += line.mText.size() + 1;
}

void FDXWriter::WriteSynopses(const Texts& synopses) {
  mXML.Begin("SceneProperties").Begin("Summary");
  for (const UTF16String& synopsis : synopses) {
    mXML.Begin("Paragraph").Begin("Text").Text(synopsis).End();
    mXML.End();
  }
  mXML.End();
  mXML.End();
}

void FDXWriter::WriteTitlePage(const TavroStory& story) {
  if (story.mMetaData.empty()) return;
  mPlace.EnterStream("metadata");
  mXML.Begin("TitlePage").Begin("Content");
  for (const KeyedLine& line : TitlePageOf(story.mMetaData)) {
    mXML.Begin("Paragraph")
        .Attribute("Alignment", std::string_view("Center"))
        .Attribute("Type", std::string_view("General"))
        .Attribute(kStoryKey, line.mKey)
        .Begin("Text")
        .Text(line.mText)
        .End();
    mXML.End();
  }
  mXML.End();
  mXML.End();
}

void FDXWriter::WriteNotes() {
  if (mNotes.empty()) return;
  mXML.Begin("ScriptNotes");
  for (const SceneComment& note : mNotes) WriteNote(note);
  mXML.End();
}

// The name of the stream is the type of the note, except for plain notes.
void FDXWriter::WriteNote(const SceneComment& note) {
  const CommentStream& stream = *note.mStream;
  mPlace.EnterStream("comments '" + ToUTF8(stream.mName) + "'");
  const bool isPlain = IsNamed(stream, kNotes);
  if (!isPlain && !IsNamed(stream, kSections) && !IsNamed(stream, kBoneyard)) {
    Find(Severity::kWarning,
         "comments of the stream '" + ToUTF8(stream.mName) + "' are read again as notes");
  }
  const SceneRange& range = mRanges[*note.mScene];
  mXML.Begin("ScriptNote")
      .Attribute("Range", std::to_string(range.mStart) + "," + std::to_string(range.mLength))
      .OptionalAttribute("Type", isPlain ? std::u16string_view() : stream.mName)
      .OptionalAttribute("WriterName", stream.mCommentAuthor);
  ForEachLine(std::u16string_view(note.mText), [this](std::u16string_view line) {
    mXML.Begin("Paragraph").Begin("Text").Text(line).End();
    mXML.End();
  });
  mXML.End();
}

void FDXWriter::WriteTags(const TavroStory& story) {
  if (story.mTags.empty()) return;
  mPlace.EnterStream("tags");
  constexpr std::string_view kCategory = "1";
  mXML.Begin("TagData").Begin("TagCategories");
  mXML.Begin("TagCategory").Attribute("Id", kCategory).Attribute("Name", kStoryCategory);
  mXML.End();
  mXML.End();
  mXML.Begin("TagDefinitions");
  int number = 0;
  for (const UTF16String& label : story.mTags) {
    mXML.Begin("TagDefinition")
        .Attribute("CatId", kCategory)
        .Attribute("Id", std::to_string(++number))
        .Attribute("Label", label)
        .End();
  }
  mXML.End();
  mXML.End();
}

void FDXWriter::FindLosses(const TavroStory& story) {
  if (!story.mDocumentType.empty() || !story.mTemplate.empty()) {
    Find(Severity::kNote, "the story's document type and template have no place in FDX");
  }
  if (!story.mDocument) return;
  if (HasText(story.mDocument->mHeaderStream.get())) {
    Find(Severity::kWarning, "the header has no place in FDX");
  }
  if (HasText(story.mDocument->mFooterStream.get())) {
    Find(Severity::kWarning, "the footer has no place in FDX");
  }
  if (HasForeignIdentifiers(story)) {
    Find(Severity::kNote, "identifiers have no place in FDX; reading makes new ones");
  }
}

}  // namespace

WrittenScript WriteFDX(const TavroStory& story, const std::string& name) {
  return FDXWriter(name).Write(story);
}

}  // namespace zelstoryhost
