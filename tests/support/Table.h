#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include <zelcore/String.h>

// Tests write and compare UTF-8, which reads well in a failure's message.
inline zelcore::UTF16String Utf16(std::string_view text) {
  return zelcore::utility::UTF8to16(text);
}

inline std::string Utf8(const zelcore::UTF16String& text) {
  return zelcore::utility::UTF16to8(text);
}

// Up to four fields; missing ones are empty.
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
    plain += escape < 4    ? " \t\r\n"[escape]
             : escape == 4 ? static_cast<char>(std::stoi(std::string(text, i + 2, 2), nullptr, 16))
                           : text[i];
    i += escape < 4 ? 1 : escape == 4 ? 3 : 0;
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

// `text` again and again, each "#" in it the number of the repetition.
inline std::string Repeated(std::string_view text, int times) {
  std::string repeated;
  for (int i = 1; i <= times; ++i) {
    for (const char c : text) c == '#' ? repeated += std::to_string(i) : repeated += c;
  }
  return repeated;
}

// `text` with each row's first field replaced by another one.
inline std::string Replaced(std::string text, const std::vector<Row>& replacements,
                            std::size_t field = 1) {
  for (const Row& row : replacements) {
    for (std::size_t at = 0; (at = text.find(row[0], at)) != text.npos; at += row[field].size()) {
      text.replace(at, row[0].size(), row[field]);
    }
  }
  return text;
}

// A table from a raw string: one row per line, or several separated by ";;"; "=>" separates fields.
// A line that ends in "\" goes on in the next.
inline std::vector<Row> Rows(std::string_view text) {
  const std::string joined = Replaced(std::string(text), {{"\\\n", ""}});
  std::vector<Row> rows;
  table::Split(table::Trimmed(joined), "\n", [&](std::string_view line) {
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
