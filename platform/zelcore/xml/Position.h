#pragma once

#include <cstdint>

namespace zelcore::xml {

// A place in a document, both counted from 1. Columns count characters (Unicode code points).
struct Position {
  std::int64_t mLine = 1;
  std::int64_t mColumn = 1;
};

}  // namespace zelcore::xml
