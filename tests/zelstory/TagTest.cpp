#include <gmock/gmock.h>

#include "support/Table.h"
#include "zelstory/Scratch.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class TagTest : public Scratch {
 protected:
  TagTest() { Run("mkdir day; touch day/a.mov day/b.mov day/c.mov"); }
  Outcome Tag(const std::string& table, const std::string& options = "") const {
    Write("day/clips.csv", table);
    return Tool("tag $stories/harbour_lights.quor --table day/clips.csv " + options);
  }
};

TEST_F(TagTest, WritesEachClipOnceAndNothingTheSecondTime) {
  const std::string table = "clip,scene\na.mov,1\nb.mov,2\nnew.xmp,3\n";
  EXPECT_THAT(Tag(table, "--dry-run").mOutput,
              HasSubstr("b.mov: would be written\n  xmpScript:sceneSetting: (none) -> \"INT\"\n"));
  EXPECT_THAT(Tag(table, "--dry-run --json").mOutput,
              AllOf(StartsWith(R"({"clip":"a.mov","line":2,"outcome":"would be written",)"),
                    HasSubstr(R"({"path":"xmpDM:shotLocation","before":null,"after":"HARBOUR"})")));
  EXPECT_EQ(Run("ls day").mOutput, "a.mov\nb.mov\nc.mov\nclips.csv\n");
  EXPECT_EQ(Tag(table).mOutput, "a.mov: written\nb.mov: written\nnew.xmp: written\n");
  EXPECT_THAT(Read("day/a.mov.xmp"), HasSubstr(">HARBOUR<"));
  EXPECT_THAT(Read("day/b.mov.xmp"), HasSubstr("BELL &amp; ANCHOR<"));
  const Outcome again = Tag(table);
  EXPECT_EQ(again.mOutput, "a.mov: unchanged\nb.mov: unchanged\nnew.xmp: unchanged\n");
  EXPECT_EQ(again.mStatus, 0);
  EXPECT_EQ(Tag(table, "--dry-run").mOutput, again.mOutput);
  EXPECT_EQ(Tool("tag $stories/harbour_lights.quor --table - --clips day", table).mOutput,
            again.mOutput);
}

TEST_F(TagTest, ReadsTheTablesThatSpreadsheetsWrite) {
  Write("day/two, \"too\".mov", "");
  Write("s.quor", Story("<scene sceneNumber='7' objID='x'/><scene sceneNumber='7A'/>"));
  for (const char* table : {
           "clip,scene\na.mov,7\n\"two, \"\"too\"\".mov\",7A\n , \n,,\n",
           "\xEF\xBB\xBF"
           "\"Take,\";Clip;Number\r\n\r\n1;a.mov;7\r\n2;\"two, \"\"too\"\".mov\";7A\r\n",
           "clip\tID\tposition\tnumber\n a.mov \tx\t1\t7\n\"two, \"\"too\"\".mov\"\t\t2\t\n",
           "number,clip,note\n7,a.mov,\"two\nlines\"\n7A,\"two, \"\"too\"\".mov\",\n",
       }) {
    Write("day/clips.csv", table);
    EXPECT_EQ(Printed("zelstory tag s.quor --table day/clips.csv --dry-run | grep -v '^ '"),
              "a.mov: would be written\ntwo, \"too\".mov: would be written\n")
        << table;
  }
}

