#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Scratch.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class TagTest : public Scratch {
 protected:
  TagTest() {
    std::filesystem::create_directory(File("day"));
    for (const char* clip : {"day/a.mov", "day/b.mov", "day/c.mov"}) Write(clip, "");
  }
  Outcome Tag(const std::string& table, const std::vector<std::string>& options = {}) {
    Write("day/clips.csv", table);
    std::vector<std::string> arguments{"tag", mStory, "--table", "day/clips.csv"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return Tool(arguments);
  }

  const std::string mStory = Example("harbour_lights.quor");
};

TEST_F(TagTest, WritesEachClipOnceAndNothingTheSecondTime) {
  const std::string table = "clip,scene\na.mov,1\nb.mov,2\nnew.xmp,3\n";
  const Outcome preview = Tag(table, {"--dry-run"});
  EXPECT_THAT(preview.mOutput, HasSubstr("b.mov: would be written\n  xmpScript:sceneSetting: "
                                         "(none) -> \"INT\"\n"));
  const auto first = nlohmann::json::parse(Lines(Tag(table, {"--dry-run", "--json"}).mOutput)[0]);
  EXPECT_EQ(first["outcome"], "would be written");
  EXPECT_EQ(first["changes"][1]["path"], "xmpDM:shotLocation");
  EXPECT_TRUE(first["changes"][1]["before"].is_null());
  EXPECT_EQ(first["changes"][1]["after"], "HARBOUR");
  EXPECT_FALSE(std::filesystem::exists(File("day/a.mov.xmp")));
  EXPECT_EQ(Tag(table).mOutput, "a.mov: written\nb.mov: written\nnew.xmp: written\n");
  EXPECT_THAT(Read("day/a.mov.xmp"), HasSubstr(">HARBOUR<"));
  EXPECT_THAT(Read("day/b.mov.xmp"), HasSubstr("BELL &amp; ANCHOR<"));
  const std::string bytes = Read("day/b.mov.xmp");
  const Outcome again = Tag(table);
  EXPECT_EQ(again.mOutput, "a.mov: unchanged\nb.mov: unchanged\nnew.xmp: unchanged\n");
  EXPECT_EQ(again.mStatus, 0);
  const Outcome elsewhere = Tool({"tag", mStory, "--table", "-", "--clips", "day"}, table);
  EXPECT_EQ(elsewhere.mOutput, again.mOutput);
  EXPECT_EQ(Read("day/b.mov.xmp"), bytes);
}

TEST_F(TagTest, ReadsTheTablesThatSpreadsheetsWrite) {
  Write("day/two, \"too\".mov", "");
  Write("scenes.quor",
        "<TavroStory version='1.0'><document><stream name='body'><section>"
        "<scene sceneNumber='7' objID='x'/><scene sceneNumber='7A'/></section></stream></document>"
        "</TavroStory>");
  for (const char* table : {
           "clip,scene\na.mov,7\n\"two, \"\"too\"\".mov\",7A\n , \n,,\n",
           "\xEF\xBB\xBF"
           "Take;Clip;Number\r\n\r\n1;a.mov;7\r\n2;\"two, \"\"too\"\".mov\";7A\r\n",
           "clip\tID\tposition\tnumber\n a.mov \tx\t1\t7\n\"two, \"\"too\"\".mov\"\t\t2\t\n",
           "number,clip,note\n7,a.mov,\"two\nlines\"\n7A,\"two, \"\"too\"\".mov\",\n",
       }) {
    Write("day/clips.csv", table);
    const Outcome outcome = Tool({"tag", "scenes.quor", "--table", "day/clips.csv", "--dry-run"});
    EXPECT_EQ(outcome.mStatus, 0) << table << outcome.mErrors;
    EXPECT_THAT(outcome.mOutput, HasSubstr("a.mov: would be written")) << table;
    EXPECT_THAT(outcome.mOutput, HasSubstr("two, \"too\".mov: would be written")) << table;
  }
}

