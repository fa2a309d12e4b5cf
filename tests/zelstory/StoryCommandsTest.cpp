#include <sstream>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "zelstory/Scratch.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

using StoryCommandsTest = Scratch;

TEST_F(StoryCommandsTest, JSONHasTheWholeTree) {
  Write("s.quor", R"(<TavroStory version='1.0' documentType='T' template='M'>
    <document version='2'><stream name='header' objID='h'/><stream name='body' objID='b'>
      <section objID='c'><scene objID='s' sceneNumber='1A'>
        <paragraph objID='p' element='SceneHeading' shotDuration='0:01:30'>
          <textRun objID='q'>EXT. </textRun><textRun objID='r'>É</textRun></paragraph>
        <paragraph objID='o' element='Note'/></scene></section></stream>
      <commentStream objID='k' name='n' commentAuthor='a' commentAuthorID='i' dependent='d'/>
    </document><metaData>D</metaData><Tag label='g'/><Tag label='f'/></TavroStory>)");
  const std::string scene =
      R"({"objectID":"s","sceneNumber":"1A","shotDuration":"0:01:30","paragraphs":[)"
      R"({"objectID":"p","elementType":200,"element":"SceneHeading","textRuns":[)"
      R"({"objectID":"q","text":"EXT. "},{"objectID":"r","text":"É"}]},)"
      R"({"objectID":"o","elementType":207,"element":null,"textRuns":[]}]})";
  const auto compact = [](const Outcome& outcome) {
    return nlohmann::ordered_json::parse(outcome.mOutput).dump();
  };
  EXPECT_EQ(compact(Tool("show s.quor --id s --json")), scene);
  EXPECT_EQ(compact(Tool("show s.quor --json")),
            R"({"document":{"headerStream":{"objectID":"h","name":"header","section":null},)"
            R"("bodyStream":{"objectID":"b","name":"body","section":{"objectID":"c","scenes":[)" +
                scene +
                R"(]}},"footerStream":null,"version":"2","commentStreams":[{"objectID":"k",)"
                R"("name":"n","commentAuthor":"a","dependent":"d","commentAuthorID":"i",)"
                R"("section":null}]},"version":"1.0","documentType":"T","template":"M",)"
                R"("metaData":"D","tags":["g","f"]})");
}

