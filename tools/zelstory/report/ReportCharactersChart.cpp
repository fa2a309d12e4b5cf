#include <algorithm>
#include <array>

#include <zelstoryhost/SceneFacts.h>

#include "report/ReportCharts.h"
#include "report/ReportDrawing.h"
#include "report/ReportMarkup.h"
#include "terminal/TextLayout.h"

namespace zelstory {

using zelstoryhost::CharacterFacts;
using zelstoryhost::SceneFacts;

namespace {

constexpr std::size_t kMostCharacters = 30;
constexpr std::size_t kLabelColumns = 19;
constexpr std::size_t kTitleColumns = 60;
constexpr int kRowHeight = 20;

// More words, stronger colour. The steps grow, so that short speeches differ.
struct Shade {
  const char* mClass;
  std::int64_t mSixteenths;  // of the most words in any one place, at most
};
constexpr std::array<Shade, 4> kShades{
    {{"cell s1", 1}, {"cell s2", 4}, {"cell s3", 9}, {"cell s4", 16}}};

std::int64_t MostWordsOf(const Shade& shade, std::int64_t most) {
  return most * shade.mSixteenths / 16;
}

const char* ShadeOf(std::int64_t words, std::int64_t most) {
  for (const Shade& shade : kShades) {
    if (words <= MostWordsOf(shade, most)) return shade.mClass;
  }
  return kShades.back().mClass;
}

void AddShadeLegend(pugi::xml_node parent, std::int64_t most) {
  std::vector<std::pair<const char*, std::string>> entries;
  std::int64_t last = 0;
  for (const Shade& shade : kShades) {
    const std::int64_t words = MostWordsOf(shade, most);
    if (words > last) entries.emplace_back(shade.mClass, "up to " + Counted(words, "word"));
    last = words;
  }
  AddLegend(parent, entries);
}

struct Share {
  std::int64_t mSpeeches = 0;
  std::int64_t mWords = 0;
};

std::vector<Share> SharesOf(const CharacterFacts& character, const SceneColumns& columns) {
  std::vector<Share> shares(columns.Count());
  for (const CharacterFacts::InScene& scene : character.mScenes) {
    Share& share = shares[columns.ColumnOf(scene.mPosition)];
    share.mSpeeches += scene.mSpeeches;
    share.mWords += scene.mWords;
  }
  return shares;
}

void AddCharacterRow(const Drawing& drawing, const CharacterFacts& character,
                     const SceneColumns& columns, int y, std::int64_t mostWords) {
  AddText(drawing.mLabels, columns.Left() - kLabelDistance, y + kRowHeight - 6, "label",
          Shortened(character.mName, kLabelColumns));
  AddLine(drawing.mPlot, columns.Left(), columns.Right(), y + kRowHeight);
  const std::string name = Shortened(character.mName, kTitleColumns);
  const std::vector<Share> shares = SharesOf(character, columns);
  for (std::size_t column = 0; column < shares.size(); ++column) {
    const Share& share = shares[column];
    if (share.mSpeeches == 0) continue;
    const std::string text =
        name + ", " + columns.Name(column) + ": " + std::to_string(share.mSpeeches) +
        (share.mSpeeches == 1 ? " speech, " : " speeches, ") + Counted(share.mWords, "word");
    AddBox(columns.AddLink(drawing.mPlot, column, text), ShadeOf(share.mWords, mostWords),
           columns.X(column), y + 2, columns.Width() - 1, kRowHeight - 4);
  }
}

std::int64_t MostWords(const std::vector<CharacterFacts>& characters, const SceneColumns& columns) {
  std::int64_t most = 0;
  for (const CharacterFacts& character : characters) {
    for (const Share& share : SharesOf(character, columns)) most = std::max(most, share.mWords);
  }
  return most;
}

std::string DescribeCharacters(const std::vector<CharacterFacts>& shown) {
  constexpr std::size_t kDescribed = 3;
  std::string description = "Most words: ";
  for (std::size_t i = 0; i < std::min(shown.size(), kDescribed); ++i) {
    const CharacterFacts& character = shown[i];
    description += (i == 0 ? "" : "; ") + character.mName + ", " +
                   Counted(character.mWords, "word") + " in " +
                   Counted(static_cast<std::int64_t>(character.mScenes.size()), "scene");
  }
  return description + '.';
}

void AddNote(pugi::xml_node parent, std::size_t shown, std::size_t all,
             const SceneColumns& columns) {
  pugi::xml_node note = AddElement(parent, "p", "note",
                                   "Sorted by number of words. The stronger the colour, the more "
                                   "words." +
                                       columns.Note());
  if (shown == all) return;
  AppendText(note, " The chart has the first " + std::to_string(shown) + " of ");
  SetAttribute(AddElement(note, "a", "", std::to_string(all) + " characters"), "href",
               "#characters");
  AppendText(note, ".");
}

}  // namespace

void AddCharactersChart(pugi::xml_node parent, const std::vector<SceneFacts>& scenes,
                        const std::vector<CharacterFacts>& characters) {
  const auto count = static_cast<std::ptrdiff_t>(std::min(characters.size(), kMostCharacters));
  const std::vector<CharacterFacts> shown(characters.begin(), characters.begin() + count);
  std::vector<std::string> names;
  names.reserve(shown.size());
  for (const CharacterFacts& character : shown)
    names.push_back(Shortened(character.mName, kLabelColumns));
  const SceneColumns columns(scenes, names);
  AddNote(parent, shown.size(), characters.size(), columns);
  const std::int64_t mostWords = MostWords(shown, columns);
  AddShadeLegend(parent, mostWords);
  const int bottom = static_cast<int>(shown.size()) * kRowHeight;
  const Drawing drawing = columns.AddDrawing(
      parent, bottom + kAxisHeight, "Who speaks in which scene", DescribeCharacters(shown));
  int y = 0;
  for (const CharacterFacts& character : shown) {
    AddCharacterRow(drawing, character, columns, y, mostWords);
    y += kRowHeight;
  }
  columns.AddAxis(drawing.mPlot, bottom + kAxisHeight - 8);
}

}  // namespace zelstory
