#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

namespace zelstory {

// Serialises the tool's updates of files in one folder: held from the reading of a file to its
// replacement, so that of two writers at once the second sees what the first wrote. Where the
// system or the file system knows no such locks, nothing is held, and replacements are still whole.
class DirectoryLock {
 public:
  enum class Waiting { kNever, kAsLongAsNeeded };
  using Note = std::function<void(const std::string& folder, const std::string& text)>;

  // Locks the folder that holds `file`, until the object or the process ends. While another process
  // holds the lock, waits, and says so through `note` after a second; with kNever, throws ToolError
  // instead.
  DirectoryLock(const std::filesystem::path& file, Waiting waiting, const Note& note);
  ~DirectoryLock();
  DirectoryLock(const DirectoryLock&) = delete;
  DirectoryLock& operator=(const DirectoryLock&) = delete;

 private:
  int mDescriptor = -1;
};

inline constexpr std::uintmax_t kLargestFile = std::uintmax_t{1} << 30;  // bytes

// Whether nobody may write to a file, or this process may not: replacing it asks for no more than a
// folder that can be written to. False for a file that does not exist.
bool IsWriteProtected(const std::filesystem::path& file);

// Throws ToolError for a directory, a device and anything else that is there but no regular file.
void RefuseUnlessFile(const std::filesystem::path& file);

// The bytes of a regular file, or nothing when there is none. Throws ToolError for a directory, a
// device, a file above 1 GiB, and when reading fails.
std::optional<std::string> ReadWholeFile(const std::filesystem::path& file);

// The rest of a stream; `name` stands for it in errors. Throws ToolError above 1 GiB, and when
// reading fails.
std::string ReadWholeStream(std::istream& stream, const std::string& name);

// Whether standard input was opened from this file, under whatever name. Where the system cannot
// tell, it is not.
bool IsStandardInput(const std::filesystem::path& file);

// Replaces a file by the bytes, or creates it: whole or not at all. The bytes are written to a
// nameless or hidden file in the same folder, flushed to disk, and renamed; the folder is flushed.
// A symbolic link is followed to its target and stays a link. Mode and, where permitted, owner are
// kept. Signals that would end the process wait until the replacement is done. Throws ToolError,
// for a device or a pipe, too; the old file is then as it was, and nothing else is left in the
// folder.
void ReplaceFile(const std::filesystem::path& file, const std::string& bytes);

}  // namespace zelstory
