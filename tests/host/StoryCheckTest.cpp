#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <zelstoryhost/ScriptFormats.h>
#include <zelstoryhost/StoryCheck.h>

#include "support/Story.h"

namespace {

using namespace zelstoryhost;

// From "1=H:INT. A - DAY / A:Rain. + =A:x": scenes with their numbers and paragraphs.
StoryPtr StoryOf(std::string_view scenes) {
  std::vector<ScenePtr> made;
  table::Split(scenes, " + ", [&](std::string_view scene) {
    const std::size_t sign = scene.find('=');
    made.push_back(MakeScene(scene.substr(sign + 1), scene.substr(0, sign)));
  });
  return MakeStory(made);
}

// "CODE@WHERE", and "(3)" for what was found three times.
std::string Show(const std::vector<Finding>& findings) {
  std::string text;
  for (const Finding& finding : findings) {
    (text += text.empty() ? "" : ", ") += NameOf(finding.mCode);
    if (!finding.mWhere.empty()) text += '@' + finding.mWhere.substr(finding.mWhere.find(' ') + 1);
    const std::size_t times = finding.mText.find(" times)");
    if (times != std::string::npos) text += '(' + finding.mText.substr(times - 1, 1) + ')';
  }
  return text;
}

// A row has a story, what is found by the exact rule and by the common ones, and a part of the
// first text.
TEST(StoryCheckTest, FindsWhatDeservesASecondLook) {
  for (const Row& row : Rows(R"(
      =A:Rain. + =H:EXT. A / C:ANNA / P:(low) / D:Hi.
      1=H:INT. A - DAY + 1A=H:EXT. B - DUSK + 2=H:INT/EXT. C - CONTINUOUS
      =H:FOO BAR + =H:FOO BAR => unknown-setting@scene at position 1, paragraph 1(2) => \
          unknown-setting@scene at position 1, paragraph 1(2) => \
          the heading "FOO BAR" begins with no known setting, such as INT or EXT; read as location "FOO BAR"
      5=H:X. / H:INT. A - SOONISH => unknown-time@scene 5, paragraph 2 =>  => time "SOONISH"
      5=H:EXT./INT. A - DAY => other-reading@scene 5, paragraph 1 =>  => \
          setting "EXT", location "/INT. A", time "DAY"; the common rules read setting "EXT./INT",
      5=H:INT. A - B - NIGHT / A:x => other-reading@scene 5, paragraph 1 =>  => read as setting "INT", location "A", time "B - NIGHT"
      1=A:x + 2=A:x + 1=A:x + 1=A:x => duplicate-scene-number => duplicate-scene-number => \
          3 scenes, at the positions 1, 3, 4, have the number "1": give
      1=H:INT. A + \s=H:INT. B + =H:INT. C + =A:x => missing-scene-number => missing-scene-number => \
          2 scenes, at the positions 2, 3, have no number
      =A#:x / A:y + =T#: + =A#2:x / A#:x => missing-identifier => missing-identifier => the scene at position 1 has
      =C:ANNA / D:x / C:Anna (V.O.) / D:x / C:ANNA (VO) / D:x / C:Anna ^ / D:x / C:anna / D:x => \
          name-spelling@scene at position 1, paragraph 3, extension-spelling@scene at position 1, paragraph 5 => \
          name-spelling@scene at position 1, paragraph 3, extension-spelling@scene at position 1, paragraph 5 => \
          is spelled "ANNA", "Anna", "anna": they
      =D: / D:x / D:y / C:ANNA + =C:B / D:x / C: / D:x => \
          dialogue-without-name@scene at position 1, paragraph 2, dialogue-without-name@scene at position 2, paragraph 4 => \
          dialogue-without-name@scene at position 1, paragraph 2, dialogue-without-name@scene at position 2, paragraph 4 => becomes part
      =C:ANNA / A:x / C:B / D: / C:C / D:x => name-without-dialogue@scene at position 1, paragraph 1(2) => \
          name-without-dialogue@scene at position 1, paragraph 1(2)
      )")) {
    const StoryPtr story = StoryOf(row[0]);
    const std::vector<Finding> found = CheckStory(*story, zelstoryparser::ExactHeadingRules());
    EXPECT_EQ(Show(found), row[1]) << row[0];
    EXPECT_EQ(Show(CheckStory(*story, zelstoryparser::CommonHeadingRules())), row[2]) << row[0];
    EXPECT_THAT(found.empty() ? "" : found[0].mText, testing::HasSubstr(row[3])) << row[0];
  }
}

// Where each paragraph begins: LINE:COLUMN, with "/" between scenes.
TEST(StoryCheckTest, PlacesInTheScriptAreKnown) {
  const std::pair<const char*, std::string> cases[] = {
      {"Title: T\n\nFADE IN:\n\nINT. A - DAY\n\n[[note]]\n\n!\nRain,\nsnow.\n\nANNA\n(low)\nHi.\n  "
       "\nYes.\n"
       "(up)\nNo.\n\nCUT TO:",
       "3:1 / 5:1 10:1 13:1 14:1 15:1 18:1 19:1 21:1"},
      {"<FinalDraft><Content><Paragraph Type='Scene Heading'><Text>A</Text></Paragraph>\n\n"
       " <Paragraph><Text>x</Text></Paragraph><Paragraph><DualDialogue>\n"
       "  <Paragraph Type='Character'/></DualDialogue></Paragraph></Content></FinalDraft>",
       "1:22 3:2 4:3"},
      {"<TavroStory version='1.0'><document><stream name='header'><section><scene><paragraph/>"
       "</scene></section></stream>\n<stream name='body'><section>\n<scene/><scene>\n <paragraph/>"
       "<paragraph><textRun>\n</textRun></paragraph>\n</scene></section></stream></document>"
       "</TavroStory>",
       "/ 4:2 4:14"}};
  for (const auto& [script, expected] : cases) {
    std::istringstream stream(script);
    const StoryResult result = ReadScript(stream, "s");
    std::string places;
    for (const auto& scene : result.mPositions) {
      if (&scene != &result.mPositions.front()) places += places.empty() ? "/" : " /";
      for (const auto& position : scene) {
        if (!places.empty()) places += ' ';
        places += std::to_string(position.mLine) + ':' + std::to_string(position.mColumn);
      }
    }
    EXPECT_EQ(places, expected) << script;
  }
}

TEST(StoryCheckTest, TheDocumentsExplainAllCodes) {
  std::ifstream file(ZELSTORY_EXAMPLES_DIR "/../docs/errors.md");
  const std::string page(std::istreambuf_iterator<char>(file), {});
  for (const auto& [code, name] : kFindingCodes) {
    EXPECT_EQ(NameOf(code), name);
    EXPECT_NE(page.find("\n| `" + std::string(name) + "` |"), std::string::npos) << name;
  }
}

}  // namespace
