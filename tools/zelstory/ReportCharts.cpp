#include "ReportCharts.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

#include "ReportMarkup.h"
#include "TextLayout.h"

namespace zelstory {
namespace {

constexpr std::size_t kMostColumns = 120;
constexpr std::size_t kMostPeople = 30;
constexpr std::size_t kLabelColumns = 19;
constexpr std::size_t kTickColumns = 4;
constexpr double kCharacterWidth = 8.4;  // of the drawing's font, on the wide side
constexpr int kLabelDistance = 8;
constexpr int kRowHeight = 20;
constexpr int kAxisHeight = 24;
constexpr int kTopMargin = 12;
constexpr int kBarsHeight = 160;
constexpr int kLeastTickDistance = 34;

std::string Shortened(const std::string& name, std::size_t columns) {
  std::string line = WrapText(name, static_cast<std::size_t>(-1)).front();
  if (ColumnsOf(line) <= columns) return line;
  return WrapText(line, columns - 1).front() + "\xE2\x80\xA6";  // an ellipsis
}

// How scenes stand side by side in a drawing: one to a column, or several.
class Columns {
 public:
  // Refers to the scenes.
  Columns(const std::vector<SceneFacts>& scenes, const std::vector<std::string>& labels)
      : mLeft(LabelWidth(labels)),
        mScenes(scenes),
        mPerColumn((scenes.size() + kMostColumns - 1) / kMostColumns),
        mCount(scenes.empty() ? 0 : (scenes.size() + mPerColumn - 1) / mPerColumn),
        mWidth(std::clamp(720 / static_cast<int>(std::max<std::size_t>(mCount, 1)), 7, 40)) {}

  std::size_t Count() const { return mCount; }
  bool AreShared() const { return mPerColumn > 1; }
  std::size_t ColumnOf(std::size_t position) const { return (position - 1) / mPerColumn; }
  std::size_t FirstScene(std::size_t column) const { return column * mPerColumn + 1; }
  int Left() const { return mLeft; }
  int X(std::size_t column) const { return mLeft + static_cast<int>(column) * mWidth; }
  int Width() const { return mWidth; }
  int Right() const { return X(mCount); }

  // As the table calls them.
  std::string Name(std::size_t column) const {
    const std::size_t first = FirstScene(column);
    const std::size_t last = std::min(first + mPerColumn - 1, mScenes.size());
    return first == last ? "scene " + NameOf(first)
                         : "scenes " + NameOf(first) + " to " + NameOf(last);
  }
  std::string Tick(std::size_t column) const {
    return Shortened(NameOf(FirstScene(column)), kTickColumns);
  }

 private:
  std::string NameOf(std::size_t position) const {
    return SceneName(mScenes[position - 1].mNumber, position);
  }

  static int LabelWidth(const std::vector<std::string>& labels) {
    std::size_t columns = 0;
    for (const std::string& label : labels) columns = std::max(columns, ColumnsOf(label));
    return kLabelDistance + static_cast<int>(static_cast<double>(columns) * kCharacterWidth);
  }

