#pragma once

#include <optional>

#include "CommandLine.h"
#include "SidecarName.h"

// Options of several commands that say which sidecar is meant. What they set must outlive the
// parsing.
namespace zelstory {

// --sidecar-name
void AddSidecarNameOption(Command& command, std::optional<SidecarForm>& form);

// --strict, and what it makes of a clip without sidecar.
void AddStrictFlag(Command& command, bool& isStrict);
inline WhenAbsent WhenAbsentFor(bool isStrict) {
  return isStrict ? WhenAbsent::kRefuse : WhenAbsent::kReadEmpty;
}

}  // namespace zelstory
