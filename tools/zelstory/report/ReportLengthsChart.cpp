#include <algorithm>
#include <array>
#include <cmath>

#include <zelstoryhost/RunningTime.h>
#include <zelstoryhost/SceneFacts.h>
#include <zelstoryhost/Text.h>

#include "report/ReportCharts.h"
#include "report/ReportDrawing.h"
#include "report/ReportMarkup.h"

namespace zelstory {

using zelstoryhost::CountWords;
using zelstoryhost::DescribeDuration;
using zelstoryhost::RunningTime;
using zelstoryhost::RunningTimes;
using zelstoryhost::SceneFacts;

namespace {

constexpr int kTopMargin = 12;
constexpr int kBarsHeight = 160;
constexpr std::int64_t kMostSteps = 5;

// A column's length in words or seconds, and its text.
struct Bar {
  std::int64_t mSolid = 0;
  std::int64_t mEstimated = 0;
  std::string mText;

  std::int64_t Length() const { return mSolid + mEstimated; }
};

// The smallest round step that divides the axis into few parts.
std::int64_t AxisStep(std::int64_t most, bool isTime) {
  constexpr std::array<std::int64_t, 11> kTimes{1, 2, 5, 10, 30, 60, 120, 300, 600, 1800, 3600};
  const std::int64_t least = std::max<std::int64_t>(1, (most + kMostSteps - 1) / kMostSteps);
  if (isTime && least <= kTimes.back()) {
    return *std::lower_bound(kTimes.begin(), kTimes.end(), least);
  }
  std::int64_t power = isTime ? kTimes.back() : 1;
  while (power * 10 <= least) power *= 10;
  for (const int factor : {1, 2, 5}) {
    if (power * factor >= least) return power * factor;
  }
  return power * 10;
}

std::vector<Bar> BarsOfTime(const RunningTimes& times, const SceneColumns& columns) {
  std::vector<RunningTime> sums(columns.Count());
  for (std::size_t i = 0; i < times.mScenes.size(); ++i) {
    sums[columns.ColumnOf(i + 1)].Add(times.mScenes[i]);
  }
  std::vector<Bar> bars;
  bars.reserve(sums.size());
  for (const RunningTime& sum : sums) bars.push_back({sum.mKnown, sum.mEstimated, sum.Describe()});
  return bars;
}

std::vector<Bar> BarsOfWords(const std::vector<SceneFacts>& scenes, const SceneColumns& columns) {
  std::vector<Bar> bars(columns.Count());
  for (const SceneFacts& scene : scenes) {
    bars[columns.ColumnOf(scene.mPosition)].mSolid += scene.mWords;
  }
  for (Bar& bar : bars) bar.mText = Counted(bar.mSolid, "word");
  return bars;
}

// Stripes differ from solid bars even when printed in greyscale.
void AddHatching(pugi::xml_node svg) {
  pugi::xml_node pattern = AddElement(AddElement(svg, "defs"), "pattern");
  pattern.append_attribute("id") = "hatch";
  pattern.append_attribute("width") = 5;
  pattern.append_attribute("height") = 5;
  pattern.append_attribute("patternUnits") = "userSpaceOnUse";
  pattern.append_attribute("patternTransform") = "rotate(45)";
  AddBox(pattern, "s1", 0, 0, 5, 5);
  AddBox(pattern, "s3", 0, 0, 2, 5);
}

void AddGrid(const Drawing& drawing, const SceneColumns& columns, std::int64_t step,
             std::int64_t top, bool isTime) {
  for (std::int64_t value = 0; value <= top; value += step) {
    const int y = kTopMargin + kBarsHeight - static_cast<int>(kBarsHeight * value / top);
    AddLine(drawing.mPlot, columns.Left(), columns.Right(), y);
    AddText(drawing.mLabels, columns.Left() - kLabelDistance, y + 4, "label",
            isTime ? DescribeDuration(value) : Counted(value, "word"));
  }
}

void AddBars(pugi::xml_node svg, const SceneColumns& columns, const std::vector<Bar>& bars,
             std::int64_t top) {
  const auto height = [top](std::int64_t length) {
    return static_cast<int>(
        std::ceil(static_cast<double>(length) * kBarsHeight / static_cast<double>(top)));
  };
  for (std::size_t column = 0; column < bars.size(); ++column) {
    const Bar& bar = bars[column];
    pugi::xml_node link = columns.AddLink(svg, column, columns.Name(column) + ": " + bar.mText);
    const int solid = height(bar.mSolid);
    const int all = height(bar.Length());
    const auto add = [&](const char* className, int from, int to) {
      if (from == to) return;
      AddBox(link, className, columns.X(column) + 1, kTopMargin + kBarsHeight - to,
             columns.Width() - 2, to - from);
    };
    add("bar", 0, solid);
    add("bar estimated", solid, all);
  }
}

}  // namespace

void AddLengthsChart(pugi::xml_node parent, const std::vector<SceneFacts>& scenes,
                     const RunningTimes& times) {
  const bool isTime = times.mTotal.mHasKnown;
  const bool isMixed = isTime && times.mTotal.mHasEstimated;
  // No label of the grid is wider than the total.
  const SceneColumns columns(scenes, {isTime ? DescribeDuration(times.mTotal.Seconds())
                                             : Counted(CountWords(scenes) + 10, "word")});
  const std::vector<Bar> bars = isTime ? BarsOfTime(times, columns) : BarsOfWords(scenes, columns);
  const auto longest = std::max_element(
      bars.begin(), bars.end(), [](const Bar& a, const Bar& b) { return a.Length() < b.Length(); });
  const std::string description =
      "The longest: " + columns.Name(static_cast<std::size_t>(longest - bars.begin())) + ", " +
      longest->mText + '.';
  AddElement(
      parent, "p", "note",
      (isTime ? "" : "In words, since no scene has a duration. ") + description + columns.Note());
  if (isMixed) AddLegend(parent, {{"bar", "duration"}, {"bar estimated", "estimate"}});
  const Drawing drawing = columns.AddDrawing(parent, kTopMargin + kBarsHeight + kAxisHeight,
                                             "Scene lengths", description);
  if (isMixed) AddHatching(drawing.mPlot);
  const std::int64_t step = AxisStep(longest->Length(), isTime);
  const std::int64_t top = std::max(step, (longest->Length() + step - 1) / step * step);
  AddGrid(drawing, columns, step, top, isTime);
  AddBars(drawing.mPlot, columns, bars, top);
  columns.AddAxis(drawing.mPlot, kTopMargin + kBarsHeight + kAxisHeight - 8);
}

}  // namespace zelstory
