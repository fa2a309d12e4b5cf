// Colours, progress, control characters and signals.
#include <gmock/gmock.h>

#include "zelstory/Scratch.h"

namespace {

using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;

class ConsoleTest : public Scratch {
 protected:
  ConsoleTest() { Write("s.quor", "<TavroStory version='1.0'/>"); }

  // The terminal is a pseudo-terminal that script(1) makes.
  std::string OnTerminal(const std::string& command) const {
    Write("command", command);
    return Run("env -u NO_COLOR TERM=xterm script -qec 'sh command' /dev/null").mOutput;
  }
};

TEST_F(ConsoleTest, ATerminalGetsColoursAndProgress) {
  if (const auto missing = Missing("script"); !missing.empty()) GTEST_SKIP() << missing;
  EXPECT_EQ(OnTerminal("zelstory check s.quor"), "s.quor: \x1B[32mok\x1B[0m\r\n");
  EXPECT_EQ(OnTerminal("zelstory show n 2>&1"),
            "n: \x1B[1;31merror:\x1B[0m No such file or "
            "directory\r\n");
  for (const std::string plain : {"NO_COLOR=1", "TERM=dumb"}) {
    EXPECT_EQ(OnTerminal(plain + " zelstory check s.quor"), "s.quor: ok\r\n");
  }
  Write("long.quor",
        Story("<scene>" + Paragraph("SceneHeading", "INT. " + std::string(90, 'X')) + "</scene>"));
  EXPECT_THAT(OnTerminal("zelstory scenes long.quor"),
              HasSubstr(" " + std::string(59, 'X') + "\u2026  "));
  const std::string slow = "(sleep 1.1; cat s.quor) | zelstory check s.quor - s.quor";
  EXPECT_THAT(OnTerminal(slow),
              EndsWith("ok\x1B[0m\r\n\r\x1B[K3 of 3\r\x1B[Ks.quor: \x1B[32mok\x1B[0m\r\n"));
  // Results that go elsewhere leave the progress where it is: the last file is a pipe, whose writer
  // looks at the screen once the others are done.
  EXPECT_THAT(OnTerminal("mkfifo pipe; exec 9<>pipe; " + slow + R"( /dev/fd/3 3<pipe 9<&- >o &
                  for i in $(seq 100); do [ $(wc -l <o) -lt 3 ] || break; sleep 0.1; done
                  printf HERE >&2; cat s.quor >&9; exec 9>&-; wait)"),
              ContainsRegex("\x1B\\[K[34] of 4HERE"));
}

TEST_F(ConsoleTest, NamesCannotControlTheTerminal) {
  const Outcome outcome = Run(R"(d=$(printf 'a\033b'); mkdir $d; cp s.quor $d; echo clip,scene >$d/t
      zelstory check $d/s.quor $d; zelstory tag s.quor --table $d/t)");
  EXPECT_EQ(outcome.mOutput, "a?b/s.quor: ok\na?b: error: is a directory\n");
  EXPECT_THAT(outcome.mErrors, testing::StartsWith("a?b/t: note: the table has no rows"));
}

// The second story arrives only after the signal.
TEST_F(ConsoleTest, ASignalEndsTheRunBetweenFiles) {
  const std::string start = R"(mkfifo in out; zelstory check s.quor - s.quor <in >out & tool=$!
      exec 3>in 4<out; read -r first <&4; echo "$first"; )";
  const std::string finish = "cat s.quor >&3; exec 3>&-; cat <&4; wait $tool; echo $?";
  const std::string first = "s.quor: ok\n";
  const Outcome outcome = Run(start + "kill -TERM $tool; " + finish);
  EXPECT_EQ(outcome.mOutput, first + "-: ok\n143\n");
  EXPECT_THAT(outcome.mErrors, HasSubstr("interrupted after 2 of 3 files"));
  // A signal that was ignored before, as nohup does, stays ignored.
  EXPECT_EQ(Run("rm in out; trap '' HUP; " + start + "kill -HUP $tool; " + finish).mOutput,
            first + "-: ok\ns.quor: ok\n0\n");
  // A second signal does not wait for the current file.
  EXPECT_EQ(Run("rm in out; " + start + R"(kill -TERM $tool
      (for i in $(seq 50); do sleep 0.1; kill -TERM $tool; done; kill -KILL $tool) & killer=$!
      cat <&4; wait $tool; echo $?; kill $killer)")
                .mOutput,
            first + "143\n");
}

}  // namespace
