#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <pugixml.hpp>

#include <zelstoryhost/SceneFacts.h>

// Shared parts of the report's charts. Lengths are in pixels.
namespace zelstory {

inline constexpr int kLabelDistance = 8;
inline constexpr int kAxisHeight = 24;

// "1 word", "2 words".
std::string Counted(std::int64_t count, const std::string& what);

// Two pictures side by side, in one system of coordinates: the labels stay where they are when the
// plot is scrolled sideways.
struct Drawing {
  pugi::xml_node mLabels;
  pugi::xml_node mPlot;
};

// The columns of a drawing, with one or several scenes each.
class SceneColumns {
 public:
  // Keeps a reference to the scenes. The labels are left of the columns.
  SceneColumns(const std::vector<zelstoryhost::SceneFacts>& scenes,
               const std::vector<std::string>& labels);

  std::size_t Count() const { return mCount; }
  std::size_t ColumnOf(std::size_t position) const { return (position - 1) / mPerColumn; }
  std::size_t FirstScene(std::size_t column) const { return column * mPerColumn + 1; }
  int Left() const { return mLeft; }
  int X(std::size_t column) const { return mFirst + static_cast<int>(column) * mWidth; }
  int Width() const { return mWidth; }
  int Right() const { return X(mCount); }

  std::string Name(std::size_t column) const;  // "scene 12A", "scenes #3 to #5"

  // A note about columns of several scenes; empty if there are none.
  std::string Note() const;

  // Adds a drawing (SVG) with room for all columns and the axis below them. Screen readers announce
  // the title and description.
  Drawing AddDrawing(pugi::xml_node parent, int height, const std::string& title,
                     const std::string& description) const;

  // Adds as many scene names as fit.
  void AddAxis(pugi::xml_node svg, int y) const;

  // Adds a link to the column's first scene, with a text for the pointer.
  pugi::xml_node AddLink(pugi::xml_node svg, std::size_t column, const std::string& text) const;

 private:
  std::string Tick(std::size_t column) const;
  int TickOverhang() const;  // on either side of a column

  const std::vector<zelstoryhost::SceneFacts>& mScenes;
  std::size_t mPerColumn;
  std::size_t mCount;
  int mLeft;
  int mWidth;
  int mFirst = 0;      // left edge of the first column
  int mTickWidth = 0;  // of the widest
};

void AddText(pugi::xml_node svg, int x, int y, const char* className, const std::string& text);
pugi::xml_node AddBox(pugi::xml_node parent, const char* className, int x, int y, int width,
                      int height);
void AddLine(pugi::xml_node svg, int left, int right, int y);

// Adds a legend: a line of boxes of the given classes, each with its meaning.
void AddLegend(pugi::xml_node parent,
               const std::vector<std::pair<const char*, std::string>>& entries);

}  // namespace zelstory
