#pragma once

#include <optional>

#include <zelstoryhost/SidecarName.h>

#include "options/CommandLine.h"

// Options of several commands that say which sidecar is meant. What they set must outlive the
// parsing.
namespace zelstory {

// --sidecar-name
void AddSidecarNameOption(Command& command, std::optional<zelstoryhost::SidecarForm>& form);

// --strict, and what it makes of a clip without sidecar.
void AddStrictFlag(Command& command, bool& isStrict);
inline zelstoryhost::WhenAbsent WhenAbsentFor(bool isStrict) {
  return isStrict ? zelstoryhost::WhenAbsent::kRefuse : zelstoryhost::WhenAbsent::kReadEmpty;
}

}  // namespace zelstory
