#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

// Up to four fields; those that a row lacks are empty.
using Row = std::array<std::string, 4>;

namespace table {

inline std::string_view Trimmed(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(" \n"), text.size());
  return text.substr(begin, text.find_last_not_of(" \n") + 1 - begin);
}

// \s, \t, \r and \n stand for white space, \xHH for a byte.
inline std::string Unescaped(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t escape = text[i] == '\\' ? std::string_view("strnx").find(text[i + 1]) : 5;
    plain += escape < 4 ? " \t\r\n"[escape]
             : escape > 4
                 ? text[i]
                 : static_cast<char>(std::stoi(std::string(text.substr(i + 2, 2)), nullptr, 16));
    i += escape < 4 ? 1 : escape > 4 ? 0 : 3;
  }
  return plain;
}

template <typename Action>
void Split(std::string_view text, std::string_view separator, Action action) {
  for (std::size_t end; (end = text.find(separator)) != text.npos;
       text.remove_prefix(end + separator.size())) {
    action(Trimmed(text.substr(0, end)));
  }
  action(Trimmed(text));
}

}  // namespace table

// A table from a raw string: a row a line, or several parted by ";;"; fields are parted by "=>".
inline std::vector<Row> Rows(std::string_view text) {
  std::vector<Row> rows;
  table::Split(table::Trimmed(text), "\n", [&](std::string_view line) {
    table::Split(line, ";;", [&](std::string_view row) {
      std::size_t field = 0;
      rows.emplace_back();
      table::Split(row, "=>", [&](std::string_view cell) {
        rows.back().at(field++) = table::Unescaped(cell);
      });
    });
  });
  return rows;
}

inline std::string Replaced(std::string text, const std::vector<Row>& replacements,
                            std::size_t field = 1) {
  for (const Row& row : replacements) {
    for (std::size_t at = 0; (at = text.find(row[0], at)) != text.npos; at += row[field].size()) {
      text.replace(at, row[0].size(), row[field]);
    }
  }
  return text;
}
