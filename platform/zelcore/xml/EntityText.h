#pragma once

#include <string>
#include <string_view>

namespace zelcore::xml {

// The replacement text of an entity with "&#13;" in place of the carriage returns in its character
// data. Those in its tags, comments, processing instructions and CDATA sections stay: no reference
// may stand there.
std::string WithReferences(std::string_view text);

}  // namespace zelcore::xml
