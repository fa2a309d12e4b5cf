#include <map>
#include <string>
#include <utility>
#include <vector>

#include <zelstoryhost/RunningTime.h>
#include <zelstoryhost/SceneFacts.h>
#include <zelstoryhost/Story.h>
#include <zelstoryhost/StoryLists.h>
#include <zelstoryhost/Text.h>

namespace zelstoryhost {

using zelstoryparser::TavroStory;

namespace {

// A row of cells that are moved, not copied: with clang 14, a cell of which the copy fails for lack
// of memory ends the process.
template <typename... Cells>
std::vector<Cell> Row(Cells... cells) {
  std::vector<Cell> row;
  row.reserve(sizeof...(cells));
  (row.emplace_back(std::move(cells)), ...);
  return row;
}

}  // namespace

Table ListScenes(const TavroStory& story, const zelstoryparser::HeadingRules& rules) {
  Table table{
      {"position", "number", "setting", "location", "time", "duration", "speeches", "characters"},
      {}};
  for (const SceneFacts& scene : ReadSceneFacts(story, rules)) {
    table.mRows.push_back(Row(static_cast<std::int64_t>(scene.mPosition), scene.mNumber,
                              scene.mSetting, scene.mLocation, scene.mTimeOfDay,
                              scene.mSeconds ? Cell(DescribeDuration(*scene.mSeconds)) : Cell(),
                              static_cast<std::int64_t>(scene.mSpeeches.size()),
                              static_cast<std::int64_t>(CharactersOf(scene).size())));
  }
  return table;
}

Table ListCharacters(const TavroStory& story) {
  Table table{{"character", "speeches", "words", "first", "last", "scenes", "extensions"}, {}};
  const std::vector<SceneFacts> scenes = ReadSceneFacts(story);
  for (const CharacterFacts& character : ReadCharacterFacts(scenes)) {
    std::vector<ListedScene> listed;
    for (const CharacterFacts::InScene& scene : character.mScenes) {
      listed.push_back(
          {static_cast<std::int64_t>(scene.mPosition), SceneName(scenes[scene.mPosition - 1])});
    }
    table.mRows.push_back(Row(character.mName, character.mSpeeches, character.mWords,
                              listed.front().mName, listed.back().mName, listed,
                              character.mExtensions));
  }
  return table;
}

Table ListCounts(const TavroStory& story) {
  struct Count {
    std::int64_t mParagraphs = 0;
    std::int64_t mWords = 0;
  };
  std::map<std::int32_t, Count> counts;
  Count total;
  const auto scenes = BodyScenes(story);
  for (const auto& scene : scenes) {
    for (const auto& paragraph : scene->mParagraphs) {
      const std::int64_t words = CountWords(TextOf(*paragraph));
      for (Count* count : {&counts[paragraph->mElementType], &total}) {
        ++count->mParagraphs;
        count->mWords += words;
      }
    }
  }
  Table table{{"what", "count", "words"}, {}};
  table.mRows.push_back(Row("scenes", static_cast<std::int64_t>(scenes.size()), Cell()));
  for (const zelstoryparser::ParagraphKind& kind : zelstoryparser::kParagraphKinds) {
    const Count& count = counts[kind.mType];
    table.mRows.push_back(Row(std::string(kind.mName), count.mParagraphs, count.mWords));
  }
  const Count& unknown = counts[zelstoryparser::kUnknownElement];
  table.mRows.push_back(Row("unknown", unknown.mParagraphs, unknown.mWords));
  table.mRows.push_back(Row("paragraphs", total.mParagraphs, total.mWords));
  const std::size_t speaking = ReadCharacterFacts(ReadSceneFacts(story)).size();
  table.mRows.push_back(Row("speaking characters", static_cast<std::int64_t>(speaking), Cell()));
  return table;
}

}  // namespace zelstoryhost
