#include <filesystem>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <zelcore/xml/Reader.h>

#include "zelstory/Scratch.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

using StoryCommandsTest = Scratch;

// The text of every run of a document, read without the library.
class RunTexts : public zelcore::xml::AbstractParseHandler {
 public:
  void StartElement(const zelcore::UTF16String& name,
                    const std::map<zelcore::UTF16String, zelcore::UTF16String>&) override {
    mText.clear();
    if (name == u"paragraph") mTexts.emplace_back();
  }
  void Characters(const zelcore::UTF16String& text) override { mText += text; }
  void EndElement(const zelcore::UTF16String& name) override {
    if (name == u"textRun") mTexts.back() += zelcore::utility::UTF16to8(mText);
  }

  std::vector<std::string> mTexts;  // of each paragraph, its runs joined

 private:
  zelcore::UTF16String mText;
};

// The text of every paragraph, wherever it stands in the JSON of a story.
void CollectTexts(const nlohmann::ordered_json& json, std::vector<std::string>& texts) {
  if (json.contains("textRuns")) texts.emplace_back();
  if (json.contains("objectID") && json.contains("text")) texts.back() += json["text"];
  if (!json.is_structured()) return;
  for (const auto& child : json) CollectTexts(child, texts);
}

TEST_F(StoryCommandsTest, AllTextOfAGoodStoryIsShown) {
  for (const std::string& file : GoodExamples()) {
    SCOPED_TRACE(file);
    EXPECT_EQ(Tool({"check", file}).mOutput, file + ": ok\n");
    RunTexts expected;
    zelcore::xml::Reader reader;
    ASSERT_TRUE(reader.ParseFile(file, expected));
    const Outcome json = Tool({"show", file, "--json"});
    std::vector<std::string> texts;
    CollectTexts(nlohmann::ordered_json::parse(json.mOutput), texts);
    // The JSON lists header, body and footer in this order, whatever the document's.
    EXPECT_THAT(texts, testing::UnorderedElementsAreArray(expected.mTexts));
    EXPECT_EQ(Tool({"show", file, "--json"}).mOutput, json.mOutput);
  }
}

TEST_F(StoryCommandsTest, EncodingsDifferInNothingElse) {
  const std::string expected = Tool({"show", Example("encodings/utf8_bom.quor"), "--json"}).mOutput;
  for (const auto& entry : std::filesystem::directory_iterator(Example("encodings"))) {
    EXPECT_EQ(Tool({"show", entry.path().string(), "--json"}).mOutput, expected) << entry.path();
  }
}

TEST_F(StoryCommandsTest, CheckTellsPlaceAndReasonOfEveryFault) {
  const std::vector<std::string> table = Lines(ReadBytes(Example("broken/expected.txt")));
  std::size_t tested = 0;
  for (const std::string& line : table) {
    if (line.empty() || line[0] == '#') continue;
    const auto tab = [&line](std::size_t from) { return line.find('\t', from); };
    const std::size_t first = tab(0), second = tab(first + 1), third = tab(second + 1);
    const std::string file = Example("broken/" + line.substr(0, first));
    const std::string row = line.substr(first + 1, second - first - 1);
    const std::string column = line.substr(second + 1, third - second - 1);
    const Outcome outcome = Tool({"check", file});
    EXPECT_EQ(outcome.mStatus, 1) << file;
    EXPECT_THAT(outcome.mOutput, StartsWith(row == "-" ? file + ":"
                                                       : file + ":" + row + ":" + column +
                                                             ": error: " + line.substr(third + 1)));
    ++tested;
  }
  EXPECT_EQ(tested, 24u);
}

