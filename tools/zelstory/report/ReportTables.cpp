#include "report/ReportTables.h"

#include <algorithm>
#include <utility>

#include <zelstoryhost/RunningTime.h>
#include <zelstoryhost/SceneFacts.h>
#include <zelstoryhost/Table.h>

#include "report/ReportMarkup.h"

namespace zelstory {

using zelstoryhost::Cell;
using zelstoryhost::CharacterFacts;
using zelstoryhost::CharactersOf;
using zelstoryhost::DescribeDuration;
using zelstoryhost::RunningTime;
using zelstoryhost::RunningTimes;
using zelstoryhost::SceneFacts;
using zelstoryhost::SceneName;

namespace {

// A column's name and class.
using TableColumns = std::vector<std::pair<const char*, const char*>>;

// Adds a table without rows and returns where they go.
pugi::xml_node AddTable(pugi::xml_node parent, const std::string& label, const std::string& caption,
                        const TableColumns& columns) {
  AddElement(parent, "p", "note", caption);
  pugi::xml_node table = AddElement(AddScrollingBox(parent, label), "table");
  pugi::xml_node names = AddElement(AddElement(table, "thead"), "tr");
  for (const auto& [name, className] : columns) {
    AddElement(names, "th", className, name).append_attribute("scope") = "col";
  }
  pugi::xml_node rows = AddElement(table, "tbody");
  rows.append_attribute("lang") = kUnknownLanguage;
  return rows;
}

pugi::xml_node AddRowName(pugi::xml_node row, const char* className, const std::string& text = "") {
  pugi::xml_node name = AddElement(row, "th", className, text);
  name.append_attribute("scope") = "row";
  return name;
}

void AddCount(pugi::xml_node row, const char* className, std::int64_t count) {
  AddElement(row, "td", className, std::to_string(count));
}

// The first few in order of appearance, and how many more.
std::string DescribeCharacters(const SceneFacts& scene) {
  constexpr std::size_t kNamed = 6;
  const std::vector<std::string> characters = CharactersOf(scene);
  std::string names;
  for (std::size_t i = 0; i < std::min(characters.size(), kNamed); ++i) {
    names += (i == 0 ? "" : ", ") + characters[i];
  }
  if (characters.size() > kNamed)
    names += " and " + std::to_string(characters.size() - kNamed) + " more";
  return names;
}

void AddSceneRow(pugi::xml_node rows, const SceneFacts& scene, const RunningTime& time) {
  pugi::xml_node row = AddElement(rows, "tr");
  AddSceneLink(AddRowName(row, "count"), scene.mPosition, SceneName(scene));
  AddElement(row, "td", "", scene.mSetting);
  AddElement(row, "td", "location", scene.mLocation);
  AddElement(row, "td", "", scene.mTimeOfDay);
  const std::string seconds = DescribeDuration(time.Seconds());
  AddElement(row, "td", time.mHasKnown ? "count duration" : "count duration guess",
             time.mHasKnown ? seconds : "\xE2\x89\x88 " + seconds);  // "almost equal to"
  AddCount(row, "count words", scene.mWords);
  AddCount(row, "count speeches", static_cast<std::int64_t>(scene.mSpeeches.size()));
  AddElement(row, "td", "who", DescribeCharacters(scene));
}

void AddSceneCell(pugi::xml_node row, const char* className, const SceneFacts& scene) {
  AddSceneLink(AddElement(row, "td", className), scene.mPosition, SceneName(scene));
}

// "1-4, 7": runs of neighbouring scenes.
void AddSceneRanges(pugi::xml_node cell, const std::vector<SceneFacts>& scenes,
                    const CharacterFacts& character) {
  const auto& in = character.mScenes;
  for (std::size_t i = 0; i < in.size(); ++i) {
    const std::size_t from = in[i].mPosition;
    while (i + 1 < in.size() && in[i + 1].mPosition == in[i].mPosition + 1) ++i;
    const std::size_t to = in[i].mPosition;
    if (cell.first_child()) AppendText(cell, ", ");
    const std::string name = SceneName(scenes[from - 1]);
    AddPointerLink(cell, from,
                   from == to ? name : name + "\xE2\x80\x93" + SceneName(scenes[to - 1]));
  }
}

void AddCharacterRow(pugi::xml_node rows, const std::vector<SceneFacts>& scenes,
                     const CharacterFacts& character) {
  pugi::xml_node row = AddElement(rows, "tr");
  AddRowName(row, "", character.mName);
  AddCount(row, "count speeches", character.mSpeeches);
  AddCount(row, "count words", character.mWords);
  AddSceneCell(row, "count first", scenes[character.mScenes.front().mPosition - 1]);
  AddSceneCell(row, "count last", scenes[character.mScenes.back().mPosition - 1]);
  AddCount(row, "count scenes", static_cast<std::int64_t>(character.mScenes.size()));
  AddSceneRanges(AddElement(row, "td", "ranges"), scenes, character);
  AddElement(row, "td", "extensions", TextOf(Cell(character.mExtensions)));
}

}  // namespace

void AddSceneTable(pugi::xml_node parent, const std::vector<SceneFacts>& scenes,
                   const RunningTimes& times) {
  std::string caption = "Select a number to jump to its scene." + PositionNote(scenes);
  if (times.mTotal.mHasEstimated) caption += " \xE2\x89\x88 marks an estimated duration.";
  pugi::xml_node rows = AddTable(parent, "Scenes", caption,
                                 {{"Scene", "count"},
                                  {"Setting", ""},
                                  {"Location", ""},
                                  {"Time", ""},
                                  {"Duration", "count"},
                                  {"Words", "count"},
                                  {"Speeches", "count"},
                                  {"Characters", ""}});
  for (const SceneFacts& scene : scenes) {
    AddSceneRow(rows, scene, times.mScenes[scene.mPosition - 1]);
  }
}

void AddCharacterTable(pugi::xml_node parent, const std::vector<SceneFacts>& scenes,
                       const std::vector<CharacterFacts>& characters) {
  pugi::xml_node rows =
      AddTable(parent, "Characters",
               "Everyone who speaks, sorted by number of words, with the scenes they speak in.",
               {{"Character", ""},
                {"Speeches", "count"},
                {"Words", "count"},
                {"First", "count"},
                {"Last", "count"},
                {"Scenes", "count"},
                {"Speaks in", ""},
                {"Extensions", ""}});
  for (const CharacterFacts& character : characters) AddCharacterRow(rows, scenes, character);
}

}  // namespace zelstory
