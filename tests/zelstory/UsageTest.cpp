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
      {"show", Example("harbour_lights.quor"), "--position", "0"},
      {"show", Example("harbour_lights.quor"), "--position", "two"},
      {"show", Example("harbour_lights.quor"), "--scene", "1", "--id", "x"},
      {"show", Example("harbour_lights.quor"), "--scene", "1", "--position", "1"},
      {"scenes", Example("harbour_lights.quor"), "--bom"},
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
        "<scene sceneNumber='7'/><scene sceneNumber='7'/><scene/><scene sceneNumber='1'/>"
        "</section></stream></document></TavroStory>");
  std::filesystem::create_directory(File("D"));
  for (const char* file : {"D/a.mov", "D/a.wav", "D/a.XMP", "D/b", "D/c.mov", "D/c.xMp", "D/c.xmp"})
    Write(file, "");
  Write("scene_0001.xmp", "");
  struct Case {
    std::vector<std::string> mArguments;
    std::string mError;
  };
  const std::vector<Case> cases = {
      {{"show", "none.quor"}, "none.quor: error: No such file or directory"},
      {{"show", "."}, ".: error: is a directory"},
      {{"show", story, "--position", "99"}, "no scene is at position 99: the body has 4 scenes"},
      {{"show", story, "--scene", "99"}, "no scene has the number \"99\"; zelstory scenes lists"},
      {{"show", "same.quor", "--scene", "7"},
       "same.quor: error: 2 scenes have the number \"7\", at the positions 1, 2: name one by"},
      {{"show", "same.quor", "--scene", "3"},
       "number \"3\"; the scene at position 3 has no number"},
      {{"show", "same.quor", "--scene", "4"}, "the scene at position 4 has the number \"1\""},
      {{"show", "same.quor", "--id", "x"}, "no scene has the identifier \"x\""},
      {{"write", story, "D/a.mov", "--scene", "1"}, "would share the sidecar D/a.XMP with a.wav; "},
      {{"has", "D/a.mov"}, "--sidecar-name stem shares it, --sidecar-name full takes D/a.mov.xmp"},
      {{"xmp", "D/b"}, "D/b: error: has no sidecar: there is no D/b.xmp\n"},
      {{"has", "D/c.mov"}, "has two sidecars, D/c.xmp and D/c.xMp; name one"},
      {{"has", "D/b", "--strict"}, "D/b: error: has no sidecar"},
      {{"clear", "D/d.mov"}, "D/d.mov: error: No such clip"},
      {{"shots", story, "--out", "."}, "scene_0001.xmp: error: is not a shot's packet; --force"},
      {{"show", Example("broken/second_section.quor")},
       "second_section.quor:13:7: error: We found"},
      {{"dump", Example("broken/no_root.quor")}, "no_root.quor:1:1: error: "},
      {{"write", story, "none/clip.xmp", "--scene", "1"},
       "none/clip.xmp: error: cannot be written"},
      {{"write", story, ".", "--scene", "1"}, ".: error: is a directory"},
      {{"write", story, "/dev/null", "--scene", "1"}, "/dev/null: error: is not a regular file"},
      {{"write", "none.quor", "clip.xmp", "--scene", "1"}, "none.quor: error: "},
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
  EXPECT_THAT(FilesHere(), testing::ElementsAre("D", "same.quor", "scene_0001.xmp"));
}

}  // namespace
