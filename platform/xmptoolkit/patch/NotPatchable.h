#pragma once

#include <string>

namespace xmptoolkit {

// Thrown inside the toolkit for a packet whose bytes cannot be kept: it is then written anew.
struct NotPatchable {
  std::string mReason;
};

}  // namespace xmptoolkit
