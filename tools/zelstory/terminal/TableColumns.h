#pragma once

#include <cstddef>
#include <iosfwd>

#include <zelstoryhost/Table.h>

namespace zelstory {

// The columns of a terminal that a column of a table takes at most.
inline constexpr std::size_t kWidestColumn = 60;

// Prints a table in columns as wide as a terminal shows their text, numbers at the right. Texts are
// escaped (terminal/Escaped.h); on a terminal that welcomes colours, the names of the columns stand
// out. A column of scenes, which may be long, comes last. A text wider than kWidestColumn is cut
// there on a terminal, with an ellipsis, unless it is a list of scenes or in the table's last
// column; elsewhere it moves the rest of its row to the right.
void PrintColumns(const zelstoryhost::Table& table, std::ostream& output);

}  // namespace zelstory
