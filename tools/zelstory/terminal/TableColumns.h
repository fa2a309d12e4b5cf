#pragma once

#include <iosfwd>

#include <zelstoryhost/Table.h>

namespace zelstory {

// Prints a table in columns as wide as a terminal shows their text, numbers at the right. Texts are
// escaped (terminal/Escaped.h); on a terminal that welcomes colours, the names of the columns stand
// out.
void PrintColumns(const zelstoryhost::Table& table, std::ostream& output);

}  // namespace zelstory
