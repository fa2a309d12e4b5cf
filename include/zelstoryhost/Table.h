#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <variant>
#include <vector>

#include <zelstoryhost/Export.h>

// Tables of facts, and the forms in which other programs read them. All functions may be called
// from several threads at once.
namespace zelstoryhost {

// A scene as lists name it.
struct ListedScene {
  std::int64_t mPosition = 0;  // from 1
  std::string mName;
};

// A cell: unknown, text (UTF-8), a number, scenes in their order, or several texts.
using Cell = std::variant<std::monostate, std::string, std::int64_t, std::vector<ListedScene>,
                          std::vector<std::string>>;

// Every row has a cell for each column.
struct Table {
  std::vector<std::string> mColumns;  // names, lower case
  std::vector<std::vector<Cell>> mRows;
};

// A cell as text: empty when unknown, neighbouring scenes as FIRST-LAST ("1-3 5"), texts with
// a semicolon and a blank between them.
ZELSTORYHOST_API std::string TextOf(const Cell& cell);

// Whether text that a spreadsheet would run as a formula gets an apostrophe before it.
enum class Formulas { kDisarmed, kAsTheyAre };

// Writes comma-separated values (RFC 4180): a first line of names, fields quoted where needed,
// CR LF line ends. A failure of `output` is left in its state, as with any stream.
ZELSTORYHOST_API void WriteCSV(const Table& table, Formulas formulas, std::ostream& output);

// Writes a JSON array with one object per row. Unknown cells are null, scenes an array of names,
// several texts an array; bytes that are not UTF-8 become U+FFFD.
ZELSTORYHOST_API void WriteJSON(const Table& table, std::ostream& output);

}  // namespace zelstoryhost
