#pragma once

#include <string>

namespace zelstory {

// How a clip's sidecar is named. Both forms are in use.
enum class SidecarForm {
  kFull,  // clip.mov.xmp: no two clips can share it
  kStem,  // clip.xmp
};

// What to do when there is no sidecar.
enum class WhenAbsent { kRefuse, kCreate };

// The sidecar that a command line means: a name that ends in .xmp, or "-", is the sidecar itself;
// any other is a clip, whose sidecar is the one that exists, or, to be created, has the given form.
// Throws ToolError when the clip is no file, when both forms exist, when another clip in the folder
// would share the sidecar, and, with kRefuse, when a clip has none.
std::string FindSidecar(const std::string& clipOrSidecar, SidecarForm form, WhenAbsent whenAbsent);

}  // namespace zelstory
