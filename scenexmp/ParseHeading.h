#pragma once

#include <zelcore/String.h>
#include <zelstoryparser/HeadingRules.h>

namespace zelstoryparser {

// The three texts of a heading that become metadata, by any rules. The exact rule leaves an output
// that the heading does not have; rules of words empty it.
void SplitHeading(const UTF16String& heading, const HeadingRules& rules, UTF16String& setting,
                  UTF16String& location, UTF16String& timeOfDay);

}  // namespace zelstoryparser
