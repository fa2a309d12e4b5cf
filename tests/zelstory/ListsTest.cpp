#include <map>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "zelstory/Scratch.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;

using ListsTest = Scratch;

const std::string kStory = Story(
    "<scene sceneNumber='1A'><paragraph element='SceneHeading' shotDuration='1:2:3'>"
    "<textRun>INT. CAFÉ 茶, \"OLD\" - DAY</textRun></paragraph>" +
    Paragraph("Character", "ANNA (O.S.)") + Paragraph("Dialog", "One two  three.") +
    Paragraph("Character", "ANNA (V.O.) (CONT'D) ") + Paragraph("Dialog", "Four.") +
    "</scene><scene><paragraph element='SceneHeading' shotDuration='0:-1:-5'/>" +
    Paragraph("Character", "(A VOICE)") + Paragraph("Dialog", "Five") + "</scene><scene>" +
    Paragraph("Character", "(A VOICE)") + Paragraph("Dialog", "Five") +
    Paragraph("Character", "ANNA") + Paragraph("Dialog", "Six&#10;seven") +
    Paragraph("Note", "eight") + "</scene>");

TEST_F(ListsTest, AreAlignedForPeople) {
  EXPECT_EQ(Tool("scenes -", kStory).mOutput,
            "position  number  setting  location        time  duration  speeches  characters\n"
            "       1  1A      INT      CAFÉ 茶, \"OLD\"  DAY   1:02:03          2           1\n"
            "       2                                         -0:01:05         1           1\n"
            "       3                                                          2           2\n");
  EXPECT_EQ(Tool("characters -", kStory).mOutput,
            "character  speeches  words  first  last  extensions          scenes\n"
            "ANNA              3      6  1A     #3    O.S.; V.O.; CONT'D  1A #3\n"
            "(A VOICE)         2      2  #2     #3                        #2-#3\n");
  EXPECT_THAT(Tool("stats -", kStory).mOutput,
              HasSubstr("\nunknown                  1      1\nparagraphs              13     25\n"
                        "speaking characters      2\n"));
}

// One long text pads no other row, and fills no other list.
TEST_F(ListsTest, LongTextsStayInTheirRow) {
  const std::string text(300, 'X');
  const std::string story =
      Story("<scene sceneNumber='" + text + "'>" + Paragraph("Character", "ANNA") +
            Paragraph("Dialog", "One.") + "</scene><scene>" +
            Paragraph("SceneHeading", "INT. " + text + " - DAY") + "</scene><scene>" +
            Paragraph("SceneHeading", "INT. Y - DAY") + "</scene>");
  EXPECT_THAT(Tool("scenes -", story).mOutput,
              AllOf(HasSubstr("INT      " + text + "  DAY "),
                    HasSubstr("INT      Y" + std::string(59, ' ') + "  DAY ")));
  EXPECT_THAT(Tool("characters -", story).mOutput, HasSubstr("  1  #1     #1                #1\n"));
  EXPECT_THAT(Tool("show - --scene 1", story).mErrors,
              HasSubstr(text.substr(0, 60) + "...\": use"));
}

TEST_F(ListsTest, AreReadByPrograms) {
  EXPECT_EQ(Tool("scenes - --csv", kStory).mOutput,
            "position,number,setting,location,time,duration,speeches,characters\r\n"
            "1,1A,INT,\"CAFÉ 茶, \"\"OLD\"\"\",DAY,1:02:03,2,1\r\n2,,,,,'-0:01:05,1,1\r\n"
            "3,,,,,,2,2\r\n");
  const std::string printed = Tool("scenes - --json", kStory).mOutput;
  EXPECT_THAT(printed, HasSubstr(R"("location": "CAFÉ 茶, \"OLD\"")"));
  EXPECT_TRUE(nlohmann::json::parse(printed)[2]["duration"].is_null());
  const auto people = nlohmann::json::parse(Tool("characters - --json", kStory).mOutput);
  EXPECT_EQ(people[0]["scenes"], nlohmann::json({"1A", "#3"}));
  EXPECT_EQ(people[0]["extensions"], nlohmann::json({"O.S.", "V.O.", "CONT'D"}));
  EXPECT_THAT(Tool("characters - --csv", kStory).mOutput,
              HasSubstr(",last,scenes,extensions\r\nANNA,3,6,1A,#3,1A #3,O.S.; V.O.; CONT'D\r\n"));
  EXPECT_EQ(nlohmann::json::parse(Tool("stats - --json", kStory).mOutput)[0]["count"], 3);
}

TEST_F(ListsTest, ASpreadsheetRunsNoCell) {
  const std::string story =
      Story("<scene sceneNumber=' -1&#10;2'>" +
            Paragraph("SceneHeading", "INT. =1+1 - @SUM(A1)&#13;B") + "</scene>");
  EXPECT_THAT(Tool("scenes - --csv --bom --headings exact", story).mOutput,
              testing::MatchesRegex("\xEF\xBB\xBFposition.*\r\n1,\"' -1\n2\",INT,'=1\\+1,"
                                    "\"'@SUM\\(A1\\)\rB\",,0,0\r\n"));
  EXPECT_THAT(Tool("scenes - --csv --raw --headings exact", story).mOutput,
              testing::MatchesRegex("position.*\r\n1,\" -1\n2\",INT,=1\\+1,"
                                    "\"@SUM\\(A1\\)\rB\",,0,0\r\n"));
}

// In every command that reads them, by the rules that were chosen.
TEST_F(ListsTest, HeadingsAreReadByTheChosenRules) {
  Write("car.fountain", ".INT./EXT. CAR - MOVING - DAY\n\nRain.\n");
  Write("words", "setting: CAR\ntime: MOVING\n");
  Write("broken", "setting: INT\ntime NIGHT\n");
  Write("t.csv", "clip,scene\nt.xmp,1\n");
  for (const auto& [rules, found] :
       std::map<std::string, std::string>{{"", "INT./EXT|CAR|DAY"},
                                          {"--headings common", "INT./EXT|CAR|DAY"},
                                          {"--headings exact", "INT|/EXT. CAR|MOVING - DAY"},
                                          {"--headings words", "CAR|INT./EXT|MOVING"}}) {
    Run("rm -f *.xmp; zelstory write car.fountain --scene 1 w.xmp " + rules +
        "; zelstory tag car.fountain --table t.csv " + rules +
        "; zelstory shots car.fountain --out . " + rules);
    const std::string read =
        "|sed -n 's/.*\\(Setting\\|Location\\|OfDay\\) = \"\\(.*\\)\"/\\2/p'|paste -sd'|'";
    for (const std::string file : {"w.xmp", "t.xmp", "scene_0001.xmp"}) {
      EXPECT_EQ(Run("zelstory xmp " + file + read).mOutput, found + "\n") << file << rules;
    }
    EXPECT_EQ(
        Run("zelstory scenes car.fountain --csv " + rules + "|sed -n 2p|cut -d, -f3-5|tr , '|'")
            .mOutput,
        found + "\n");
    Run("zelstory report car.fountain --html p.html " + rules);
    EXPECT_THAT(Read("p.html"), HasSubstr(found.substr(found.rfind('|') + 1) + "</td>")) << rules;
  }
  EXPECT_EQ(Tool("write car.fountain --scene 1 n.xmp --headings broken").mErrors,
            "broken:2:1: error: a colon is missing after the key\n");
  EXPECT_EQ(Tool("scenes car.fountain --headings none").mStatus, 1);
  EXPECT_EQ(Run("ls n.xmp").mOutput, "");
}

}  // namespace
