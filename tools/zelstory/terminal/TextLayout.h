#pragma once

#include <string>
#include <string_view>
#include <vector>

// UTF-8 text on a page of fixed-width columns.
namespace zelstory {

// The columns that the text takes on a terminal: two for wide characters, none for combining ones.
std::size_t ColumnsOf(std::string_view text);

// The text in capitals, by Unicode's simple case mapping of each letter.
std::string InCapitals(std::string_view text);

// Cuts a text into lines of at most `columns` at white space, keeping its own line ends; a longer
// word is cut where the line is full. The lines are escaped (terminal/Escaped.h). Never empty: an
// empty text is one empty line.
std::vector<std::string> WrapText(std::string_view text, std::size_t columns);

// The first line of a text, cut to at most `columns` with an ellipsis at the end.
std::string Shortened(const std::string& text, std::size_t columns);

}  // namespace zelstory
