#pragma once

#include <string_view>

#include <zelstoryparser/HeadingRules.h>

#include "headings/HeadingTables.h"

namespace zelstoryparser {

// Adds the words of a text of rules to `tables`. Returns false at the first fault; `tables` then
// holds what stands before it.
bool ReadRules(std::string_view text, HeadingTables& tables, HeadingRulesFault& fault);

}  // namespace zelstoryparser
