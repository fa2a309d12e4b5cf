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

}  // namespace

void PrintColumns(const zelstoryhost::Table& table, std::ostream& output) {
  struct Column {
    std::size_t mWidth = 0;
    bool mIsNumber = false;  // aligned at the right
  };
  std::vector<Column> columns(table.mColumns.size());
  const auto measure = [&columns](std::size_t i, const Cell& cell) {
    columns[i].mWidth = std::max(columns[i].mWidth, ColumnsOf(Shown(cell)));
    columns[i].mIsNumber = columns[i].mIsNumber || std::holds_alternative<std::int64_t>(cell);
  };
  const auto lineOf = [&](const auto& cells) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string text = Shown(cells[i]);
      const std::string blanks(columns[i].mWidth - ColumnsOf(text), ' ');
      line += (i > 0 ? "  " : "") + (columns[i].mIsNumber ? blanks + text : text + blanks);
    }
    line.resize(line.find_last_not_of(' ') + 1);
    return line;
  };
  for (std::size_t i = 0; i < columns.size(); ++i) measure(i, table.mColumns[i]);
  for (const std::vector<Cell>& row : table.mRows) {
    for (std::size_t i = 0; i < row.size(); ++i) measure(i, row[i]);
  }
  const std::string names = lineOf(table.mColumns);
  output << (&output == &std::cout ? Coloured(Tone::kStrong, names) : names) << '\n';
  for (const std::vector<Cell>& row : table.mRows) output << lineOf(row) << '\n';
}

}  // namespace zelstory
