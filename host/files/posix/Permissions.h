#pragma once

#include <sys/stat.h>

#include <zelstoryhost/Files.h>

#include "files/posix/OpenFolder.h"

namespace zelstoryhost {

// A file that is to be replaced.
struct OldFile {
  struct stat mStatus {};
  Descriptor mFile;  // none when it may not be read
};

// The permissions that nobody gains anything by, whoever the file belongs to: the owner's as they
// are; for the group and everybody else, what all of them had.
mode_t NarrowMode(const OldFile& old);

// Gives a new file, which has the narrow mode, the owner, the permissions and the extended
// attributes of the old one. What the system refuses is left out; permissions that the new group or
// owner would widen stay narrow.
void TakeOver(const OldFile& old, const Descriptor& file);

}  // namespace zelstoryhost
