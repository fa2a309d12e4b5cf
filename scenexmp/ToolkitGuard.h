#pragma once

#include <xmptoolkit/XMP.h>

namespace zelstoryparser {

// Runs toolkit calls and tells whether all of them were accepted. The first refusal ends them, and
// its message is dropped: callers have a text of their own. Other exceptions pass through.
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
