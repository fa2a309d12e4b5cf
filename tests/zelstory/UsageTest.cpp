#include <gmock/gmock.h>

#include "support/Table.h"
#include "zelstory/Scratch.h"

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::SizeIs;

using UsageTest = Scratch;

TEST_F(UsageTest, WrongUsageIsOneLineAndStatus2) {
  for (const Row& row :
       Rows(R"(;; no-such-command ;; check ;; check '' ;; check --no-such-option x.quor
      show x.quor --position 0 ;; show x.quor --scene 1 --id x ;; show x.quor --scene 1 --position 1
      scenes x.quor --bom ;; stats x.quor --csv --json ;; report x.quor
      write $stories/harbour_lights.quor clip.xmp ;; write x.quor --scene 1 ;; write - - --scene 1
      shots x.quor ;; shots a/x.quor b/x.quor --out o ;; shots x.quor - --out o
      tag x.quor ;; tag - --table - ;; tag x.quor --table t.csv --clips ''
      clear ;; clear clip.xmp --sidecar-name 0)")) {
    const std::string& arguments = row[0];
    SCOPED_TRACE(arguments);
    const Outcome outcome = Tool(arguments);
    EXPECT_EQ(outcome.mStatus, 2);
    EXPECT_EQ(outcome.mOutput, "");
    EXPECT_THAT(Lines(outcome.mErrors), SizeIs(1));
  }
  EXPECT_THAT(Tool("chek x.quor").mErrors, HasSubstr("unknown command or option: chek "));
  EXPECT_EQ(Run("ls -A").mOutput, "");
}

TEST_F(UsageTest, HelpAndVersionAreResults) {
  EXPECT_EQ(Tool("report --help").mStatus, 0);
  EXPECT_EQ(Printed(R"(zelstory --help | sed -n 's/^  \([a-z][a-z]*\)  .*/\1/p' | while read c
      do zelstory $c --help | grep -q '^First steps' && echo $c; done; echo end)"),
            "end\n");  // a command without a footer of its own would show the tool's
  EXPECT_EQ(Tool("--help >/dev/full").mErrors, "standard output: error: writing failed\n");
  EXPECT_EQ(Run("write=\"zelstory write $stories/harbour_lights.quor --scene 1 c.xmp\"\n"
                "$write >/dev/full; $write >/dev/full; zelstory has c.xmp >/dev/full")
                .mErrors,
            "standard output: error: writing failed; 1 file was written before\n"
            "standard output: error: writing failed\nstandard output: error: writing failed\n");
  EXPECT_THAT(Tool("--version").mOutput, testing::MatchesRegex("zelstory [0-9.]+\n"));
}

TEST_F(UsageTest, ARefusalNamesTheFileAndWritesNothing) {
  Write("same.quor", Story("<scene sceneNumber='7'/><scene sceneNumber='7'/><scene/>"
                           "<scene sceneNumber='1'/>"));
  Run("mkdir D L; touch D/b scene_0001.xmp; ln -s ../same.quor L/scene_0001.xmp; mkfifo D/pipe\n"
      "ln -s l.xmp D/l.xmp");
  const std::pair<const char*, const char*> cases[] = {
      {"show none.quor", "^none.quor: error: No such file or directory"},
      {"show 'C:\\no\x1B[2J\x7Fne.quor'", R"(^C:\\no\\x1B\[2J\\x7Fne.quor: error: No such file)"},
      {"show .", "^.: error: is a directory"},
      {"show D/pipe", "^D/pipe: error: is not a regular file"},
      {"stats /dev/zero", "^/dev/zero: error: is not a regular file"},
      {"tag same.quor --table D/pipe", "^D/pipe: error: is not a regular file"},
      {"show $stories/harbour_lights.quor --position 99",
       "there is no scene at position 99; the body has 4 scenes"},
      {"show $stories/harbour_lights.quor --scene 99",
       "no scene has the number \"99\"; zelstory scenes lists"},
      {"show same.quor --scene 7",
       "same.quor: error: 2 scenes have the number \"7\", at the positions 1, 2: choose one by"},
      {"show same.quor --scene 3", "number \"3\"; the scene at position 3 has no number"},
      {"show same.quor --scene 4", "the scene at position 4 has the number \"1\""},
      {"show same.quor --id x", "no scene has the identifier \"x\""},
      {"xmp D/b", "^D/b: error: has no sidecar: D/b.xmp does not exist\n"},
      {"xmp D/l.xmp", "^D/l.xmp: error: too many links"},
      {"has D", "^D: error: is a directory"},
      {"has D/b --strict", "^D/b: error: has no sidecar"},
      {"shots $stories/harbour_lights.quor --out .",
       "scene_0001.xmp: error: is not a shot's packet; --force"},
      {"shots $stories/harbour_lights.quor --out L",
       "^L/scene_0001.xmp: error: is a link; --force replaces"},
      {"show $stories/broken/second_section.quor", "second_section.quor:13:7: error: We found"},
      {"dump $stories/broken/no_root.quor", "no_root.quor:1:1: error: "},
      {"write same.quor none/clip.xmp --position 1", "^none/clip.xmp: error: cannot be written"},
      {"write same.quor . --position 1", "^.: error: is a directory"},
      {"write same.quor /dev/null --position 1", "^/dev/null: error: is not a regular file"},
      {"write none.quor clip.xmp --position 1", "^none.quor: error: "},
      {"clear none.xmp", "^none.xmp: error: No such file or directory"},
      {"has none.xmp", "^none.xmp: error: No such file or directory"},
      {"stats none.quor", "^none.quor: error: "},
      {"shots same.quor --out same.quor", "same.quor: error: is not a folder"},
      {"convert same.quor ./same.quor", "^./same.quor: error: is the script itself"},
      {"convert same.quor scene_0001.xmp --to fdx",
       "^scene_0001.xmp: error: exists already; --force replaces it anyway"},
      {"convert same.quor L/scene_0001.xmp --to fdx",
       "scene_0001.xmp: error: is the script itself"},
      {"convert same.quor none/a.fdx", "^none/a.fdx: error: cannot be written"},
      {"convert same.quor a.fdx --format fdx", "^same.quor:1:1: error: is XML, but no FDX script"},
  };
  for (const auto& [arguments, error] : cases) {
    SCOPED_TRACE(arguments);
    const Outcome outcome = Tool(arguments);
    EXPECT_EQ(outcome.mStatus, 1);
    EXPECT_EQ(outcome.mOutput, "");
    EXPECT_THAT(outcome.mErrors, ContainsRegex(error));
    EXPECT_THAT(Lines(outcome.mErrors), SizeIs(1));
  }
  // The story has no shot 1.
  EXPECT_EQ(Printed("zelstory shots same.quor --out .; zelstory has D/b"), "no\n");
  EXPECT_EQ(Run("ls -A . L").mOutput,
            ".:\nD\nL\nsame.quor\nscene_0001.xmp\n\nL:\nscene_0001.xmp\n");
  EXPECT_EQ(Run("cp same.quor s; zelstory shots $stories/harbour_lights.quor --out L --force >o\n"
                "cmp s same.quor; cat s | zelstory stats /dev/stdin | wc -l\n"
                "zelstory check /dev/fd/3 3<s | cut -d' ' -f2")
                .mOutput,
            "12\nwarning:\nok\n");
}

}  // namespace
