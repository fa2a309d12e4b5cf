#include <gmock/gmock.h>

#include "zelstory/Scratch.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

using UsageTest = Scratch;

TEST_F(UsageTest, WrongUsageIsOneLineAndStatus2) {
  const std::vector<std::vector<std::string>> lines = {
      {},
      {"no-such-command"},
      {"check"},
      {"check", "--no-such-option", "x.quor"},
      {"show", Example("harbour_lights.quor"), "--scene", "0"},
      {"show", Example("harbour_lights.quor"), "--scene", "two"},
      {"show", Example("harbour_lights.quor"), "--scene", "1", "--id", "x"},
      {"write", Example("harbour_lights.quor"), "clip.xmp"},
      {"write", Example("harbour_lights.quor"), "--scene", "1"},
      {"write", "-", "-", "--scene", "1"},
      {"shots", Example("harbour_lights.quor")},
      {"shots", "a/x.quor", "b/x.quor", "--out", "o"},
      {"shots", "x.quor", "-", "--out", "o"},
      {"tag", "x.quor"},
      {"tag", "-", "--table", "-"},
      {"clear"},
      {"clear", "clip.xmp", "--sidecar-name", "0"},
      {"tag", "x.quor", "--table", "t.csv", "--clips", ""},
  };
  for (const auto& arguments : lines) {
    const Outcome outcome = Tool(arguments);
    SCOPED_TRACE(testing::PrintToString(arguments));
    EXPECT_EQ(outcome.mStatus, 2);
    EXPECT_THAT(outcome.mOutput, IsEmpty());
    EXPECT_THAT(Lines(outcome.mErrors), SizeIs(1));
  }
  EXPECT_THAT(Tool({"chek", "x.quor"}).mErrors, HasSubstr("no command or option chek "));
  EXPECT_THAT(FilesHere(), IsEmpty());
}

TEST_F(UsageTest, HelpAndVersionAreResults) {
  for (const char* command :
       {"check", "show", "write", "clear", "has", "shots", "tag", "report", "dump"}) {
    const Outcome outcome = Tool({command, "--help"});
    EXPECT_EQ(outcome.mStatus, 0);
    EXPECT_THAT(outcome.mOutput, HasSubstr("Exit status:")) << command;
    EXPECT_THAT(Tool({"--help"}).mOutput, HasSubstr(command));
  }
  EXPECT_THAT(Process("sh", {"-c", "\"$0\" --help >/dev/full", ZELSTORY_TOOL}).mErrors,
              HasSubstr("standard output: error: writing failed"));
  EXPECT_THAT(Tool({"--version"}).mOutput, testing::MatchesRegex("zelstory [0-9.]+\n"));
}

TEST_F(UsageTest, ARefusalNamesTheFileAndWritesNothing) {
  const std::string story = Example("harbour_lights.quor");
  Write("same.quor",
        "<TavroStory version='1.0'><document><stream name='body'><section>"
        "<scene sceneNumber='7'/><scene "
        "sceneNumber='7'/></section></stream></document></TavroStory>");
  struct Case {
    std::vector<std::string> mArguments;
    std::string mError;
  };
  const std::vector<Case> cases = {
      {{"show", "none.quor"}, "none.quor:1:1: error: No such file or directory"},
      {{"show", "."}, ".:1:1: error: is a directory"},
      {{"show", story, "--scene", "99"}, "there is no scene 99; the body has 4"},
      {{"show", story, "--number", "99"}, "no scene of the body has the number \"99\""},
      {{"show", "same.quor", "--number", "7"},
       "same.quor: error: 2 scenes have the number \"7\"; choose one by position: 1, 2"},
      {{"show", Example("broken/second_section.quor")},
       "second_section.quor:13:7: error: We found"},
      {{"dump", Example("broken/no_root.quor")}, "no_root.quor:1:1: error: "},
      {{"write", story, "none/clip.xmp", "--scene", "1"},
       "none/clip.xmp: error: cannot be written"},
      {{"write", story, ".", "--scene", "1"}, ".: error: is a directory"},
      {{"write", story, "/dev/null", "--scene", "1"}, "/dev/null: error: is not a regular file"},
      {{"write", "none.quor", "clip.xmp", "--scene", "1"}, "none.quor:1:1: error: "},
      {{"clear", "none.xmp"}, "none.xmp: error: No such file or directory"},
      {{"has", "none.xmp"}, "none.xmp: error: No such file or directory"},
      {{"shots", story, "--out", "same.quor"}, "same.quor: error: is no folder"},
  };
  for (const Case& refused : cases) {
    const Outcome outcome = Tool(refused.mArguments);
    SCOPED_TRACE(testing::PrintToString(refused.mArguments));
    EXPECT_EQ(outcome.mStatus, 1);
    EXPECT_THAT(outcome.mOutput, IsEmpty());
    EXPECT_THAT(outcome.mErrors, HasSubstr(refused.mError));
    EXPECT_THAT(Lines(outcome.mErrors), SizeIs(1));
  }
  EXPECT_THAT(FilesHere(), testing::ElementsAre("same.quor"));
}

}  // namespace
