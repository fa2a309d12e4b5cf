#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zelstory {

// A scene as lists name it, and its position.
struct ListedScene {
  std::int64_t mPosition = 0;
  std::string mName;
};

// A cell: text (UTF-8), a number, scenes in their order, or nothing known.
using Cell = std::variant<std::monostate, std::string, std::int64_t, std::vector<ListedScene>>;

// How a table is printed.
enum class TableForm {
  kAligned,   // in columns for people; neighbouring scenes as 1-3 5
  kCSV,       // RFC 4180: a first line of names, fields quoted where they must be, CR LF line ends;
              // with an apostrophe before text that a spreadsheet would take for a formula
  kPlainCSV,  // the same without apostrophes
  kJSON,      // one array with an object a row; nothing known is null
};

// What a command lists. Every row has a cell for each column.
struct Table {
  std::vector<std::string> mColumns;  // names, lower case
  std::vector<std::vector<Cell>> mRows;

  void Print(TableForm form, std::ostream& output) const;
};

}  // namespace zelstory
