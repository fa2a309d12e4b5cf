#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <zelstoryhost/Export.h>
#include <zelstoryparser/HeadingRules.h>
#include <zelstoryparser/StoryTree.h>

// What lists and reports say about the scenes of a story's body and about who speaks in them. All
// texts are UTF-8. All functions may be called from several threads at once.
namespace zelstoryhost {

// Who speaks. A name of up to 1000 bytes is the same for all spellings of it in the story: those
// that differ in case, in blanks, in the form of apostrophes, or in how Unicode composes letters.
// It is the spelling that the story has most often, or the first of several such. What stands in
// parentheses after a name is an extension: ANNA (V.O.) (CONT'D) is ANNA with the extensions V.O.
// and CONT'D. Of extensions, only letters and digits are compared, in any case: VO is V.O.
struct Speaker {
  std::string mName;
  std::vector<std::string> mExtensions;  // in order, without the parentheses
};

// One speech. It has several speakers if its cue joins names, by a comma, "/", "&", "+", or a word
// for "and", and if each of these also speaks alone in the story. Otherwise the cue is one name.
struct Speech {
  std::vector<Speaker> mSpeakers;  // one or more, each with another name
  std::int64_t mWords = 0;
};

// One scene. Setting, location, time of day and duration are what GetSceneXMP would write by the
// same rules, so that lists and metadata agree.
struct SceneFacts {
  std::size_t mPosition = 0;  // from 1
  std::string mNumber;        // as the script has it; may be empty
  std::string mSetting;
  std::string mLocation;
  std::string mTimeOfDay;
  std::optional<std::int64_t> mSeconds;  // none without a duration; may be below zero
  std::vector<Speech> mSpeeches;         // in order
  std::int64_t mWords = 0;               // of all its paragraphs
};

// What one character says, in all and scene by scene. A speech of several is counted for each.
struct CharacterFacts {
  struct InScene {
    std::size_t mPosition = 0;  // of the scene, from 1
    std::int64_t mSpeeches = 0;
    std::int64_t mWords = 0;
  };
  std::string mName;
  std::int64_t mSpeeches = 0;
  std::int64_t mWords = 0;
  std::vector<InScene> mScenes;          // those with a speech, in order
  std::vector<std::string> mExtensions;  // of all speeches, each once, in order of appearance
};

// The scenes of the body, in order; `rules` say how their headings are read.
ZELSTORYHOST_API std::vector<SceneFacts> ReadSceneFacts(
    const zelstoryparser::TavroStory& story,
    const zelstoryparser::HeadingRules& rules = zelstoryparser::ExactHeadingRules());

// Who speaks in these scenes, in order of appearance.
ZELSTORYHOST_API std::vector<CharacterFacts> ReadCharacterFacts(
    const std::vector<SceneFacts>& scenes);

// The names of those who speak in a scene, each once, in order of appearance.
ZELSTORYHOST_API std::vector<std::string> CharactersOf(const SceneFacts& scene);

// Whether a text numbers a scene: white space alone does not.
ZELSTORYHOST_API bool IsNumber(const std::string& text);

// The bytes of the longest number that names a scene in lists. A list may name a scene in many
// rows, so that a longer one would fill it.
inline constexpr std::size_t kLongestSceneName = 60;

// What lists, links and labels call a scene: its number, or "#3" for the third scene if it has no
// number or one above kLongestSceneName.
ZELSTORYHOST_API std::string SceneName(const SceneFacts& scene);

// The words of all these scenes.
ZELSTORYHOST_API std::int64_t CountWords(const std::vector<SceneFacts>& scenes);

}  // namespace zelstoryhost
