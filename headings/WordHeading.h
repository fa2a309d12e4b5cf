#pragma once

#include <zelstoryparser/HeadingRules.h>

#include "headings/HeadingTables.h"

namespace zelstoryparser {

// Splits a heading by the words of the tables.
ParsedHeading ParseByWords(const UTF16String& heading, const HeadingTables& tables);

}  // namespace zelstoryparser