// What deserves a second look in the examples is odd on purpose.
TEST_F(StoryCommandsTest, EveryEncodingIsRead) {
  EXPECT_EQ(Run(R"(zelstory check $stories/*.quor $stories/encodings/* | grep -v ': ok$' |
                   sed 's/.*stories.//' | cut -d: -f1,2
      for f in $stories/encodings/*; do zelstory show $f --json | cksum; done | sort -u | wc -l)")
                .mOutput,
            "every_element.quor:22\nheadings.quor:168\nheadings.quor:172\nheadings.quor:176\n"
            "headings.quor:184\nheadings.quor:208\nthe_long_tide.quor:632\n1\n");
}

TEST_F(StoryCommandsTest, CheckReportsPlaceAndReason) {
  const std::vector<std::string> rows =
      Lines(Run("grep -v '^#' $stories/broken/expected.txt").mOutput);
  EXPECT_EQ(rows.size(), 24u);
  for (const std::string& row : rows) {
    std::istringstream fields(row);
    std::string file, line, column, message;
    std::getline(fields >> file >> line >> column >> std::ws, message);
    const Outcome outcome = Run("cd $stories/broken; zelstory check " + file);
    EXPECT_EQ(outcome.mStatus, 1) << file;
    EXPECT_THAT(
        outcome.mOutput,
        StartsWith(file + ":" + (line == "-" ? "" : line + ":" + column + ": error: " + message)));
  }
  const Outcome outcome = Tool("check --json $stories/broken/cut_off.quor - '\xFF.quor'",
                               "<TavroStory version='1.0'/>");
  EXPECT_EQ(outcome.mStatus, 1);
  const std::vector<std::string> lines = Lines(outcome.mOutput);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_THAT(lines[0], HasSubstr(R"("line":15,"column":98,"message":"the document ends)"));
  EXPECT_THAT(lines[0], HasSubstr(R"("where":"body, scene 2, paragraph 2"})"));
  EXPECT_EQ(lines[1], R"({"file":"-","ok":true})");
  EXPECT_EQ(lines[2],
            "{\"file\":\"\uFFFD.quor\",\"ok\":false,\"line\":null,\"column\":null,"
            "\"message\":\"No such file or directory\",\"where\":null}");
}

TEST_F(StoryCommandsTest, WarningsFailOnlyIfStrict) {
  Write("a.fountain", "INT. A - B - DAY #1#\n\nANNA\nHi.\n\nINT. C - DAY #1#\n\nRain.\n");
  const std::string warning =
      "2 scenes, at the positions 1, 2, have the number \\\"1\\\": give each its own, or choose "
      "them "
      "by position";
  EXPECT_EQ(
      Printed("zelstory check a.fountain --strict --json; echo $?; zelstory check a.fountain "
              ">/dev/null; echo $?; echo 'INT. A' | zelstory check - --strict; echo $?\n"
              "zelstory check a.fountain --headings exact | cut -c-30"),
      R"({"file":"a.fountain","ok":true,"findings":[{"severity":"warning","line":6,"column":1,)"
      R"("message":")" +
          warning + R"(","where":null,"code":"duplicate-scene-number"}]})" +
          "\n1\n0\n-: ok\n0\na.fountain:1:1: warning: the h\n"
          "a.fountain:6:1: warning: 2 sce\na.fountain: ok\n");
}

TEST_F(StoryCommandsTest, AFaultsPlaceInTheStoryIsNamed) {
  const std::string fault = "<section/>";
  const std::pair<std::string, const char*> cases[] = {
      {Story(fault), "body"},
      {Story("<scene/><scene>" + fault), "body, scene at position 2"},
      {Story("<scene sceneNumber='7'>" + Paragraph("Shot", "X") + "</scene>" + fault), "body"},
      {Story("<scene sceneNumber='7'>" + Paragraph("Shot", "X") + fault), "body, scene 7"},
      {Story("<scene><paragraph/></scene><scene sceneNumber='7'><paragraph>" + fault),
       "body, scene 7, paragraph 1"},
      {Story("<scene/>", "<stream name=''><section/>" + fault), "unnamed stream"},
      {Story("<scene><paragraph><commentStream>" + fault), "comment stream 1"},
      {Story("<scene/>", "<commentStream/><commentStream><section><scene>" + fault),
       "comment stream 2, scene at position 1"},
  };
  for (const auto& [story, place] : cases) {
    EXPECT_THAT(Tool("check -", story).mOutput,
                testing::EndsWith("Stream or CommentStream? (" + std::string(place) + ")\n"));
  }
}

TEST_F(StoryCommandsTest, AScreenplayHasItsLayout) {
  Write(
      "s.quor",
      Story(
          "<scene sceneNumber='1000AB'>" + Paragraph("SceneHeading", "ext. sea") +
              "</scene><scene sceneNumber='7A'>" + Paragraph("SceneHeading", "int. café - night") +
              Paragraph("Action",
                        "Rain on the glass, and a very long line of action that cannot stand on "
                        "one line alone.") +
              Paragraph("Character", "ANNA") + Paragraph("Parenthetical", "(low)") +
              Paragraph("Dialog",
                        "One &#10;two&#x9b;31m 0123456789012345678901234567890123456789") +
              Paragraph("SceneHeading", "later") + Paragraph("Transition", "cut to:") + "</scene>",
          Stream("footer", "<scene>" + Paragraph("Action", "end") + "</scene>") +
              Stream("header",
                     "<scene sceneNumber='9'>" + Paragraph("SceneHeading", "top") + "</scene>") +
              "<commentStream name='notes' commentAuthor='Ida'><section><scene>" +
              Paragraph("", "Which sea?") + "</scene></section></commentStream>"));
  const std::string scene =
      "\n7A    INT. CAFÉ - NIGHT" + std::string(46, ' ') +
      "7A\n\n      Rain on the glass, and a very long line of action that cannot\n"
      "      stand on one line alone.\n\n"
      "                            ANNA\n"
      "                      (low)\n"
      "                One\n"
      "                two\\u{9B}31m\n                012345678901234567890123456789012345\n"
      "                6789\n\n      LATER\n\n" +
      std::string(60, ' ') + "CUT TO:\n";
  const std::string all = "\n      TOP\n\n1000AB EXT. SEA" + std::string(55, ' ') + "1000AB\n" +
                          scene + "\n      end\n";
  EXPECT_EQ(Tool("show - --scene 7A", Read("s.quor")).mOutput, scene);
  EXPECT_EQ(Tool("show s.quor").mOutput, all);
  EXPECT_EQ(Tool("show s.quor --comments").mOutput,
            all + "\nCOMMENTS BY IDA (notes)\n\n      Which sea?\n");
}

TEST_F(StoryCommandsTest, ShotsAreNumberedByPositionAndReadByOthers) {
  const Outcome outcome = Run("ulimit -n 32; zelstory shots $stories/the_long_tide.quor --out a/b");
  EXPECT_EQ(outcome.mStatus, 0);
  const std::vector<std::string> lines = Lines(outcome.mOutput);
  ASSERT_EQ(lines.size(), 72u);
  EXPECT_THAT(lines[71], testing::MatchesRegex("72\t[^\t]+\ta/b/scene_0072.xmp"));
  const Outcome both =
      Tool("shots $stories/the_long_tide.quor none.quor $stories/harbour_lights.quor --out d");
  EXPECT_EQ(both.mStatus, 1);
  EXPECT_THAT(both.mOutput, HasSubstr("harbour_lights.quor: 4\t"));
  for (int run = 0; run < 2; ++run) {  // the second run replaces what the first one made
    EXPECT_EQ(Tool("shots $stories/the_long_tide.quor --out c").mErrors, "");
  }
  EXPECT_EQ(Run("diff -r a/b c; diff -r c d/the_long_tide").mOutput, "");
  EXPECT_THAT(Run(R"(sed -i 's/<\/rdf:Description>/<b xmlns="urn:b#">2<\/b>&/' d/*/scene_0002.xmp
                     zelstory shots $stories/the_long_tide.quor --out d/the_long_tide)")
                  .mErrors,
              HasSubstr("d/the_long_tide/scene_0002.xmp: error: is not a shot's packet"));
  Run("cp $stories/harbour_lights.quor scene_0001.xmp");
  EXPECT_THAT(Tool("shots scene_0001.xmp --out . --force").mErrors, HasSubstr("the story itself"));
  EXPECT_EQ(Run("cmp $stories/harbour_lights.quor scene_0001.xmp").mOutput, "");
  if (const auto missing = Missing("xmllint rapper"); !missing.empty()) GTEST_SKIP() << missing;
  const Outcome judged = Run(R"(for packet in c/*; do
      xmllint --noout $packet; rapper -q -f scanForRDF -o ntriples $packet http://clip.example/
    done | grep -c 'DynamicMedia/shotName> "')");
  EXPECT_EQ(judged.mOutput + judged.mErrors, "72\n");
}

