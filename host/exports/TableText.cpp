#include <ostream>
#include <string_view>

#include <zelstoryhost/JSONWriter.h>
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

std::string Joined(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) (joined += joined.empty() ? "" : "; ") += text;
  return joined;
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

const std::string& NameOf(const ListedScene& scene) {
  return scene.mName;
}
const std::string& NameOf(const std::string& text) {
  return text;
}

template <typename Items>
void WriteArray(JSONWriter& json, const Items& items) {
  json.BeginArray();
  for (const auto& item : items) json.Text(NameOf(item));
  json.EndArray();
}

void Write(JSONWriter& json, const Cell& cell) {
  if (const auto* text = std::get_if<std::string>(&cell)) return json.Text(*text);
  if (const auto* number = std::get_if<std::int64_t>(&cell)) return json.Number(*number);
  if (const auto* scenes = std::get_if<std::vector<ListedScene>>(&cell)) {
    return WriteArray(json, *scenes);
  }
  const auto* texts = std::get_if<std::vector<std::string>>(&cell);
  texts != nullptr ? WriteArray(json, *texts) : json.Null();
}

}  // namespace

std::string TextOf(const Cell& cell) {
  if (const auto* text = std::get_if<std::string>(&cell)) return *text;
  if (const auto* number = std::get_if<std::int64_t>(&cell)) return std::to_string(*number);
  if (const auto* scenes = std::get_if<std::vector<ListedScene>>(&cell)) return Runs(*scenes);
  if (const auto* texts = std::get_if<std::vector<std::string>>(&cell)) return Joined(*texts);
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
  JSONWriter json(output, JSONWriter::Layout::kIndented);
  json.BeginArray();
  for (const std::vector<Cell>& row : table.mRows) {
    json.BeginObject();
    for (std::size_t i = 0; i < row.size(); ++i) Write(json.Name(table.mColumns[i]), row[i]);
    json.EndObject();
  }
  json.EndArray();
  output << '\n';
}

}  // namespace zelstoryhost
