#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Scratch.h"

namespace {

using testing::HasSubstr;

class ListsTest : public Scratch {
 protected:
  // Paragraphs as "Kind:text", scenes ended by "/".
  ListsTest() {
    Write("a.quor", R"(<TavroStory version='1.0'><document><stream name='body'><section>
      <scene sceneNumber='1A'>
        <paragraph element='SceneHeading' shotDuration='1:2:3'><textRun>INT. CAFÉ, "OLD" - DAY</textRun></paragraph>
        <paragraph element='Character'><textRun>ANNA (O.S.)</textRun></paragraph>
        <paragraph element='Dialog'><textRun>One two  three.</textRun></paragraph>
        <paragraph element='Character'><textRun>ANNA (V.O.) (CONT'D) </textRun></paragraph>
        <paragraph element='Dialog'><textRun>Four.</textRun></paragraph></scene>
      <scene/>
      <scene><paragraph element='Character'><textRun>(A VOICE)</textRun></paragraph>
        <paragraph element='Dialog'><textRun>Five</textRun></paragraph>
        <paragraph element='Character'><textRun>ANNA</textRun></paragraph>
        <paragraph element='Dialog'><textRun>Six&#10;seven</textRun></paragraph>
        <paragraph element='Note'><textRun>eight</textRun></paragraph></scene>
      </section></stream></document></TavroStory>)");
  }
  std::string Print(const std::string& list, const std::string& form = "") {
    const Outcome outcome = form.empty() ? Tool({list, "a.quor"}) : Tool({list, "a.quor", form});
    EXPECT_EQ(outcome.mStatus, 0) << outcome.mErrors;
    return outcome.mOutput;
  }
};

TEST_F(ListsTest, AreAlignedForPeople) {
  EXPECT_EQ(Print("scenes"),
            "position  number  setting  location     time  duration  speeches  characters\n"
            "       1  1A      INT      CAFÉ, \"OLD\"  DAY   1:02:03          2           1\n"
            "       2                                                       0           0\n"
            "       3                                                       2           2\n");
  EXPECT_EQ(Print("characters"),
            "character  speeches  words  first  last  scenes\n"
            "ANNA              3      6  1A     #3    1A #3\n"
            "(A VOICE)         1      1  #3     #3    #3\n");
  EXPECT_THAT(Print("stats"), HasSubstr("\nunknown            1      1\nparagraphs        10 "));
}

TEST_F(ListsTest, AreReadByPrograms) {
  EXPECT_EQ(Print("scenes", "--csv"),
            "position,number,setting,location,time,duration,speeches,characters\r\n"
            "1,1A,INT,\"CAFÉ, \"\"OLD\"\"\",DAY,1:02:03,2,1\r\n2,,,,,,0,0\r\n3,,,,,,2,2\r\n");
  const auto scenes = nlohmann::json::parse(Print("scenes", "--json"));
  EXPECT_EQ(scenes[0]["location"], "CAFÉ, \"OLD\"");
  EXPECT_TRUE(scenes[1]["duration"].is_null());
  const auto people = nlohmann::json::parse(Print("characters", "--json"));
  EXPECT_EQ(people[0]["scenes"], nlohmann::json({"1A", "#3"}));
  EXPECT_EQ(nlohmann::json::parse(Print("stats", "--json"))[0]["count"], 3);
  EXPECT_EQ(Tool({"stats", "a.quor", "--csv", "--json"}).mStatus, 2);
  Write("b.quor",
        R"(<TavroStory version='1.0'><document><stream name='body'><section><scene sceneNumber='-1'>
        <paragraph element='SceneHeading'><textRun>INT. =1+1 - @SUM(A1)</textRun></paragraph></scene>
        </section></stream></document></TavroStory>)");
  EXPECT_THAT(
      Tool({"scenes", "b.quor", "--csv", "--bom"}).mOutput,
      testing::MatchesRegex("\xEF\xBB\xBFposition.*\r\n1,'-1,INT,'=1\\+1,'@SUM\\(A1\\),,0,0\r\n"));
  EXPECT_THAT(Tool({"scenes", "b.quor", "--csv", "--raw"}).mOutput,
              testing::MatchesRegex("position.*\r\n1,-1,INT,=1\\+1,@SUM\\(A1\\),,0,0\r\n"));
  EXPECT_EQ(Tool({"stats", "none.quor"}).mStatus, 1);
}

}  // namespace
