#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include <zelstoryhost/Export.h>

namespace zelstoryhost {

// Serialises updates of the files in one folder among all processes that take this lock. Hold it
// from the reading of a file to its replacement, so that of two writers at once the second sees
// what the first wrote. Where the system or the file system has no such locks, nothing is held, and
// ReplaceFile is still whole. Belongs to one thread at a time.
class ZELSTORYHOST_API FolderLock {
 public:
  enum class Waiting { kNever, kAsLongAsNeeded };
  using Note = std::function<void(const std::string& folder, const std::string& text)>;

  // Locks the folder that holds `file`, or the file that `file` links to, until the object or the
  // process ends. While another process holds the lock, waits, and reports that through `note`
  // after a second, once; `note` may be empty. With kNever, throws Error instead of waiting.
  FolderLock(const std::filesystem::path& file, Waiting waiting, const Note& note);
  ~FolderLock();  // NOLINT(performance-trivially-destructible): it is not, with POSIX
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

 private:
  [[maybe_unused]] int mDescriptor = -1;  // without POSIX there is none
};

}  // namespace zelstoryhost
