// Colours, progress, control characters and signals.
#include <algorithm>

#include <gmock/gmock.h>

#include "support/Table.h"
#include "zelstory/Scratch.h"

namespace {

using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;

class ConsoleTest : public Scratch {
 protected:
  ConsoleTest() { Write("s.quor", "<TavroStory version='1.0'/>"); }

  // The terminal is a pseudo-terminal that script(1) makes; "screen" holds what it has shown.
  std::string OnTerminal(const std::string& command) const {
    Write("command", command);
    return Run("env -u NO_COLOR TERM=xterm script -qefc 'sh command' screen").mOutput;
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
  // Progress is shown after a second, counted from a start that can itself take long.
  const std::string slow =
      "(until grep -qs ok screen o; do sleep 0.1; done; sleep 1.1; cat s.quor) | "
      "zelstory check s.quor - s.quor";
  EXPECT_THAT(OnTerminal(slow),
              EndsWith("ok\x1B[0m\r\n\r\x1B[K3 of 3\r\x1B[Ks.quor: \x1B[32mok\x1B[0m\r\n"));
  // Results that go elsewhere leave the progress where it is: the last file is a pipe, whose writer
  // looks at the screen once the others are done.
  EXPECT_THAT(OnTerminal("mkfifo pipe; exec 9<>pipe; " + slow + R"( /dev/fd/3 3<pipe 9<&- >o &
                  for i in $(seq 100); do [ $(wc -l <o) -lt 3 ] || break; sleep 0.1; done
                  printf HERE >&2; cat s.quor >&9; exec 9>&-; wait)"),
              ContainsRegex("\x1B\\[K[34] of 4HERE"));
}

// What steers a terminal or forges a text, each as it is and as XML may refer to it.
std::vector<std::pair<std::string, std::string>> Controls() {
  std::vector<std::pair<std::string, std::string>> controls{{"\xFF", ""}};
  constexpr std::pair<int, int> kRanges[] = {{0x01, 0x1F},     {0x7F, 0x9F},     {0x61C, 0x61C},
                                             {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x206F},
                                             {0xFFFE, 0xFFFF}};
  for (const auto& [first, last] : kRanges) {
    for (int unit = first; unit <= last; ++unit) {
      const bool inXML =
          (unit >= 0x20 && unit < 0xFFFE) || unit == '\t' || unit == '\n' || unit == '\r';
      controls.emplace_back(Utf8(zelcore::UTF16String(1, static_cast<char16_t>(unit))),
                            inXML ? "&#" + std::to_string(unit) + ";" : "");
    }
  }
  return controls;
}

// Every command prints every control character from every place, and a harmless letter in the same
// places; the two may not differ in lines and tabs, except where long texts are laid out. RAW is
// for names and options, UTF8 for a table, REF for values of attributes, TEXT for texts, whose line
// feeds are layout.
TEST_F(ConsoleTest, NothingThatIsPrintedForPeopleSteersATerminal) {
  const std::string story =
      "<TavroStory version='1.0.TEXT' template='REF'><document version='TEXT'><stream name='body'>"
      "<section><scene objID='REF' sceneNumber='REF'>" +
      Paragraph("SceneHeading' objID='REF' shotDuration='REF", "INT. TEXT, TEXT - TEXT") +
      Paragraph("Action", "TEXT") + Paragraph("Character", "TEXT") + Paragraph("Dialog", "TEXT") +
      Paragraph("REF", "TEXT") +
      "</scene>FAULT</section></stream><commentStream name='REF' "
      "commentAuthor='REF'/></document><metaData>Title: TEXT</metaData></TavroStory>";
  const std::string sidecar =
      "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description><a "
      "xmlns='urn:REF#' xml:lang='REF'>C:\\new \"REF</a></rdf:Description></rdf:RDF>";
  const std::string texts = "zelstory show 'sRAW' --comments; zelstory report 'sRAW' --html -";
  const std::string script = R"(zelstory show 'sRAW' --scene 'RAW'; zelstory show 'sRAW' --id 'RAW'
      zelstory check 'sRAW' 'fRAW' - 'RAW'; for list in scenes characters stats; do
        zelstory $list 'sRAW'; done; zelstory dump 'sRAW'
      zelstory shots 'sRAW' 'fRAW' --out 'oRAW'; zelstory shots 'sRAW' 'a/sRAW' --out o
      zelstory xmp 'cRAW.xmp'; zelstory write 'sRAW' 'cRAW.xmp' --position 1 --dry-run
      zelstory write 'sRAW' 'cRAW.xmp' --position 1; zelstory write 'sRAW' 'cRAW.xmp' --scene 1
      zelstory xmp 'cRAW.xmp'; zelstory has 'cRAW.xmp' 'RAW'; zelstory clear 'cRAW.xmp' 'RAW'
      printf '%s\n' clip,position,id '"mUTF8.xmp",1,' '"UTF8",,"UTF8"' >'tRAW'
      for options in '' '--keep-going' '--keep-going --dry-run'; do
        zelstory tag 'sRAW' --table 'tRAW' $options; done; zelstory tag 'sRAW' --table 'RAW'
      zelstory 'RAW'; zelstory check --'RAW'; zelstory has x --sidecar-name 'RAW'; zelstory \
        show x --position 'RAW')";
  std::string raw, ref, text, printed[2], laidOut;
  for (const auto& [character, reference] : Controls()) {
    raw += character;
    ref += reference;
    if (character != "\n") text += reference;
  }
  for (const bool isHarmless : {false, true}) {
    const std::vector<Row> values{{"RAW", isHarmless ? "x" : raw},
                                  {"UTF8", isHarmless ? "x" : raw.substr(1)},
                                  {"REF", isHarmless ? "y" : ref},
                                  {"TEXT", isHarmless ? "z" : text}};
    Write(Replaced("sRAW", values), Replaced(story, {{"FAULT", ""}, values[2], values[3]}));
    Write(Replaced("fRAW", values),
          Replaced(story, {{"FAULT", "<section/>"}, values[2], values[3]}));
    Write(Replaced("cRAW.xmp", values), Replaced(sidecar, values));
    printed[isHarmless] = Printed(Replaced(script, values));
    laidOut += Printed(Replaced(texts, values));
  }
  for (const auto& [character, reference] : Controls()) {
    const bool isLayout = character == "\n" || character == "\t";
    EXPECT_TRUE(isLayout || (printed[0] + laidOut).find(character) == std::string::npos)
        << reference;
  }
  EXPECT_THAT(printed[1], HasSubstr(R"({urn:y#}a = "C:\\new \"y")"));
  for (const char layout : {'\n', '\t'}) {
    EXPECT_EQ(std::count(printed[0].begin(), printed[0].end(), layout),
              std::count(printed[1].begin(), printed[1].end(), layout))
        << printed[0] << printed[1];
  }
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
