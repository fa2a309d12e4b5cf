#include <map>

#include <zelstoryhost/SceneFacts.h>
#include <zelstoryhost/Story.h>
#include <zelstoryhost/Text.h>
#include <zelstoryparser/SceneText.h>

namespace zelstoryhost {
namespace {

using zelstoryparser::HeadingRules;
using zelstoryparser::Scene;

// The name without the parentheses after it: "(O.S.)", "(V.O.) (CONT'D)".
std::string CharacterOf(std::string name) {
  const auto trim = [&name] { name.resize(name.find_last_not_of(" \t\r\n") + 1); };
  for (trim(); name.ends_with(')'); trim()) {
    const std::size_t open = name.rfind('(');
    if (open == std::string::npos || open == 0) break;
    name.resize(open);
  }
  return name;
}

SceneFacts FactsOf(const Scene& scene, std::size_t position, const HeadingRules& rules) {
  const zelstoryparser::SceneText text = zelstoryparser::CollectSceneText(scene, rules);
  SceneFacts facts;
  facts.mPosition = position;
  facts.mNumber = ToUTF8(scene.mSceneNumber);
  facts.mSetting = ToUTF8(text.mSetting);
  facts.mLocation = ToUTF8(text.mLocation);
  facts.mTimeOfDay = ToUTF8(text.mTimeOfDay);
  facts.mSeconds = text.mDuration;
  for (const auto& [character, dialog] : text.mPairs) {
    facts.mSpeeches.push_back({CharacterOf(ToUTF8(character)), CountWords(ToUTF8(dialog))});
  }
  for (const auto& paragraph : scene.mParagraphs) facts.mWords += CountWords(TextOf(*paragraph));
  return facts;
}

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

std::vector<SceneFacts> ReadSceneFacts(const zelstoryparser::TavroStory& story,
                                       const HeadingRules& rules) {
  std::vector<SceneFacts> facts;
  for (const auto& scene : BodyScenes(story)) {
    facts.push_back(FactsOf(*scene, facts.size() + 1, rules));
  }
  return facts;
}

std::vector<CharacterFacts> ReadCharacterFacts(const std::vector<SceneFacts>& scenes) {
  std::map<std::string, std::size_t> places;  // in `characters`, by name
  std::vector<CharacterFacts> characters;
  for (const SceneFacts& scene : scenes) {
    for (const Speech& speech : scene.mSpeeches) {
      const auto [known, isNew] = places.try_emplace(speech.mCharacter, characters.size());
      if (isNew) characters.push_back({speech.mCharacter, 0, 0, {}});
      CharacterFacts& character = characters[known->second];
      ++character.mSpeeches;
      character.mWords += speech.mWords;
      if (character.mScenes.empty() || character.mScenes.back().mPosition != scene.mPosition) {
        character.mScenes.push_back({scene.mPosition, 0, 0});
      }
      ++character.mScenes.back().mSpeeches;
      character.mScenes.back().mWords += speech.mWords;
    }
  }
  return characters;
}

}  // namespace zelstoryhost
