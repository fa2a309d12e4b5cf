#pragma once

#include <cstdlib>
#include <map>
#include <random>

#include <gtest/gtest.h>

#include <zelstoryhost/Story.h>
#include <zelstoryhost/Text.h>

#include "support/Story.h"

// What generated trees may hold. Texts are made of pieces; comment streams are pairs of a name and
// an author.
struct TreeOptions {
  std::vector<std::string> mPieces{
      " ",      "\t",      "\n",       "\n\n",     "  ",  "\"",     "'",      "&amp;",
      "<b>",    "]]>",     "[[",       "]]",       "/*",  "*/",     "(",      ")",
      "*",      "**",      "_",        "\\",       "#",   "# 3",    "=",      "===",
      "!",      "@",       "~",        ">",        "> <", ".",      "...",    ":",
      "^",      "INT.",    "EXT. SEA", "CUT TO:",  "OLE", "Rain.",  "ole",    "(O.S.)",
      "12A",    "OMITTED", "Title: ",  "Author: ", "by",  "\u00E4", "\u00A0", "\U0001F600",
      "\uFEFF", "\u0085",  "\u2028"};
  std::vector<std::int32_t> mKinds{200, 201, 202, 203, 204, 205, 206, 207};
  std::vector<std::array<std::string, 2>> mCommentStreams{
      {"notes", ""}, {"notes", "Ida"}, {"synopses", ""}, {"sections", ""}, {"boneyard", ""}};
  int mMostScenes = 4;
  int mMostParagraphs = 4;
  int mMostRuns = 3;
  // Each scene begins with its only heading, no paragraph is empty, and all dialogue has its cue.
  bool mIsPlain = false;
  bool mHasMetadata = true;
  bool mHasAllMembers = false;  // also identifiers, headers, durations, tags
};

// Makes trees that are valid as story documents. Scenes always have an identifier; the comments on
// a scene are in one whose identifier is that of the scene, "-comments-" and the stream's number.
class TreeGenerator {
 public:
  TreeGenerator(std::mt19937_64& random, const TreeOptions& options)
      : mRandom(random), mOptions(options) {}

  StoryPtr Make() {
    using namespace zelstoryparser;
    StoryPtr story(new TavroStory);
    story->mVersion = u"1.0";
    if (mOptions.mHasMetadata) story->mMetaData = Utf16(Text(6));
    Document& document = *(story->mDocument = new Document);
    document.mVersion = u"1.0";
    document.mBodyStream = MakeStream("body");
    if (mOptions.mHasAllMembers) {
      story->mDocumentType = Utf16(Text(2));
      story->mTemplate = Utf16(Text(2));
      for (int i = UpTo(2); i > 0; --i) story->mTags.push_back(Utf16(Text(2)));
      if (UpTo(1) == 1) document.mHeaderStream = MakeStream("header");
      if (UpTo(1) == 1) document.mFooterStream = MakeStream("footer");
    }
    for (const auto& [name, author] : mOptions.mCommentStreams) AddComments(document, name, author);
    return story;
  }

 private:
  using StreamPtr = boost::intrusive_ptr<zelstoryparser::Stream>;

  int UpTo(int most) { return std::uniform_int_distribution(0, most)(mRandom); }

  std::string Text(int mostPieces) {
    std::string text;
    for (int i = UpTo(mostPieces); i > 0; --i) {
      text += mOptions.mPieces[mRandom() % mOptions.mPieces.size()];
    }
    return text;
  }

  // An identifier where all members are asked for.
  zelcore::UTF16String ID(const char* kind) {
    return mOptions.mHasAllMembers ? Utf16(kind + std::to_string(++mLastID)) : u"";
  }

  StreamPtr MakeStream(const std::string& name) {
    StreamPtr stream(new zelstoryparser::Stream);
    stream->mName = Utf16(name);
    stream->mObjectID = ID("stream");
    stream->mSection = new zelstoryparser::Section;
    stream->mSection->mObjectID = ID("section");
    for (int i = UpTo(mOptions.mMostScenes); i > 0; --i) {
      stream->mSection->mScenes.push_back(MakeScene());
    }
    return stream;
  }

  ScenePtr MakeScene() {
    ScenePtr scene(new zelstoryparser::Scene);
    scene->mObjectID = Utf16("scene-" + std::to_string(++mLastID));
    if (UpTo(1) == 1) scene->mSceneNumber = Utf16(std::to_string(mLastID) + "A");
    if (mOptions.mIsPlain) AddParagraph(*scene, zelstoryparser::kSceneHeading);
    for (int i = UpTo(mOptions.mMostParagraphs); i > 0; --i) {
      const std::int32_t kind = mOptions.mKinds[mRandom() % mOptions.mKinds.size()];
      const bool isHeading = kind == zelstoryparser::kSceneHeading;
      if (isHeading && mOptions.mIsPlain) continue;
      AddParagraph(*scene, kind);
      const bool isCue = mOptions.mIsPlain && kind == zelstoryparser::kCharacter;
      if (isCue) AddParagraph(*scene, zelstoryparser::kDialog);
      if (isHeading && mOptions.mHasAllMembers) scene->mShotDuration = u"0:01:30";
    }
    return scene;
  }

