#pragma once

#include <string>
#include <vector>

#include <zelmetadata/Path.h>

namespace zelstory {

// Tells what a change did to one sidecar: each touched path on a line, or "unchanged", each behind
// `label` (empty, or "FILE: " where a command works on several).
void PrintOutcome(const std::string& label, bool changed,
                  const std::vector<zelmetadata::Path>& changedPaths);

}  // namespace zelstory
