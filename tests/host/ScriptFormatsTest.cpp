#include <fstream>
#include <functional>
#include <random>
#include <sstream>

#include <gmock/gmock.h>

#include <zelstoryhost/ScriptFormats.h>
#include <zelstoryhost/StoryJSON.h>
#include <zelstoryhost/StoryWriter.h>

#include "support/TreeGenerator.h"

namespace {

using namespace zelstoryhost;
using testing::Each;
using testing::HasSubstr;

std::string JSON(const zelstoryparser::TavroStory& story) {
  std::ostringstream text;
  WriteJSON(story, text);
  return text.str();
}

TEST(StoryWriterTest, WrittenTreesAreReadAgain) {
  TreeOptions options;
  options.mHasAllMembers = true;
  options.mPieces.insert(options.mPieces.end(), {"\r", "\r\n", "<![CDATA[", "&#13;", "\uFFFD"});
  ForRandomTrees(500, [&](std::mt19937_64& random, std::uint64_t /*seed*/) {
    const StoryPtr tree = MakeTree(random, options);
    const std::string document = WriteStory(*tree, "s");
    const StoryResult result = ReadStory(document, "s");
    ASSERT_TRUE(result) << result.mFault->what() << '\n' << document;
    EXPECT_EQ(JSON(*result.mStory), JSON(*tree)) << document;
    EXPECT_EQ(WriteStory(*result.mStory, "s"), document);
  });
}

TEST(StoryWriterTest, WhatNoDocumentHoldsIsRefusedByItsPlace) {
  const auto refusal = [](const auto& change) -> std::string {
    const StoryPtr story =
        ReadStory(
            "<TavroStory version='1.0'><document><stream name='body'><section><scene "
            "sceneNumber='7'><paragraph element='SceneHeading'><textRun>a</textRun></paragraph>"
            "</scene></section></stream></document></TavroStory>",
            "s")
            .mStory;
    change(*story, *BodyScenes(*story)[0]);
    try {
      return WriteStory(*story, "s");
    } catch (const Error& error) {
      return error.what();
    }
  };
  using zelstoryparser::Scene;
  using zelstoryparser::TavroStory;
  const std::pair<std::function<void(TavroStory&, Scene&)>, std::string> cases[] = {
      {[](auto& story, auto&) { story.mMetaData = u"\x1"; },
       "s: error: XML cannot hold the character U+0001"},
      {[](auto&, auto& scene) { scene.mParagraphs[0]->mTextRuns[0]->mText = u"\xD800"; },
       "s: error: XML cannot hold the character U+D800 (body, scene 7, paragraph 1)"},
      {[](auto&, auto& scene) { scene.mSceneNumber = u"\xFFFE"; },
       "s: error: XML cannot hold the character U+FFFE (body, scene \uFFFE)"},
      {[](auto&, auto& scene) { scene.mParagraphs[0]->mElementType = 0; },
       "s: error: the paragraph has the unknown kind 0 (body, scene 7, paragraph 1)"},
      {[](auto&, auto& scene) {
         scene.mParagraphs.clear();
         scene.mShotDuration = u"1";
       },
       "s: error: the scene has a duration, but no heading to carry it (body, scene 7)"},
      {[](auto& story, auto&) { story.mDocument->mBodyStream->mName = u"b"; },
       "s: error: the stream has the name 'b' (body)"},
      {[](auto& story, auto&) { story.mVersion = u".1.0"; },
       "s: error: the story has the version '.1.0', not 1.0"},
  };
  for (const auto& [change, expected] : cases) EXPECT_EQ(refusal(change), expected);
}

TEST(ScriptFormatsTest, TheContentTellsTheFormatAndThenTheName) {
  using namespace std::string_literals;
  struct {
    std::string mHead;
    const char* mName;
    const char* mFormat;
  } const cases[] = {
      {"<TavroStory version='1.0'/>", "a.fountain", "story"},
      {"\xEF\xBB\xBF<?xml version='1.0'?><!-- <FinalDraft> --><FinalDraft>", "a.quor", "fdx"},
      {"<!DOCTYPE FinalDraft [<!ENTITY a '>'>]>\n<FinalDraft/>", "-", "fdx"},
      {"\xFF\xFE<\0F\0i\0n\0a\0l\0D\0r\0a\0f\0t\0>\0"s, "-", "fdx"},
      {"<a><FinalDraft/>", "a.fdx", "story"},
      {"<?xml version='1.0'?>", "a.fdx", "story"},
      {"INT. A", "a.FDX", "fdx"},
      {"INT. A", "-", "fountain"},
      {"< INT", "a.doc", "fountain"},
      {"", "a.txt", "fountain"},
      {"", "-", "story"},
      {"%PDF-1.4", "a.fountain",
       "a.fountain: error: is a PDF document: save the script as Fountain or FDX in the program "
       "that wrote it"},
      {"PK\3\4", "a.docx",
       "a.docx: error: is a Word document or another ZIP archive: save the script as Fountain or "
       "FDX in the program that wrote it"},
  };
  for (const auto& [head, name, format] : cases) {
    std::string found;
    try {
      found = DetectFormat(head, name).mName;
    } catch (const Error& error) {
      found = error.what();
    }
    EXPECT_EQ(found, format) << head;
  }
}

std::string Page(const std::string& path) {
  std::ifstream file(ZELSTORY_EXAMPLES_DIR "/../" + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(ScriptFormatsTest, TheDocumentsListAllFormats) {
  const std::string page = Page("docs/formats.md");
  const std::string texts[] = {Page("tools/zelstory/zelstory.1"),
                               Page("tools/zelstory/completions/_zelstory"),
                               Page("tools/zelstory/completions/zelstory.bash"),
                               Page("tools/zelstory/completions/zelstory.fish")};
  for (const ScriptFormat& format : ScriptFormats()) {
    std::string extensions;
    for (const auto& extension : format.mExtensions) {
      extensions += (extensions.empty() ? "`" : ", `") + std::string(extension) + "`";
      EXPECT_EQ(FormatOfName("a" + std::string(extension)), &format);
      EXPECT_THAT(texts, Each(HasSubstr(extension.substr(1))));
    }
    const std::string row = "| " + std::string(format.mTitle) + " | `" + std::string(format.mName) +
                            "` | " + extensions + " |\n";
    EXPECT_NE(page.find(row), std::string::npos) << row;
    EXPECT_THAT(texts, Each(HasSubstr(format.mName)));
    EXPECT_EQ(FindFormat(format.mName), &format);
  }
}

}  // namespace