TEST_F(TagTest, AFaultyTableWritesNothingUnlessAsked) {
  const std::string table =
      "clip,position,scene\nc.mov,1,\na.mov,9,\n,1,\nb.mov,2,\n./b.mov.xmp,2,\nnone.mov,1,\n"
      "x.xmp,1,2\ny.xmp,,\nz.xmp,two,\nno/z.xmp,1,\n";
  const Outcome refused = Tag(table);
  EXPECT_EQ(refused.mStatus, 1);
  EXPECT_THAT(refused.mErrors, StartsWith("day/clips.csv: error: 9 of 10 rows have faults"));
  EXPECT_THAT(
      Lines(refused.mOutput),
      ElementsAre(
          "c.mov: refused: other lines have faults",
          "a.mov: refused: no scene is at position 9: the body has 4 scenes",
          "day/clips.csv:4: refused: the row names no clip",
          "b.mov: refused: several lines mean its sidecar: 5, 6",
          "./b.mov.xmp: refused: several lines mean its sidecar: 5, 6",
          "none.mov: refused: No such clip (a sidecar's name ends in .xmp)",
          "x.xmp: refused: the row names two scenes, at the positions 1 and 2",
          "y.xmp: refused: the row names no scene",
          "z.xmp: refused: \"two\" is not a position: scenes count from 1, in whole numbers",
          "no/z.xmp: refused: there is no folder day/no"));
  EXPECT_FALSE(std::filesystem::exists(File("day/c.mov.xmp")));
  const Outcome going = Tag(table, {"--keep-going"});
  EXPECT_EQ(going.mStatus, 1);
  EXPECT_THAT(going.mOutput,
              StartsWith("c.mov: written\na.mov: refused: no scene is at position 9"));
}

TEST_F(TagTest, OneClipsFaultStopsNoOther) {
  Write("day/a.mov.xmp", "no XMP");
  const Outcome outcome = Tag("clip,scene\na.mov,1\nb.mov,2\n", {"--json"});
  EXPECT_EQ(outcome.mStatus, 1);
  const std::vector<std::string> lines = Lines(outcome.mOutput);
  ASSERT_EQ(lines.size(), 2u);
  const auto refused = nlohmann::json::parse(lines[0]), written = nlohmann::json::parse(lines[1]);
  EXPECT_EQ(refused["outcome"], "refused");
  EXPECT_THAT(refused["reason"].get<std::string>(), StartsWith("day/a.mov.xmp:1:1: "));
  EXPECT_EQ(Read("day/a.mov.xmp"), "no XMP");
  EXPECT_EQ(written["outcome"], "written");
  EXPECT_EQ(written["sidecar"], "day/b.mov.xmp");
  EXPECT_EQ(written["scene"], "2");
  EXPECT_EQ(written["position"], 2);
  EXPECT_EQ(written["paths"][1], "xmpDM:shotLocation");
}

TEST_F(TagTest, ATableThatIsNoneIsRefused) {
  const std::pair<const char*, const char*> tables[] = {
      {"", "day/clips.csv: error: is empty; its first line names the columns"},
      {"clip,take\na.mov,1\n",
       "day/clips.csv:1: error: the first line names the columns: clip, and"},
      {"\nscene,number\n1,7\n", "day/clips.csv:2: error: the first line names the columns: clip"},
      {"clip,scene,Scene\n", "day/clips.csv:1: error: two columns are called scene"},
      {"clip,scene\n\"a\r\n.mov\",1\r\n\"b\"c,1\n",
       "day/clips.csv:4: error: a quotation mark is out"},
      {"clip,scene\na.mov,\"1", "day/clips.csv:2: error: a quotation mark is out of place"},
      {"clip,scene\na\xFF.mov,1\n", "day/clips.csv:2: error: the text is not UTF-8"},
  };
  for (const auto& [table, error] : tables) {
    const Outcome outcome = Tag(table);
    EXPECT_EQ(outcome.mStatus, 1) << table;
    EXPECT_THAT(outcome.mErrors, StartsWith(error)) << table;
    EXPECT_THAT(outcome.mOutput, IsEmpty()) << table;
  }
}

