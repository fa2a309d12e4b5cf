#include "Table.h"

#include <algorithm>
#include <iostream>
#include <string_view>

#include <nlohmann/json.hpp>

#include "Console.h"
#include "TextLayout.h"

namespace zelstory {
namespace {

// Neighbouring scenes as FIRST-LAST.
std::string Runs(const std::vector<ListedScene>& scenes) {
  std::string text;
  for (std::size_t i = 0; i < scenes.size(); ++i) {
    const std::size_t first = i;
    while (i + 1 < scenes.size() && scenes[i + 1].mPosition == scenes[i].mPosition + 1) ++i;
    if (!text.empty()) text += ' ';
    text += scenes[first].mName;
    if (i > first) text += '-' + scenes[i].mName;
  }
  return text;
}

std::string TextOf(const Cell& cell) {
  if (const auto* text = std::get_if<std::string>(&cell)) return *text;
  if (const auto* number = std::get_if<std::int64_t>(&cell)) return std::to_string(*number);
  if (const auto* scenes = std::get_if<std::vector<ListedScene>>(&cell)) return Runs(*scenes);
  return {};
}

// On one line, without what could steer a terminal.
std::string Shown(const Cell& cell) {
  std::string line;
  for (const std::string& part : WrapText(TextOf(cell), static_cast<std::size_t>(-1))) {
    if (!line.empty()) line += ' ';
    line += part;
  }
  return line;
}

void PrintAligned(const Table& table, std::ostream& output) {
  struct Column {
    std::size_t mWidth = 0;
    bool mIsNumber = false;  // then it stands at the right
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

std::string CSVField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string field = "\"";
  for (const char c : text) field.append(c == '"' ? 2 : 1, c);
  return field + '"';
}

// What spreadsheets run when a cell begins with it; those behind blanks are run by some, too.
bool IsFormula(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  return begin != std::string::npos &&
         std::string_view("=+-@").find(text[begin]) != std::string::npos;
}

void PrintCSV(const Table& table, bool isPlain, std::ostream& output) {
  const auto print = [&output](const auto& cells, auto textOf) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      output << (i > 0 ? "," : "") << CSVField(textOf(cells[i]));
    }
    output << "\r\n";
  };
  print(table.mColumns, [](const std::string& name) { return name; });
  for (const std::vector<Cell>& row : table.mRows) {
    print(row, [isPlain](const Cell& cell) {
      const std::string text = TextOf(cell);
      const bool isNumber = std::holds_alternative<std::int64_t>(cell);
      return isPlain || isNumber || !IsFormula(text) ? text : '\'' + text;
    });
  }
}

nlohmann::ordered_json AsJSON(const Cell& cell) {
  if (const auto* text = std::get_if<std::string>(&cell)) return *text;
  if (const auto* number = std::get_if<std::int64_t>(&cell)) return *number;
  if (const auto* scenes = std::get_if<std::vector<ListedScene>>(&cell)) {
    auto names = nlohmann::ordered_json::array();
    for (const ListedScene& scene : *scenes) names.push_back(scene.mName);
    return names;
  }
  return nullptr;
}

void PrintJSON(const Table& table, std::ostream& output) {
  auto rows = nlohmann::ordered_json::array();
  for (const std::vector<Cell>& row : table.mRows) {
    nlohmann::ordered_json object;
    for (std::size_t i = 0; i < row.size(); ++i) object[table.mColumns[i]] = AsJSON(row[i]);
    rows.push_back(std::move(object));
  }
  output << rows.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

}  // namespace

void Table::Print(TableForm form, std::ostream& output) const {
  switch (form) {
    case TableForm::kAligned:
      return PrintAligned(*this, output);
    case TableForm::kCSV:
    case TableForm::kPlainCSV:
      return PrintCSV(*this, form == TableForm::kPlainCSV, output);
    case TableForm::kJSON:
      return PrintJSON(*this, output);
  }
}

}  // namespace zelstory
