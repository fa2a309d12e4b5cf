#pragma once

#include <string>
#include <string_view>

#include <zelstoryhost/Export.h>

namespace zelstoryhost {

// The difference between two texts in the unified format, three lines of context around each
// change; empty if there is none. A line ends with a line feed. The names are those in the header:
// one that holds blanks is followed by a tab, as the format asks. Takes time n log n.
ZELSTORYHOST_API std::string UnifiedDiff(std::string_view before, std::string_view after,
                                         const std::string& nameBefore,
                                         const std::string& nameAfter);

}  // namespace zelstoryhost
