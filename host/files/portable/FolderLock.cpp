#include <zelstoryhost/FolderLock.h>

namespace zelstoryhost {

// The standard library has no locks on files.
FolderLock::FolderLock(const FileEntry&, const Waiting&) {}
FolderLock::~FolderLock() = default;

}  // namespace zelstoryhost