// In this story the positions run ahead of the numbers.
TEST_F(TagTest, ASceneIsMeantByItsNumber) {
  const std::string story = Example("the_long_tide.quor");
  Write("t.csv", "clip,scene\ntag.xmp,50\n");
  EXPECT_EQ(Tool({"tag", story, "--table", "t.csv"}).mErrors, "");
  Tool({"write", story, "--scene", "50", "scene.xmp"});
  Tool({"write", story, "--position", "51", "position.xmp"});
  Tool({"write", story, "--id", "lt.s051", "id.xmp"});
  for (const char* same : {"scene.xmp", "position.xmp", "id.xmp"}) {
    EXPECT_EQ(Read(same), Read("tag.xmp")) << same;
  }
  Write("none.quor",
        "<TavroStory version='1.0'><document><stream name='body'><section><scene/><scene "
        "sceneNumber=' '/>"
        "</section></stream></document></TavroStory>");
  Write("t.csv", "clip,scene\na.xmp,1\nb.xmp,2\n");
  const std::string note =
      "none.quor: note: no scene has a number, so scenes are chosen by position\n";
  EXPECT_EQ(Tool({"tag", "none.quor", "--table", "t.csv"}).mErrors, note);
  EXPECT_EQ(Tool({"show", "none.quor", "--scene", "2"}).mErrors, note);
  EXPECT_EQ(Tool({"show", "none.quor", "--position", "2"}).mErrors, "");
  Write("t.csv", "clip,scene\n");
  const Outcome empty = Tool({"tag", "none.quor", "--table", "t.csv"});
  EXPECT_EQ(empty.mErrors, "t.csv: note: the table has no rows, so there is nothing to do\n");
  EXPECT_EQ(empty.mStatus, 0);
}

// The terminal is a pseudo-terminal that script(1) makes.
TEST_F(TagTest, ATerminalGetsColoursAndProgress) {
  if (!IsInstalled("script")) GTEST_SKIP() << "script is not installed";
  const std::string check = std::string(ZELSTORY_TOOL) + " check '" + mStory + "'";
  const auto onTerminal = [this](const std::string& line) {
    return Process("env", {"-u", "NO_COLOR", "TERM=xterm", "script", "-qec", line, "/dev/null"})
        .mOutput;
  };
  EXPECT_THAT(onTerminal(check), HasSubstr("\x1B[32mok\x1B[0m"));
  EXPECT_THAT(onTerminal("NO_COLOR=1 " + check), testing::Not(HasSubstr("\x1B")));
  const std::string slow = "(sleep 1.1; cat '" + mStory + "') | " + check + " - '" + mStory + "'";
  EXPECT_THAT(onTerminal(slow), HasSubstr("\r\x1B[K3 of 3\r\x1B[K"));
  // Results that go elsewhere leave the progress where it is: the last file is a pipe, whose writer
  // looks at the screen once it is being read.
  EXPECT_THAT(onTerminal("mkfifo pipe; (exec 9>pipe; printf HERE >&2; cat '" + mStory +
                         "' >&9) & " + slow + " pipe >o; wait"),
              testing::ContainsRegex("\x1B\\[K[34] of 4HERE"));
}

// The second story is only there when the signal has come.
TEST_F(TagTest, ASignalEndsTheRunBetweenFiles) {
  const Outcome outcome = Process("bash", {"-c", R"(mkfifo in out
    "$1" check "$2" - "$2" <in >out & tool=$!
    exec 3>in 4<out
    read -r first <&4; echo "$first"
    kill -TERM $tool
    cat "$2" >&3; exec 3>&-
    cat <&4
    wait $tool; echo "status $?")",
                                           "bash", ZELSTORY_TOOL, mStory});
  EXPECT_EQ(outcome.mOutput, mStory + ": ok\n-: ok\nstatus 143\n");
  EXPECT_THAT(outcome.mErrors, HasSubstr("interrupted after 2 of 3 files"));
}

}  // namespace
