#include <ostream>
#include <string_view>

#include <nlohmann/json.hpp>
#include <zelstoryhost/Table.h>

namespace zelstoryhost {
namespace {

// Runs of neighbouring scenes as FIRST-LAST.
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

std::string CSVField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string field = "\"";
  for (const char c : text) field.append(c == '"' ? 2 : 1, c);
  return field + '"';
}

// Spreadsheets run text that begins with one of these; some skip blanks before it.
bool IsFormula(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  return begin != std::string::npos &&
         std::string_view("=+-@").find(text[begin]) != std::string::npos;
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

}  // namespace

std::string TextOf(const Cell& cell) {
  if (const auto* text = std::get_if<std::string>(&cell)) return *text;
  if (const auto* number = std::get_if<std::int64_t>(&cell)) return std::to_string(*number);
  if (const auto* scenes = std::get_if<std::vector<ListedScene>>(&cell)) return Runs(*scenes);
  return {};
}

void WriteCSV(const Table& table, Formulas formulas, std::ostream& output) {
  const auto write = [&output](const auto& cells, auto textOf) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      output << (i > 0 ? "," : "") << CSVField(textOf(cells[i]));
    }
    output << "\r\n";
  };
  write(table.mColumns, [](const std::string& name) { return name; });
  for (const std::vector<Cell>& row : table.mRows) {
    write(row, [formulas](const Cell& cell) {
      const std::string text = TextOf(cell);
      const bool isText = !std::holds_alternative<std::int64_t>(cell);
      return formulas == Formulas::kDisarmed && isText && IsFormula(text) ? '\'' + text : text;
    });
  }
}

void WriteJSON(const Table& table, std::ostream& output) {
  auto rows = nlohmann::ordered_json::array();
  for (const std::vector<Cell>& row : table.mRows) {
    nlohmann::ordered_json object;
    for (std::size_t i = 0; i < row.size(); ++i) object[table.mColumns[i]] = AsJSON(row[i]);
    rows.push_back(std::move(object));
  }
  output << rows.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

}  // namespace zelstoryhost