  int mLeft;
  const std::vector<SceneFacts>& mScenes;
  std::size_t mPerColumn;
  std::size_t mCount;
  int mWidth;
};

void Set(pugi::xml_node element, const char* name, int value) {
  element.append_attribute(name) = value;
}

// Title and description are what who cannot see the drawing is told.
pugi::xml_node AddDrawing(pugi::xml_node parent, int width, int height, const std::string& title,
                          const std::string& description) {
  pugi::xml_node svg = AddElement(AddScrollingBox(parent, title), "svg");
  svg.append_attribute("role") = "img";
  svg.append_attribute("xmlns") = "http://www.w3.org/2000/svg";
  SetAttribute(svg, "viewBox", "0 0 " + std::to_string(width) + " " + std::to_string(height));
  Set(svg, "width", width);
  Set(svg, "height", height);
  AddElement(svg, "title", "", title);
  AddElement(svg, "desc", "", description);
  return svg;
}

// For the pointer only: the keyboard finds the same places in the table, without thousands of
// stops.
pugi::xml_node AddPointerLink(pugi::xml_node svg, std::size_t position) {
  pugi::xml_node link = AddSceneLink(svg, position);
  link.append_attribute("tabindex") = "-1";
  return link;
}

void AddText(pugi::xml_node svg, int x, int y, const char* className, const std::string& text) {
  pugi::xml_node element = AddElement(svg, "text", className, text);
  Set(element, "x", x);
  Set(element, "y", y);
}

pugi::xml_node AddBox(pugi::xml_node parent, const char* className, int x, int y, int width,
                      int height) {
  pugi::xml_node box = AddElement(parent, "rect", className);
  Set(box, "x", x);
  Set(box, "y", y);
  Set(box, "width", width);
  Set(box, "height", height);
  return box;
}

void AddLine(pugi::xml_node svg, int left, int right, int y) {
  pugi::xml_node line = AddElement(svg, "line", "grid");
  Set(line, "x1", left);
  Set(line, "x2", right);
  Set(line, "y1", y);
  Set(line, "y2", y);
}

// Scenes below the columns, as many as fit.
void AddAxis(pugi::xml_node svg, const Columns& columns, int y) {
  const auto step = static_cast<std::size_t>(
      std::max(1, (kLeastTickDistance + columns.Width() - 1) / columns.Width()));
  for (std::size_t column = 0; column < columns.Count(); column += step) {
    AddText(svg, columns.X(column) + columns.Width() / 2, y, "tick", columns.Tick(column));
  }
}

std::string Counted(std::int64_t count, const std::string& what) {
  return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

struct Share {
  std::int64_t mSpeeches = 0;
  std::int64_t mWords = 0;
};

std::vector<Share> SharesOf(const PersonFacts& person, const Columns& columns) {
  std::vector<Share> shares(columns.Count());
  for (const PersonFacts::InScene& scene : person.mScenes) {
    Share& share = shares[columns.ColumnOf(scene.mPosition)];
    share.mSpeeches += scene.mSpeeches;
    share.mWords += scene.mWords;
  }
  return shares;
}

// The more words, the darker; the square root keeps short speeches visible.
const char* ShadeOf(std::int64_t words, std::int64_t most) {
  const double part =
      std::sqrt(static_cast<double>(words) / static_cast<double>(std::max<std::int64_t>(most, 1)));
  return part > 0.75 ? "cell s4" : part > 0.5 ? "cell s3" : part > 0.25 ? "cell s2" : "cell s1";
}

void AddPersonRow(pugi::xml_node svg, const PersonFacts& person, const Columns& columns, int y,
                  std::int64_t mostWords) {
  AddText(svg, columns.Left() - kLabelDistance, y + kRowHeight - 6, "label",
          Shortened(person.mName, kLabelColumns));
  AddLine(svg, columns.Left(), columns.Right(), y + kRowHeight);
  const std::vector<Share> shares = SharesOf(person, columns);
  for (std::size_t column = 0; column < shares.size(); ++column) {
    const Share& share = shares[column];
    if (share.mSpeeches == 0) continue;
    pugi::xml_node link = AddPointerLink(svg, columns.FirstScene(column));
    pugi::xml_node cell = AddBox(link, ShadeOf(share.mWords, mostWords), columns.X(column), y + 2,
                                 columns.Width() - 1, kRowHeight - 4);
    AddElement(cell, "title", "",
               person.mName + ", " + columns.Name(column) + ": " + std::to_string(share.mSpeeches) +
                   (share.mSpeeches == 1 ? " speech, " : " speeches, ") +
                   Counted(share.mWords, "word"));
  }
}

std::vector<PersonFacts> MostSpeaking(std::vector<PersonFacts> people) {
  std::stable_sort(people.begin(), people.end(),
                   [](const PersonFacts& a, const PersonFacts& b) { return a.mWords > b.mWords; });
  if (people.size() > kMostPeople) people.resize(kMostPeople);
  return people;
}

std::int64_t MostWords(const std::vector<PersonFacts>& people, const Columns& columns) {
  std::int64_t most = 0;
  for (const PersonFacts& person : people) {
    for (const Share& share : SharesOf(person, columns)) most = std::max(most, share.mWords);
  }
  return most;
}

struct Lengths {
  bool mAreSeconds = false;
  std::vector<std::int64_t> mValues;  // scene by scene

  std::string Describe(std::int64_t value) const {
    return mAreSeconds ? DescribeDuration(value) : Counted(value, "word");
  }
  std::int64_t Sum() const {
    return std::accumulate(mValues.begin(), mValues.end(), std::int64_t{0});
  }
  std::vector<std::int64_t> In(const Columns& columns) const {
    std::vector<std::int64_t> sums(columns.Count());
    for (std::size_t i = 0; i < mValues.size(); ++i) sums[columns.ColumnOf(i + 1)] += mValues[i];
    return sums;
  }
};

Lengths LengthsOf(const std::vector<SceneFacts>& scenes) {
  Lengths lengths;
  lengths.mAreSeconds = std::all_of(scenes.begin(), scenes.end(), [](const SceneFacts& scene) {
    return scene.mSeconds.value_or(-1) >= 0;
  });
  for (const SceneFacts& scene : scenes) {
    lengths.mValues.push_back(lengths.mAreSeconds ? *scene.mSeconds : scene.mWords);
  }
  return lengths;
}

std::string DescribeSpeakers(const std::vector<PersonFacts>& shown) {
  constexpr std::size_t kDescribed = 3;
  std::string description = "Most is said by ";
  for (std::size_t i = 0; i < std::min(shown.size(), kDescribed); ++i) {
    const PersonFacts& person = shown[i];
    description += (i == 0 ? "" : "; ") + person.mName + ", " + Counted(person.mWords, "word") +
                   " in " + Counted(static_cast<std::int64_t>(person.mScenes.size()), "scene");
  }
  return description + '.';
}

std::string SharedColumnsNote(const Columns& columns) {
  return columns.AreShared() ? " Neighbouring scenes share a column; it leads to the first." : "";
}

}  // namespace

void AddSpeakersChart(pugi::xml_node parent, const std::vector<SceneFacts>& scenes,
                      const std::vector<PersonFacts>& people) {
  const std::vector<PersonFacts> shown = MostSpeaking(people);
  std::vector<std::string> names;
  names.reserve(shown.size());
  for (const PersonFacts& person : shown) names.push_back(Shortened(person.mName, kLabelColumns));
  const Columns columns(scenes, names);
  std::string note = "Those who say most stand first; the stronger the colour, the more words.";
  if (shown.size() < people.size()) {
    note +=
        " Another " + std::to_string(people.size() - shown.size()) + " who say less are left out.";
  }
  AddElement(parent, "p", "note", note + SharedColumnsNote(columns));
  const int bottom = static_cast<int>(shown.size()) * kRowHeight;
  pugi::xml_node svg = AddDrawing(parent, columns.Right() + 12, bottom + kAxisHeight,
                                  "Who speaks in which scene", DescribeSpeakers(shown));
  const std::int64_t mostWords = MostWords(shown, columns);
  int y = 0;
  for (const PersonFacts& person : shown) {
    AddPersonRow(svg, person, columns, y, mostWords);
    y += kRowHeight;
  }
  AddAxis(svg, columns, bottom + kAxisHeight - 8);
}

void AddLengthsChart(pugi::xml_node parent, const std::vector<SceneFacts>& scenes) {
  const Lengths lengths = LengthsOf(scenes);
  const Columns columns(scenes, {"0000 words", lengths.Describe(lengths.Sum())});
  const std::vector<std::int64_t> values = lengths.In(columns);
  const auto longest = std::max_element(values.begin(), values.end());
  const std::int64_t most = std::max<std::int64_t>(1, *longest);
  const std::string unit = lengths.mAreSeconds ? "By their durations."
                                               : "In words, since not every scene has a duration.";
  AddElement(parent, "p", "note", unit + SharedColumnsNote(columns));
  const int bottom = kTopMargin + kBarsHeight;
  pugi::xml_node svg = AddDrawing(
      parent, columns.Right() + 12, bottom + kAxisHeight, "Lengths of the scenes",
      "The longest: " + columns.Name(static_cast<std::size_t>(longest - values.begin())) + ", " +
          lengths.Describe(*longest) + '.');
  for (const int quarter : {0, 2, 4}) {
    const int y = bottom - kBarsHeight * quarter / 4;
    AddLine(svg, columns.Left(), columns.Right(), y);
    AddText(svg, columns.Left() - kLabelDistance, y + 4, "label",
            lengths.Describe(most * quarter / 4));
  }
  for (std::size_t column = 0; column < columns.Count(); ++column) {
    const std::int64_t value = values[column];
    const int height = static_cast<int>(
        std::ceil(static_cast<double>(value) * kBarsHeight / static_cast<double>(most)));
    pugi::xml_node link = AddPointerLink(svg, columns.FirstScene(column));
    pugi::xml_node bar =
        AddBox(link, "bar", columns.X(column) + 1, bottom - height, columns.Width() - 2, height);
    AddElement(bar, "title", "", columns.Name(column) + ": " + lengths.Describe(value));
  }
  AddAxis(svg, columns, bottom + kAxisHeight - 8);
}

}  // namespace zelstory