// Each format of a script gives the same lists, under any name, and from standard input.
TEST_F(StoryCommandsTest, ScriptsOfAllFormatsAreTaken) {
  Write("a.fountain",
        "Title:\n    Two\n    words\n\nINT. CAF\u00C9 - NIGHT #1#\n\nANNA\n*Hi.*\n\n.LATER #2#\n");
  const std::string note = "note: emphasis (italics, bold, underlining) is left out\n";
  EXPECT_EQ(Printed("zelstory check a.fountain; zelstory check a.fountain --json"),
            "a.fountain: " + note + "a.fountain: ok\n" +
                R"({"file":"a.fountain","ok":true,"findings":[{"severity":"note","line":null,)" +
                R"("column":null,"message":"emphasis (italics, bold, underlining) is left out",)" +
                R"("where":null,"code":"format"}]})" + "\n");
  EXPECT_EQ(
      Printed("zelstory convert a.fountain a.fdx 2>/dev/null\n"
              "zelstory convert a.fdx --out D/E --to story; zelstory convert - b --to fountain "
              "<D/E/a.quor; zelstory convert b - --to fountain"),
      "D/E/a.quor\nTitle:\n    Two\n    words\n\nINT. CAF\u00C9 - NIGHT #1#\n\nANNA\nHi.\n\n"
      ".LATER #2#\n");
  EXPECT_EQ(Printed("for s in a.fountain a.fdx D/E/a.quor b '- --format fdx'; do\n"
                    "  for c in scenes characters stats; do zelstory $c $s --csv <a.fdx; done\n"
                    "done 2>/dev/null | sort | uniq -c | awk '$1 % 5 { print }'"),
            "");
  EXPECT_EQ(
      Printed("zelstory write a.fountain c.xmp --scene 1 2>/dev/null | wc -l; zelstory has "
              "c.xmp; zelstory report a.fountain --html - 2>/dev/null | grep -c '>Two words<'"),
      "7\nyes\n2\n");
  EXPECT_EQ(Printed("echo old >o; ln o p; zelstory convert b o --to fountain --force; cat p"),
            "old\n");
}

TEST_F(StoryCommandsTest, DumpWritesIntoTheTemporaryFolder) {
  EXPECT_THAT(Tool("dump $stories/harbour_lights.quor").mOutput,
              StartsWith("Story Version: 1.0  Document Version: "));
  EXPECT_EQ(
      Run("ls -A | tr '\\n' ' '").mOutput,
      "mivTestXMPBufferDumpFile_Scene_1_Shot_1.txt mivTestXMPBufferDumpFile_Scene_2_Shot_1.txt "
      "mivTestXMPBufferDumpFile_Scene_3_Shot_1.txt mivTestXMPBufferDumpFile_Scene_4_Shot_1.txt ");
  EXPECT_EQ(Run("TMPDIR=none zelstory dump $stories/harbour_lights.quor").mErrors,
            "temporary folder (TMPDIR): error: No such file or directory\n");
}

}  // namespace
