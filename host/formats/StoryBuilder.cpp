#include "formats/StoryBuilder.h"

#include <algorithm>
#include <utility>

#include <zelcore/String.h>
#include <zelstoryhost/Text.h>

namespace zelstoryhost {

using namespace zelstoryparser;
using zelcore::utility::UTF8to16;

namespace {

constexpr std::string_view kBodyID = "body";

boost::intrusive_ptr<Paragraph> MakeParagraph(ParagraphElementType kind) {
  boost::intrusive_ptr<Paragraph> paragraph(new Paragraph);
  paragraph->mElementType = kind;
  return paragraph;
}

void AddRun(Paragraph& paragraph, std::string_view text) {
  paragraph.mTextRuns.emplace_back(new TextRun);
  zelcore::utility::AppendUTF8to16(text, paragraph.mTextRuns.back()->mText);
}

// FNV-1a, 64 bits: short, and the same on every machine and in every release.
class Hash {
 public:
  void Add(std::uint64_t value) { mValue = (mValue ^ value) * 0x100000001B3; }
  void Add(const UTF16String& text) {
    for (const char16_t unit : text) Add(unit);
    Add(0x10000);  // no unit: where the text ends
  }

  std::string AsText() const {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (int shift = 60; shift >= 0; shift -= 4) text += kDigits[(mValue >> shift) & 15];
    return text;
  }

 private:
  std::uint64_t mValue = 0xCBF29CE484222325;
};

std::string HashOf(const Scene& scene) {
  Hash hash;
  for (const auto& paragraph : scene.mParagraphs) {
    hash.Add(static_cast<std::uint64_t>(paragraph->mElementType));
    for (const auto& run : paragraph->mTextRuns) hash.Add(run->mText);
  }
  return hash.AsText();
}

void IdentifyParagraphs(Scene& scene, const std::string& sceneID) {
  std::size_t number = 0;
  for (const auto& paragraph : scene.mParagraphs) {
    paragraph->mObjectID = UTF8to16(sceneID + "-" + std::to_string(++number));
  }
}

}  // namespace

StoryBuilder::StoryBuilder() : mStory(new TavroStory), mBody(new Section) {
  mStory->mVersion = u"1.0";
  mStory->mDocument = new Document;
  mStory->mDocument->mVersion = u"1.0";
  mStory->mDocument->mBodyStream = new Stream;
  mStory->mDocument->mBodyStream->mName = u"body";
  mStory->mDocument->mBodyStream->mObjectID = UTF8to16(kBodyID);
  mStory->mDocument->mBodyStream->mSection = mBody;
}

void StoryBuilder::BeginScene(std::string_view number) {
  mScene = new Scene;
  mScene->mSceneNumber = UTF8to16(number);
  mBody->mScenes.push_back(mScene);
  mPositions.emplace_back();
}

void StoryBuilder::Add(ParagraphElementType kind, std::string_view text,
                       const zelcore::xml::Position& position) {
  if (!mScene) BeginScene("");
  mScene->mParagraphs.push_back(MakeParagraph(kind));
  AddRun(*mScene->mParagraphs.back(), text);
  mPositions.back().push_back(position);
}

std::size_t StoryBuilder::StreamOf(std::string_view name, std::string_view author) {
  auto& streams = mStory->mDocument->mCommentStreams;
  const auto [known, isNew] =
      mStreams.try_emplace({std::string(name), std::string(author)}, streams.size());
  if (!isNew) return known->second;
  streams.emplace_back(new CommentStream);
  streams.back()->mName = UTF8to16(name);
  streams.back()->mCommentAuthor = UTF8to16(author);
  streams.back()->mDependent = UTF8to16(kBodyID);
  streams.back()->mObjectID = UTF8to16("comments-" + std::to_string(streams.size()));
  streams.back()->mSection = new Section;
  return streams.size() - 1;
}

void StoryBuilder::AddComment(std::string_view stream, std::string_view author,
                              std::string_view text) {
  if (!mScene) BeginScene("");
  mComments.push_back({StreamOf(stream, author), mBody->mScenes.size() - 1, std::string(text)});
}

void StoryBuilder::Identify(Scene& scene) {
  const std::string number = ToUTF8(scene.mSceneNumber);
  std::string id = "scene-";
  id += number.empty() ? HashOf(scene) : number;
  if (!number.empty() && mIdentifiers.contains(id)) (id += "-") += HashOf(scene);
  const std::string first = id;
  int& twin = mIdentifiers[first];
  if (twin++ > 0) {
    while (!mIdentifiers.emplace(id = first + "-" + std::to_string(twin), 1).second) ++twin;
  }
  scene.mObjectID = UTF8to16(id);
  IdentifyParagraphs(scene, id);
}

// Each comment goes into a scene of its stream that stands for the scene that it belongs to.
void StoryBuilder::PlaceComments() {
  auto& streams = mStory->mDocument->mCommentStreams;
  std::vector<std::size_t> lastScene(streams.size(), mBody->mScenes.size());
  for (const Comment& comment : mComments) {
    auto& scenes = streams[comment.mStream]->mSection->mScenes;
    const Scene& subject = *mBody->mScenes[comment.mScene];
    if (std::exchange(lastScene[comment.mStream], comment.mScene) != comment.mScene) {
      scenes.emplace_back(new Scene);
      scenes.back()->mSceneNumber = subject.mSceneNumber;
      scenes.back()->mObjectID = UTF8to16(ToUTF8(subject.mObjectID.AsString()) + "-comments-" +
                                          std::to_string(comment.mStream + 1));
    }
    Scene& scene = *scenes.back();
    scene.mParagraphs.push_back(MakeParagraph(kUnknownElement));
    AddRun(*scene.mParagraphs.back(), comment.mText);
  }
  for (const auto& stream : streams) {
    for (const auto& scene : stream->mSection->mScenes) {
      IdentifyParagraphs(*scene, ToUTF8(scene->mObjectID.AsString()));
    }
  }
}

// Numbers come first, so that no other scene takes the identifier of a scene that has one.
StoryResult StoryBuilder::Finish(std::vector<Finding> findings) {
  for (const bool isNumbered : {true, false}) {
    for (const auto& scene : mBody->mScenes) {
      if (scene->mSceneNumber.empty() != isNumbered) Identify(*scene);
    }
  }
  PlaceComments();
  return {mStory, std::nullopt, std::move(findings), std::move(mPositions)};
}

bool HasForeignIdentifiers(const TavroStory& story) {
  return std::ranges::any_of(BodyScenes(story), [](const auto& scene) {
    const UTF16String id = scene ? scene->mObjectID.AsString() : UTF16String();
    return !id.empty() && !id.starts_with(u"scene-");
  });
}

}  // namespace zelstoryhost
