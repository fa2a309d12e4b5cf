#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <zelstoryparser/StoryTree.h>

// What lists and reports tell of a story's body. All texts are UTF-8.
namespace zelstory {

// Who speaks: what stands in brackets behind a name, as in ANNA (V.O.), says how a person is heard,
// and makes no other person.
struct Speech {
  std::string mPerson;
  std::int64_t mWords = 0;
};

// What a clip of the scene would be told, so that lists and metadata never disagree.
struct SceneFacts {
  std::size_t mPosition = 0;  // from 1
  std::string mNumber;        // its own; may be empty
  std::string mSetting;
  std::string mLocation;
  std::string mTimeOfDay;
  std::optional<std::int64_t> mSeconds;
  std::vector<Speech> mSpeeches;
  std::int64_t mWords = 0;  // of all its paragraphs
};

// Whether a text numbers a scene: white space does not.
bool IsNumber(const std::string& text);

// What lists, links and labels call a scene: its number, or "#3" for the third scene if it has
// none.
std::string SceneName(const SceneFacts& scene);

// What a person says, over all and scene by scene.
struct PersonFacts {
  struct InScene {
    std::size_t mPosition = 0;
    std::int64_t mSpeeches = 0;
    std::int64_t mWords = 0;
  };
  std::string mName;
  std::int64_t mSpeeches = 0;
  std::int64_t mWords = 0;
  std::vector<InScene> mScenes;  // those with a speech, in order
};

std::vector<SceneFacts> ReadSceneFacts(const zelstoryparser::TavroStory& story);

// In order of appearance.
std::vector<PersonFacts> ReadPersonFacts(const std::vector<SceneFacts>& scenes);

std::string DescribeDuration(std::int64_t seconds);  // h:mm:ss
std::string TextOf(const zelstoryparser::Paragraph& paragraph);
std::int64_t CountWords(const std::string& text);
std::int64_t CountWords(const std::vector<SceneFacts>& scenes);

}  // namespace zelstory
