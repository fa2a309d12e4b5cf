#include <zelstoryhost/FolderLock.h>

namespace zelstoryhost {

// The standard library has no locks on files.
FolderLock::FolderLock(const std::filesystem::path&, Waiting, const Note&) {}
FolderLock::~FolderLock() = default;

}  // namespace zelstoryhost
