#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>

#include <zelstoryhost/Export.h>

// Whole files. All functions may be called from several threads at once.
namespace zelstoryhost {

// The size, in bytes, of the largest file that is read whole.
inline constexpr std::uintmax_t kLargestFile = std::uintmax_t{1} << 30;

// The bytes of a regular file, or nothing when there is none. Throws Error for a directory, a
// device, a file above kLargestFile, and when reading fails.
ZELSTORYHOST_API std::optional<std::string> ReadFile(const std::filesystem::path& file);

// The rest of a stream; `name` stands for it in errors. Throws Error above kLargestFile, and when
// reading fails.
ZELSTORYHOST_API std::string ReadStream(std::istream& stream, const std::string& name);

// Replaces a file by the bytes, or creates it: whole or not at all. The bytes are written to a
// nameless or hidden file in the same folder, flushed to disk, and renamed; the folder is flushed.
// A symbolic link is followed to its target and stays a link. Mode and, where permitted, owner are
// kept. Signals that would end the process wait until the file is replaced. Throws Error, also for
// a directory, a device or a pipe; the old file is then as it was, and nothing else is left in the
// folder. Without POSIX, the system decides what a crash leaves, and mode and owner are those of a
// new file.
ZELSTORYHOST_API void ReplaceFile(const std::filesystem::path& file, const std::string& bytes);

// Whether nobody may write to a file, or this process may not. ReplaceFile does not ask: it needs
// no more than a folder that it can write to. False for a file that does not exist.
ZELSTORYHOST_API bool IsWriteProtected(const std::filesystem::path& file);

}  // namespace zelstoryhost
