#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include <zelstoryhost/Export.h>
#include <zelstoryhost/Files.h>

namespace zelstoryhost {

// How to wait while another process holds a lock.
struct Waiting {
  std::chrono::milliseconds mLimit = std::chrono::minutes(1);  // 0: does not wait at all
  // Called once, after a second of waiting; may be empty.
  std::function<void(const std::string& folder, const std::string& text)> mNote;
  // Called several times a second; may be empty. An exception from it ends the waiting.
  std::function<void()> mCheck;
};

// Serialises updates of the files in one folder among all processes that take this lock. Hold it
// from the reading of a file to its replacement, so that of two writers at once the second sees
// what the first wrote. Where the system or the file system has no such locks, nothing is held, and
// a replacement is still whole. Two locks through copies of one FileEntry are one lock. Belongs to
// one thread at a time.
class ZELSTORYHOST_API FolderLock {
 public:
  // Locks the folder that holds the file until the object or the process ends. While another
  // process holds the lock, waits as `waiting` says; at its limit, throws Error.
  FolderLock(const FileEntry& file, const Waiting& waiting);
  ~FolderLock();
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

 private:
  std::shared_ptr<const OpenFolder> mFolder;  // none if nothing is held
};

}  // namespace zelstoryhost
