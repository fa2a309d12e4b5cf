#include <gtest/gtest.h>

#include <zelstoryhost/SceneFacts.h>

#include "support/Story.h"

namespace {

using namespace zelstoryhost;
using namespace zelstoryparser;

// A story with a speech for each of the cues, which ";" separates.
StoryPtr StoryOf(std::string_view cues) {
  const ScenePtr scene(new Scene);
  table::Split(cues, ";", [&](std::string_view cue) {
    const ScenePtr speech = MakeScene("C: / D:Hi.");
    speech->mParagraphs[0]->mTextRuns.emplace_back(new TextRun)->mText = Utf16(cue);
    scene->mParagraphs.insert(scene->mParagraphs.end(), speech->mParagraphs.begin(),
                              speech->mParagraphs.end());
  });
  return MakeStory({scene});
}

// Who speaks, how often, and with which extensions: "ANNA 3 V.O. CONT'D; BEN 1"
std::string People(const TavroStory& story) {
  std::string text;
  for (const CharacterFacts& character : ReadCharacterFacts(ReadSceneFacts(story))) {
    text +=
        (text.empty() ? "" : "; ") + character.mName + ' ' + std::to_string(character.mSpeeches);
    for (const std::string& extension : character.mExtensions) text += ' ' + extension;
  }
  return text;
}

TEST(SceneFactsTest, APersonHasOneName) {
  for (const Row& row : Rows(R"(
      ANNA; ANNA (V.O.); Anna(O.S.) (CONT'D) ; anna ^;ANNA (VO) ^; ANNA  => ANNA 6 V.O. O.S. CONT'D
      Anna; ANNA; ANNA                                      => ANNA 3
      Anna; ANNA                                            => Anna 2
      \tMR.  X\xC2\xA0; MR. X ; Mr.\xE3\x80\x80X; MR X      => MR.  X 3; MR X 1
      STRASSE; Straße; ΣΟΦΟΣ; Σοφος; É; E\xCC\x81           => STRASSE 2; ΣΟΦΟΣ 2; É 2
      O'NEIL; O’Neil (CONT’D); O'NEIL (cont'd)              => O'NEIL 3 CONT’D
      (A VOICE); A (B (C)); A (); A (?; A ) (V.O.)          => (A VOICE) 1; A 2 B (C); A (? 1; A ) 1 V.O.
      ^; (!); (?) (V.O.) (v o)                          => ^ 1; (!) 1; (?) 1 V.O.
      ANNA/BEN; ANNA; Anna AND BEN (V.O.)                   => ANNA/BEN 1; ANNA 1; Anna AND BEN 1 V.O.
      BEN and anna; ANNA/BEN (V.O.); ANNA; BEN              => BEN 3 V.O.; ANNA 3 V.O.
      ANNA (V.O.) & BEN (O.S.); ANNA + BEN, CY; ANNA; BEN; CY => ANNA 3 V.O.; BEN 3 O.S.; CY 2
      ANNA, BEN, UND CY; ANNA ET ANNA; ANNA; BEN; CY        => ANNA 3; BEN 2; CY 2
      ANNA & THE BAND; ANNA (TO BEN, CY); ANNA; BAND; E; CHILD E; CHILD => \
          ANNA & THE BAND 1; ANNA 2 TO BEN, CY; BAND 1; E 1; CHILD E 1; CHILD 1
      )")) {
    EXPECT_EQ(People(*StoryOf(row[0])), row[1]) << row[0];
  }
}

}  // namespace
