#include "terminal/TableColumns.h"

#include <algorithm>
#include <iostream>

#include "terminal/Console.h"
#include "terminal/TextLayout.h"

namespace zelstory {
namespace {

using zelstoryhost::Cell;

// On one line, escaped.
std::string Shown(const Cell& cell) {
  std::string line;
  for (const std::string& part : WrapText(TextOf(cell), static_cast<std::size_t>(-1))) {
    if (!line.empty()) line += ' ';
    line += part;
  }
  return line;
}

bool HoldsScenes(const Cell& cell) {
  return std::holds_alternative<std::vector<zelstoryhost::ListedScene>>(cell);
}

class Layout {
 public:
  Layout(const zelstoryhost::Table& table, bool isTerminal)
      : mColumns(table.mColumns.size()), mIsTerminal(isTerminal) {
    for (std::size_t i = 0; i < mColumns.size(); ++i) Measure(i, table.mColumns[i]);
    for (const std::vector<Cell>& row : table.mRows) {
      for (std::size_t i = 0; i < row.size(); ++i) Measure(i, row[i]);
    }
    for (std::size_t i = 0; i < mColumns.size(); ++i) mOrder.push_back(i);
    std::stable_partition(mOrder.begin(), mOrder.end(),
                          [this](std::size_t i) { return !mColumns[i].mIsLong; });
  }

  template <typename Cells>
  std::string LineOf(const Cells& cells) const {
    std::string line;
    for (const std::size_t i : mOrder) {
      const std::string text = TextAt(i, cells[i]);
      const std::size_t width = ColumnsOf(text);
      const std::string blanks(std::max(mColumns[i].mWidth, width) - width, ' ');
      line += (i != mOrder.front() ? "  " : "") +
              (mColumns[i].mIsNumber ? blanks + text : text + blanks);
    }
    line.resize(line.find_last_not_of(' ') + 1);
    return line;
  }

 private:
  struct Column {
    std::size_t mWidth = 0;
    bool mIsNumber = false;  // aligned at the right
    bool mIsLong = false;    // lists of scenes, which nobody wants cut
  };

  // One long cell must not pad all others of its column.
  void Measure(std::size_t i, const Cell& cell) {
    const std::size_t width = std::min(ColumnsOf(TextAt(i, cell)), kWidestColumn);
    mColumns[i].mWidth = std::max(mColumns[i].mWidth, width);
    mColumns[i].mIsNumber = mColumns[i].mIsNumber || std::holds_alternative<std::int64_t>(cell);
    mColumns[i].mIsLong = mColumns[i].mIsLong || HoldsScenes(cell);
  }

  std::string TextAt(std::size_t i, const Cell& cell) const {
    const bool isCut = mIsTerminal && i + 1 < mColumns.size() && !HoldsScenes(cell);
    return isCut ? Shortened(Shown(cell), kWidestColumn) : Shown(cell);
  }

  std::vector<Column> mColumns;
  std::vector<std::size_t> mOrder;  // of the columns on a line
  const bool mIsTerminal;
};

}  // namespace

void PrintColumns(const zelstoryhost::Table& table, std::ostream& output) {
  const bool isTerminal = &output == &std::cout && OutputIsTerminal();
  const Layout layout(table, isTerminal);
  const std::string names = layout.LineOf(table.mColumns);
  output << (isTerminal ? Coloured(Tone::kStrong, names) : names) << '\n';
  for (const std::vector<Cell>& row : table.mRows) output << layout.LineOf(row) << '\n';
}

}  // namespace zelstory
