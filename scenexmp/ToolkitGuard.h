#pragma once

#include <xmptoolkit/XMP.h>

namespace zelstoryparser {

// Runs toolkit calls and returns whether the toolkit accepted all of them. Stops at the first
// refusal and drops its message: callers have their own text. Other exceptions pass through.
template <typename Calls>
bool ToolkitAccepts(Calls calls) {
  try {
    calls();
    return true;
  } catch (const XMP_Error&) {
    return false;
  }
}

}  // namespace zelstoryparser