  void AddParagraph(zelstoryparser::Scene& scene, std::int32_t kind) {
    auto& paragraph = scene.mParagraphs.emplace_back(new zelstoryparser::Paragraph);
    paragraph->mElementType = kind;
    paragraph->mObjectID = ID("paragraph");
    for (int i = UpTo(mOptions.mMostRuns); i > 0; --i) AddRun(*paragraph, Text(4));
    if (mOptions.mIsPlain) AddRun(*paragraph, "x");
  }

  void AddRun(zelstoryparser::Paragraph& paragraph, const std::string& text) {
    paragraph.mTextRuns.emplace_back(new zelstoryparser::TextRun)->mText = Utf16(text);
    paragraph.mTextRuns.back()->mObjectID = ID("run");
  }

  void AddComments(zelstoryparser::Document& document, const std::string& name,
                   const std::string& author) {
    boost::intrusive_ptr<zelstoryparser::CommentStream> stream(new zelstoryparser::CommentStream);
    stream->mName = Utf16(name);
    stream->mCommentAuthor = Utf16(author);
    stream->mDependent = document.mBodyStream->mObjectID.AsString();
    stream->mSection = new zelstoryparser::Section;
    const std::string end = "-comments-" + std::to_string(document.mCommentStreams.size() + 1);
    for (const auto& subject : document.mBodyStream->mSection->mScenes) {
      if (UpTo(2) != 0) continue;
      auto& scene = stream->mSection->mScenes.emplace_back(new zelstoryparser::Scene);
      scene->mSceneNumber = subject->mSceneNumber;
      scene->mObjectID = subject->mObjectID.AsString() + Utf16(end);
      for (int i = UpTo(2); i >= 0; --i) {
        auto& comment = scene->mParagraphs.emplace_back(new zelstoryparser::Paragraph);
        comment->mElementType = zelstoryparser::kUnknownElement;
        AddRun(*comment, Text(3) + "!");
      }
    }
    if (!stream->mSection->mScenes.empty()) document.mCommentStreams.push_back(stream);
  }

  std::mt19937_64& mRandom;
  const TreeOptions& mOptions;
  int mLastID = 0;
};

inline StoryPtr MakeTree(std::mt19937_64& random, const TreeOptions& options) {
  return TreeGenerator(random, options).Make();
}

// Calls `test` with a generator of random numbers for each of `count` seeds, from 1, until a test
// fails. The environment variables ZELSTORY_TREES and ZELSTORY_SEED name another count and first
// seed. A failure names its seed.
template <typename Test>
void ForRandomTrees(std::uint64_t count, Test test) {
  const auto number = [](const char* name, std::uint64_t otherwise) {
    const char* const text = std::getenv(name);
    return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
  };
  const std::uint64_t first = number("ZELSTORY_SEED", 1);
  count = number("ZELSTORY_TREES", count);
  for (std::uint64_t seed = first; seed < first + count && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE("ZELSTORY_SEED=" + std::to_string(seed));
    std::mt19937_64 random(seed);
    test(random, seed);
  }
}

// A text as a field of an outline.
inline std::string OutlineField(const std::string& text) {
  return Replaced(text, {{"\\", "\\\\"}, {"|", "\\|"}, {"\n", "\\n"}});
}

// The body, a line per scene: "12A|SceneHeading:INT. HOUSE|Action:Rain.|:Unknown."
inline std::string Outline(const zelstoryparser::TavroStory& story) {
  std::string outline;
  for (const auto& scene : zelstoryhost::BodyScenes(story)) {
    outline += OutlineField(Utf8(scene->mSceneNumber));
    for (const auto& paragraph : scene->mParagraphs) {
      std::string name;
      for (const auto& kind : zelstoryparser::kParagraphKinds) {
        if (kind.mType == paragraph->mElementType) name = kind.mName;
      }
      outline += "|" + name + ":" + OutlineField(zelstoryhost::TextOf(*paragraph));
    }
    outline += "\n";
  }
  return outline;
}

// The comments, a line each, by stream: "notes|Ida|3|Which book?" is one on the third scene.
inline std::string CommentOutline(const zelstoryparser::TavroStory& story) {
  std::map<std::string, std::size_t> places;  // of the body's scenes, by identifier
  for (const auto& scene : zelstoryhost::BodyScenes(story)) {
    places.emplace(Utf8(scene->mObjectID.AsString()), places.size() + 1);
  }
  std::map<std::string, std::string> lines;  // by stream
  for (const auto& stream : story.mDocument->mCommentStreams) {
    const std::string name = Utf8(stream->mName) + "|" + Utf8(stream->mCommentAuthor);
    for (const auto& scene : stream->mSection->mScenes) {
      const std::string id = Utf8(scene->mObjectID.AsString());
      const std::size_t place = places[id.substr(0, id.rfind("-comments-"))];
      for (const auto& paragraph : scene->mParagraphs) {
        lines[name] += name + "|" + std::to_string(place) + "|" +
                       OutlineField(zelstoryhost::TextOf(*paragraph)) + "\n";
      }
    }
  }
  std::string outline;
  for (const auto& [name, text] : lines) outline += text;
  return outline;
}
