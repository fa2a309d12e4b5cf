#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zelstoryhost {

struct CSVRow {
  std::size_t mLine = 0;  // where it begins, from 1
  std::vector<std::string> mCells;
};

// The rows of a comma-separated text (RFC 4180; UTF-8, with or without a byte order mark), empty
// lines left out. Blanks around a cell that is not quoted are dropped. Spreadsheets write
// semicolons or tabs in some countries: the first of the three outside quotes
// separates the cells. Throws Error, naming `file` and the line, for text that
// is not UTF-8 and for quotes that are out of place.
std::vector<CSVRow> ReadCSV(std::string_view text, const std::string& file);

}  // namespace zelstoryhost
