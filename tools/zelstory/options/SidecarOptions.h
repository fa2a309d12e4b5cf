#pragma once

#include <optional>

#include <zelstoryhost/SidecarName.h>

#include "options/CommandLine.h"

// Options of several commands that select a sidecar. The variables that they set must outlive
// the parsing.
namespace zelstory {

// --sidecar-name
void AddSidecarNameOption(Command& command, std::optional<zelstoryhost::SidecarForm>& form);

// --strict, and what it means for a clip without a sidecar.
void AddStrictFlag(Command& command, bool& isStrict);
inline zelstoryhost::WhenAbsent WhenAbsentFor(bool isStrict) {
  return isStrict ? zelstoryhost::WhenAbsent::kRefuse : zelstoryhost::WhenAbsent::kReadEmpty;
}

}  // namespace zelstory