TEST_F(TagTest, AFaultyTableWritesNothingUnlessAsked) {
  const std::string table =
      "clip,position,scene\nc.mov,1,\na.mov,99999999999999999999,\n,1,\nb.mov,2,\n./"
      "b.mov.xmp,2,\nnone.mov,1,\n"
      "x.xmp,1,2\ny.xmp,,\ny.xmp,,\nz.xmp,two,\nno/z.xmp,1,\n";
  const Outcome refused = Tag(table);
  EXPECT_EQ(refused.mStatus, 1);
  EXPECT_THAT(refused.mErrors, StartsWith("day/clips.csv: error: 10 of 11 rows have faults"));
  const std::string faults =
      "a.mov: refused: there is no scene at position 99999999999999999999; the body has 4 scenes\n"
      "day/clips.csv:4: refused: the row names no clip\n"
      "b.mov: refused: several lines name its sidecar: 5, 6\n"
      "./b.mov.xmp: refused: several lines name its sidecar: 5, 6\n"
      "none.mov: refused: No such clip (a sidecar's name ends in .xmp)\n"
      "x.xmp: refused: the row names two scenes, at the positions 1 and 2\n"
      "y.xmp: refused: the row names no scene\ny.xmp: refused: the row names no scene\n"
      "z.xmp: refused: \"two\" is not a position; positions are whole numbers from 1\n"
      "no/z.xmp: refused: the folder day/no does not exist\n";
  EXPECT_EQ(refused.mOutput, "c.mov: refused: other rows have faults\n" + faults);
  EXPECT_THAT(Tag(table, "--json").mOutput,
              HasSubstr(R"(,"outcome":"refused","reason":"the row names two scenes)"));
  EXPECT_EQ(Run("ls day").mOutput, "a.mov\nb.mov\nc.mov\nclips.csv\n");
  const Outcome going = Tag(table, "--keep-going");
  EXPECT_EQ(going.mStatus, 1);
  EXPECT_EQ(going.mOutput, "c.mov: written\n" + faults);
}

TEST_F(TagTest, LinksThatMeanOneFileAreFoundBeforeItExists) {
  Run("cd day; ln -s new.xmp link.xmp; ln -s loop.xmp loop.xmp");
  const std::string fault = ": refused: several lines name its sidecar: 3, 4, 5, 6, 7 and 3 more\n";
  EXPECT_EQ(
      Tag("clip,scene\nloop.xmp,1\n" + Repeated("new.xmp,1\nlink.xmp,2\n", 4)).mOutput,
      "loop.xmp: refused: too many links\n" + Repeated("new.xmp" + fault + "link.xmp" + fault, 4));
}

// The first row creates a sidecar that the second clip could share.
TEST_F(TagTest, WritesTheFilesThatTheCheckFound) {
  EXPECT_EQ(Tag("clip,scene\na.xmp,1\na.mov,2\n").mOutput, "a.xmp: written\na.mov: written\n");
  EXPECT_THAT(Read("day/a.xmp"), HasSubstr(">HARBOUR<"));
}

TEST_F(TagTest, OneClipsFaultStopsNoOther) {
  Write("day/a.mov.xmp", "no XMP");
  const Outcome outcome = Tag("clip,scene\na.mov,1\nb.mov,2\n", "--json");
  EXPECT_EQ(outcome.mStatus, 1);
  EXPECT_THAT(
      Lines(outcome.mOutput),
      ElementsAre(StartsWith(R"({"clip":"a.mov","line":2,"outcome":"refused","scene":"1",)"
                             R"("position":1,"reason":"day/a.mov.xmp:1:1: )"),
                  StartsWith(R"({"clip":"b.mov","line":3,"outcome":"written","scene":"2",)"
                             R"("position":2,"sidecar":"day/b.mov.xmp",)"
                             R"("paths":["xmpScript:sceneSetting","xmpDM:shotLocation",)")));
  EXPECT_EQ(Read("day/a.mov.xmp"), "no XMP");
  Run("mv day/b.mov.xmp day/b.xmp; chmod 444 day/b.xmp");
  EXPECT_THAT(Tag("clip,scene\nb.xmp,1\n").mOutput, StartsWith("b.xmp: refused: the file has no "));
}

TEST_F(TagTest, AnInvalidTableIsRefused) {
  const std::pair<const char*, const char*> tables[] = {
      {"", ": error: is empty; its first line must name the columns"},
      {"clip,take\na.mov,1\n", ":1: error: the first line must name the columns: clip, and"},
      {"\nscene,number\n1,7\n", ":2: error: the first line must name the columns: clip"},
      {"clip,scene,Scene\n", ":1: error: two columns have the name scene"},
      {"clip,scene\n\"a\r\n.mov\",1\r\n\"b\"c,1\n", ":4: error: a quotation mark is out"},
      {"clip,scene\na.mov,\"1", ":2: error: a quotation mark is out of place"},
      {"clip,scene\na\xFF.mov,1\n", ":2: error: the text is not UTF-8"},
  };
  for (const auto& [table, error] : tables) {
    const Outcome outcome = Tag(table);
    EXPECT_EQ(outcome.mStatus, 1) << table;
    EXPECT_THAT(outcome.mErrors, StartsWith(std::string("day/clips.csv") + error)) << table;
    EXPECT_EQ(outcome.mOutput, "") << table;
  }
}

// In this story, positions are larger than numbers.
TEST_F(TagTest, ScenesAreChosenByNumber) {
  Write("t.csv", "clip,scene\ntag.xmp,50\n");
  EXPECT_EQ(Run(R"(story=$stories/the_long_tide.quor
      zelstory tag $story --table t.csv
      zelstory write $story --scene 50 a.xmp >a; zelstory write $story --position 51 b.xmp >b
      zelstory write $story --id lt.s051 c.xmp >c
      for same in a b c; do cmp tag.xmp $same.xmp; done)")
                .mOutput,
            "tag.xmp: written\n");
  Write("none.quor", Story("<scene/><scene sceneNumber=' '/>"));
  Write("t.csv", "clip,scene\na.xmp,1\nb.xmp,2\n");
  const std::string note =
      "none.quor: note: no scene has a number, so scenes are chosen by position\n";
  const Outcome outcome = Tool("tag none.quor --table t.csv --json");
  EXPECT_EQ(outcome.mErrors, note);
  EXPECT_THAT(outcome.mOutput, HasSubstr(R"("outcome":"written","scene":null,"position":1,)"));
  EXPECT_EQ(Tool("show none.quor --scene 2").mErrors, note);
  EXPECT_EQ(Tool("show none.quor --position 2").mErrors, "");
  const Outcome empty = Tool("tag none.quor --table -", "clip,scene\n");
  EXPECT_EQ(empty.mErrors, "-: note: the table has no rows, so there is nothing to do\n");
  EXPECT_EQ(empty.mStatus, 0);
}

}  // namespace
