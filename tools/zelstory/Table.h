#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zelstory {

// A cell: text (UTF-8), a number, a list of numbers, or nothing known.
using Cell = std::variant<std::monostate, std::string, std::int64_t, std::vector<std::int64_t>>;

// How a table is printed.
enum class TableForm {
  kAligned,  // in columns for people; a list of numbers as 1-3 5
  kCSV,      // RFC 4180: a first line of names, fields quoted where they must be, CR LF line ends
  kJSON,     // one array with an object a row; nothing known is null
};

// What a command lists. Every row has a cell for each column.
struct Table {
  std::vector<std::string> mColumns;  // names, lower case
  std::vector<std::vector<Cell>> mRows;

  void Print(TableForm form, std::ostream& output) const;
};

}  // namespace zelstory
