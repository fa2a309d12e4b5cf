#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <zelstoryhost/SceneFacts.h>
#include <zelstoryhost/Story.h>
#include <zelstoryhost/Text.h>
#include <zelstoryparser/SceneText.h>

#include "script/CharacterNames.h"

namespace zelstoryhost {
namespace {

using zelstoryparser::HeadingRules;
using zelstoryparser::Scene;

// Appends the number of each speech's cue to `cues`; its speakers are not known before all cues
// are.
SceneFacts FactsOf(const Scene& scene, std::size_t position, const HeadingRules& rules,
                   CharacterNames& names, std::vector<std::size_t>& cues) {
  const zelstoryparser::SceneText text = zelstoryparser::CollectSceneText(scene, rules);
  SceneFacts facts;
  facts.mPosition = position;
  facts.mNumber = ToUTF8(scene.mSceneNumber);
  facts.mSetting = ToUTF8(text.mSetting);
  facts.mLocation = ToUTF8(text.mLocation);
  facts.mTimeOfDay = ToUTF8(text.mTimeOfDay);
  facts.mSeconds = text.mDuration;
  for (const auto& [character, dialog] : text.mPairs) {
    cues.push_back(names.Add(ToUTF8(character)));
    facts.mSpeeches.push_back({{}, CountWords(ToUTF8(dialog))});
  }
  for (const auto& paragraph : scene.mParagraphs) facts.mWords += CountWords(TextOf(*paragraph));
  return facts;
}

// Gathers what each character says.
class CharacterCounts {
 public:
  void Add(const Speaker& speaker, const Speech& speech, const SceneFacts& scene) {
    const auto [known, isNew] = mPlaces.try_emplace(speaker.mName, mCharacters.size());
    if (isNew) mCharacters.push_back({speaker.mName, 0, 0, {}, {}});
    CharacterFacts& character = mCharacters[known->second];
    ++character.mSpeeches;
    character.mWords += speech.mWords;
    if (character.mScenes.empty() || character.mScenes.back().mPosition != scene.mPosition) {
      character.mScenes.push_back({scene.mPosition, 0, 0});
    }
    ++character.mScenes.back().mSpeeches;
    character.mScenes.back().mWords += speech.mWords;
    for (const std::string& extension : speaker.mExtensions) {
      if (mExtensions.emplace(known->second, extension).second) {
        character.mExtensions.push_back(extension);
      }
    }
  }

  std::vector<CharacterFacts> Take() { return std::move(mCharacters); }

 private:
  std::unordered_map<std::string, std::size_t> mPlaces;  // in mCharacters, by name
  std::vector<CharacterFacts> mCharacters;
  std::set<std::pair<std::size_t, std::string>> mExtensions;  // by the character's place
};

}  // namespace

bool IsNumber(const std::string& text) {
  return CountWords(text) > 0;
}

std::string SceneName(const SceneFacts& scene) {
  const bool isName = IsNumber(scene.mNumber) && scene.mNumber.size() <= kLongestSceneName;
  return isName ? scene.mNumber : '#' + std::to_string(scene.mPosition);
}

std::int64_t CountWords(const std::vector<SceneFacts>& scenes) {
  std::int64_t count = 0;
  for (const SceneFacts& scene : scenes) count += scene.mWords;
  return count;
}

std::vector<std::string> CharactersOf(const SceneFacts& scene) {
  std::unordered_set<std::string> known;
  std::vector<std::string> characters;
  for (const Speech& speech : scene.mSpeeches) {
    for (const Speaker& speaker : speech.mSpeakers) {
      if (known.insert(speaker.mName).second) characters.push_back(speaker.mName);
    }
  }
  return characters;
}

std::vector<SceneFacts> ReadSceneFacts(const zelstoryparser::TavroStory& story,
                                       const HeadingRules& rules) {
  std::vector<SceneFacts> facts;
  CharacterNames names;
  std::vector<std::size_t> cues;
  for (const auto& scene : BodyScenes(story)) {
    facts.push_back(FactsOf(*scene, facts.size() + 1, rules, names, cues));
  }
  auto cue = cues.begin();
  for (SceneFacts& scene : facts) {
    for (Speech& speech : scene.mSpeeches) speech.mSpeakers = names.SpeakersOf(*cue++);
  }
  return facts;
}

std::vector<CharacterFacts> ReadCharacterFacts(const std::vector<SceneFacts>& scenes) {
  CharacterCounts counts;
  for (const SceneFacts& scene : scenes) {
    for (const Speech& speech : scene.mSpeeches) {
      for (const Speaker& speaker : speech.mSpeakers) counts.Add(speaker, speech, scene);
    }
  }
  return counts.Take();
}

}  // namespace zelstoryhost
