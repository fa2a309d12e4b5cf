#pragma once

#include <zelstoryparser/HeadingRules.h>

namespace zelstoryparser {

// Appends a part that begins at or after the end of the last one, and a separator for what is
// between them. A part without length is left out.
void AppendPart(const HeadingPart& part, std::vector<HeadingPart>& parts);

}  // namespace zelstoryparser
