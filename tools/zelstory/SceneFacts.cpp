#include "SceneFacts.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>

#include <zelstoryparser/SceneText.h>

#include "Console.h"
#include "StoryFile.h"

namespace zelstory {
namespace {

using zelstoryparser::Paragraph;
using zelstoryparser::Scene;

// The name without what stands in brackets behind it: "(O.S.)", "(V.O.) (CONT'D)".
std::string PersonOf(std::string name) {
  const auto trim = [&name] { name.resize(name.find_last_not_of(" \t\r\n") + 1); };
  for (trim(); name.ends_with(')'); trim()) {
    const std::size_t open = name.rfind('(');
    if (open == std::string::npos || open == 0) break;
    name.resize(open);
  }
  return name;
}

SceneFacts FactsOf(const Scene& scene, std::size_t position) {
  const zelstoryparser::SceneText text = zelstoryparser::CollectSceneText(scene);
  SceneFacts facts;
  facts.mPosition = position;
  facts.mNumber = ToUTF8(scene.mSceneNumber);
  facts.mSetting = ToUTF8(text.mSetting);
  facts.mLocation = ToUTF8(text.mLocation);
  facts.mTimeOfDay = ToUTF8(text.mTimeOfDay);
  facts.mSeconds = text.mDuration;
  for (const auto& [character, dialog] : text.mPairs) {
    facts.mSpeeches.push_back({PersonOf(ToUTF8(character)), CountWords(ToUTF8(dialog))});
  }
  for (const auto& paragraph : scene.mParagraphs) facts.mWords += CountWords(TextOf(*paragraph));
  return facts;
}

}  // namespace

bool IsNumber(const std::string& text) {
  return CountWords(text) > 0;
}

std::string SceneName(const SceneFacts& scene) {
  return IsNumber(scene.mNumber) ? scene.mNumber : '#' + std::to_string(scene.mPosition);
}

std::string TextOf(const Paragraph& paragraph) {
  std::string text;
  for (const auto& run : paragraph.mTextRuns) {
    if (run) text += ToUTF8(run->mText);
  }
  return text;
}

std::int64_t CountWords(const std::string& text) {
  std::istringstream words(text);
  std::int64_t count = 0;
  for (std::string word; words >> word;) ++count;
  return count;
}

std::int64_t CountWords(const std::vector<SceneFacts>& scenes) {
  std::int64_t count = 0;
  for (const SceneFacts& scene : scenes) count += scene.mWords;
  return count;
}

std::string DescribeDuration(std::int64_t seconds) {
  char text[40];
  std::snprintf(text, sizeof text, "%s%lld:%02lld:%02lld", seconds < 0 ? "-" : "",
                std::llabs(seconds / 3600), std::llabs(seconds / 60 % 60),
                std::llabs(seconds % 60));
  return text;
}

std::vector<SceneFacts> ReadSceneFacts(const zelstoryparser::TavroStory& story) {
  std::vector<SceneFacts> facts;
  for (const auto& scene : BodyScenes(story)) facts.push_back(FactsOf(*scene, facts.size() + 1));
  return facts;
}

std::vector<PersonFacts> ReadPersonFacts(const std::vector<SceneFacts>& scenes) {
  std::map<std::string, std::size_t> positions;
  std::vector<PersonFacts> people;
  for (const SceneFacts& scene : scenes) {
    for (const Speech& speech : scene.mSpeeches) {
      const auto [known, isNew] = positions.try_emplace(speech.mPerson, people.size());
      if (isNew) people.push_back({speech.mPerson, 0, 0, {}});
      PersonFacts& person = people[known->second];
      ++person.mSpeeches;
      person.mWords += speech.mWords;
      if (person.mScenes.empty() || person.mScenes.back().mPosition != scene.mPosition) {
        person.mScenes.push_back({scene.mPosition, 0, 0});
      }
      ++person.mScenes.back().mSpeeches;
      person.mScenes.back().mWords += speech.mWords;
    }
  }
  return people;
}

}  // namespace zelstory
