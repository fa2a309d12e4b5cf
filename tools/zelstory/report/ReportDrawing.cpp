#include "report/ReportDrawing.h"

#include <algorithm>

#include <zelstoryhost/SceneFacts.h>

#include "report/ReportMarkup.h"
#include "terminal/TextLayout.h"

namespace zelstory {

using zelstoryhost::SceneFacts;
using zelstoryhost::SceneName;

namespace {

constexpr std::size_t kMostColumns = 120;
constexpr std::size_t kTickColumns = 7;
constexpr double kCharacterWidth = 8.4;  // of the drawing's font, on the wide side
constexpr int kTickDistance = 8;
constexpr int kSwatchSize = 12;

int WidthOf(const std::string& text) {
  return static_cast<int>(static_cast<double>(ColumnsOf(text)) * kCharacterWidth);
}

void Set(pugi::xml_node element, const char* name, int value) {
  element.append_attribute(name) = value;
}

pugi::xml_node AddSVG(pugi::xml_node parent, int left, int width, int height) {
  pugi::xml_node svg = AddElement(parent, "svg");
  svg.append_attribute("xmlns") = "http://www.w3.org/2000/svg";
  SetAttribute(svg, "viewBox",
               std::to_string(left) + " 0 " + std::to_string(width) + " " + std::to_string(height));
  Set(svg, "width", width);
  Set(svg, "height", height);
  return svg;
}

}  // namespace

std::string Counted(std::int64_t count, const std::string& what) {
  return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

SceneColumns::SceneColumns(const std::vector<SceneFacts>& scenes,
                           const std::vector<std::string>& labels)
    : mScenes(scenes),
      mPerColumn((scenes.size() + kMostColumns - 1) / kMostColumns),
      mCount(scenes.empty() ? 0 : (scenes.size() + mPerColumn - 1) / mPerColumn),
      mLeft(kLabelDistance),
      mWidth(std::clamp(720 / static_cast<int>(std::max<std::size_t>(mCount, 1)), 7, 40)) {
  for (const std::string& label : labels) mLeft = std::max(mLeft, kLabelDistance + WidthOf(label));
  for (std::size_t i = 0; i < mCount; ++i) mTickWidth = std::max(mTickWidth, WidthOf(Tick(i)));
  mFirst = mLeft + TickOverhang();
}

std::string SceneColumns::Name(std::size_t column) const {
  const std::size_t first = FirstScene(column);
  const std::size_t last = std::min(first + mPerColumn - 1, mScenes.size());
  const std::string name = SceneName(mScenes[first - 1]);
  return first == last ? "scene " + name : "scenes " + name + " to " + SceneName(mScenes[last - 1]);
}

std::string SceneColumns::Tick(std::size_t column) const {
  return Shortened(SceneName(mScenes[FirstScene(column) - 1]), kTickColumns);
}

int SceneColumns::TickOverhang() const {
  return std::max(0, (mTickWidth - mWidth + 1) / 2);
}

std::string SceneColumns::Note() const {
  return mPerColumn < 2 ? ""
                        : " Each column holds " + std::to_string(mPerColumn) +
                              " scenes; select it to jump to the first.";
}

Drawing SceneColumns::AddDrawing(pugi::xml_node parent, int height, const std::string& title,
                                 const std::string& description) const {
  pugi::xml_node box = AddScrollingBox(parent, title);
  pugi::xml_node labels = AddSVG(box, 0, mLeft, height);
  labels.append_attribute("class") = "labels";
  labels.append_attribute("aria-hidden") = "true";
  pugi::xml_node plot = AddSVG(box, mLeft, Right() - mLeft + TickOverhang(), height);
  plot.append_attribute("role") = "img";
  AddElement(plot, "title", "", title);
  AddElement(plot, "desc", "", description);
  return {labels, plot};
}

void SceneColumns::AddAxis(pugi::xml_node svg, int y) const {
  const int columnsPerTick = (mTickWidth + kTickDistance) / mWidth + 1;
  const auto step = static_cast<std::size_t>(columnsPerTick);
  for (std::size_t column = 0; column < mCount; column += step) {
    AddText(svg, X(column) + mWidth / 2, y, "tick", Tick(column));
  }
}

pugi::xml_node SceneColumns::AddLink(pugi::xml_node svg, std::size_t column,
                                     const std::string& text) const {
  pugi::xml_node link = AddPointerLink(svg, FirstScene(column));
  AddElement(link, "title", "", text);
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

void AddLegend(pugi::xml_node parent,
               const std::vector<std::pair<const char*, std::string>>& entries) {
  pugi::xml_node legend = AddElement(parent, "p", "legend");
  for (const auto& [className, meaning] : entries) {
    pugi::xml_node entry = AddElement(legend, "span");
    pugi::xml_node swatch = AddSVG(entry, 0, kSwatchSize, kSwatchSize);
    swatch.append_attribute("aria-hidden") = "true";
    AddBox(swatch, className, 1, 1, kSwatchSize - 2, kSwatchSize - 2);
    AppendText(entry, meaning);
  }
}

}  // namespace zelstory