TEST_F(StoryCommandsTest, CheckWorksOnManyFilesAndTellsThePlaceInTheStory) {
  const Outcome outcome =
      Tool({"check", "--json", Example("broken/cut_off.quor"), "-", "none.quor"},
           "<TavroStory version='1.0'/>");
  EXPECT_EQ(outcome.mStatus, 1);
  const std::vector<std::string> lines = Lines(outcome.mOutput);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_THAT(lines[0], HasSubstr(R"("line":15,"column":98,"message":"the document ends)"));
  EXPECT_THAT(lines[0], HasSubstr(R"("where":"body, scene 2, paragraph 2")"));
  EXPECT_EQ(lines[1], R"({"file":"-","ok":true})");
  EXPECT_THAT(lines[2], HasSubstr(R"("ok":false,"line":null,"column":null)"));
}

TEST_F(StoryCommandsTest, AScreenplayHasItsLayout) {
  Write("s.quor", R"(<TavroStory version="1.0"><document><stream name="footer"><section><scene>
    <paragraph element="Action"><textRun>end</textRun></paragraph></scene></section></stream>
    <stream name="body"><section><scene>
    <paragraph element="SceneHeading"><textRun>ext. sea</textRun></paragraph></scene>
    <scene sceneNumber="7A">
    <paragraph element="SceneHeading"><textRun>int. café - night</textRun></paragraph>
    <paragraph element="Action"><textRun>Rain on the glass, and a very long line of action that cannot stand on one line alone.</textRun></paragraph>
    <paragraph element="Character"><textRun>ANNA</textRun></paragraph>
    <paragraph element="Parenthetical"><textRun>(low)</textRun></paragraph>
    <paragraph element="Dialog"><textRun>One&#10;two&#x9b;31m</textRun></paragraph>
    <paragraph element="Transition"><textRun>cut to:</textRun></paragraph>
    </scene></section></stream></document></TavroStory>)");
  const std::string scene =
      "\n7A    INT. CAFÉ - NIGHT" + std::string(46, ' ') +
      "7A\n\n      Rain on the glass, and a very long line of action that cannot\n"
      "      stand on one line alone.\n\n"
      "                            ANNA\n"
      "                      (low)\n"
      "                One\n"
      "                two\uFFFD31m\n\n" +
      std::string(60, ' ') + "CUT TO:\n";
  EXPECT_EQ(Tool({"show", "-", "--scene", "7A"}, Read("s.quor")).mOutput, scene);
  EXPECT_EQ(Tool({"show", "s.quor"}).mOutput, "\n      EXT. SEA\n" + scene + "\n      end\n");
}

TEST_F(StoryCommandsTest, CommentsAreShownOnRequest) {
  const std::string file = Example("the_long_tide.quor");
  EXPECT_THAT(Tool({"show", file}).mOutput, testing::Not(HasSubstr("COMMENTS")));
  EXPECT_THAT(Tool({"show", file, "--comments"}).mOutput, HasSubstr("COMMENTS BY "));
}

TEST_F(StoryCommandsTest, ShotsAreNumberedByPositionAndReadByOthers) {
  const Outcome outcome = Tool({"shots", Example("the_long_tide.quor"), "--out", "a/b"});
  EXPECT_EQ(outcome.mStatus, 0);
  const std::vector<std::string> lines = Lines(outcome.mOutput);
  ASSERT_EQ(lines.size(), 72u);
  EXPECT_THAT(lines[71], testing::MatchesRegex("72\t[^\t]+\ta/b/scene_0072.xmp"));
  const Outcome both = Tool({"shots", Example("the_long_tide.quor"), "none.quor",
                             Example("harbour_lights.quor"), "--out", "d"});
  EXPECT_EQ(both.mStatus, 1);
  EXPECT_THAT(both.mOutput, HasSubstr("harbour_lights.quor: 4\t"));
  EXPECT_EQ(Read("d/the_long_tide/scene_0072.xmp"), Read("a/b/scene_0072.xmp"));
  for (int run = 0; run < 2; ++run) {  // the second run replaces what the first one made
    EXPECT_EQ(Tool({"shots", Example("the_long_tide.quor"), "--out", "c"}).mErrors, "");
  }
  const std::string story = Read(Example("harbour_lights.quor"));
  Write("scene_0001.xmp", story);
  EXPECT_THAT(Tool({"shots", "scene_0001.xmp", "--out", ".", "--force"}).mErrors,
              HasSubstr("the story itself"));
  EXPECT_EQ(Read("scene_0001.xmp"), story);
  const bool judged = IsInstalled("xmllint") && IsInstalled("rapper");
  for (int scene = 1; scene <= 72; ++scene) {
    char name[32];
    std::snprintf(name, sizeof name, "/scene_%04d.xmp", scene);
    ASSERT_EQ(Read(std::string("a/b") + name), Read(std::string("c") + name));
    if (!judged) continue;
    EXPECT_EQ(Process("xmllint", {"--noout", std::string("c") + name}).mStatus, 0) << name;
    const Outcome triples = Triples(std::string("c") + name);
    EXPECT_EQ(triples.mStatus, 0) << triples.mErrors;
    EXPECT_THAT(triples.mOutput, HasSubstr("DynamicMedia/shotName> \"")) << name;
  }
  if (!judged) GTEST_SKIP() << "xmllint or rapper is not installed: packets were not judged";
}

TEST_F(StoryCommandsTest, DumpWritesIntoTheTemporaryFolder) {
  const Outcome outcome = Tool({"dump", Example("harbour_lights.quor")});
  EXPECT_THAT(outcome.mOutput, StartsWith("Story Version: 1.0  Document Version: "));
  EXPECT_THAT(FilesHere(), ElementsAre("mivTestXMPBufferDumpFile_Scene_1_Shot_1.txt",
                                       "mivTestXMPBufferDumpFile_Scene_2_Shot_1.txt",
                                       "mivTestXMPBufferDumpFile_Scene_3_Shot_1.txt",
                                       "mivTestXMPBufferDumpFile_Scene_4_Shot_1.txt"));
  EXPECT_EQ(Process("env", {"TMPDIR=none", ZELSTORY_TOOL, "dump", Example("harbour_lights.quor")})
                .mErrors,
            "temporary folder (TMPDIR): error: No such file or directory\n");
}

}  // namespace
