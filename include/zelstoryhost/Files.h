#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

#include <zelstoryhost/Export.h>

// Whole files. Unless said otherwise, functions may be called from several threads at once.
namespace zelstoryhost {

class OpenFolder;

// The size, in bytes, of the largest file that is read whole.
inline constexpr std::uintmax_t kLargestFile = std::uintmax_t{1} << 30;

// The bytes of a regular file, or nothing when there is none. Throws Error for a directory, a
// device, a pipe, a file above kLargestFile, and when reading fails.
ZELSTORYHOST_API std::optional<std::string> ReadFile(const std::filesystem::path& file);

// The rest of a stream; `name` stands for it in errors. Throws Error above kLargestFile, and when
// reading fails.
ZELSTORYHOST_API std::string ReadStream(std::istream& stream, const std::string& name);

// What replacing a file does if it has other names (hard links), which would keep the old bytes.
enum class HardLinks {
  kRefuse,  // throws Error, of the kind kHardLinks
  kPart,    // parts the file from them
};

// A file in its folder. The folder stays open as long as the object and its copies: what is read,
// locked and replaced lies in the same folder, even if the folder's name comes to mean another one.
// A value; copies share the folder. Without POSIX, the path is looked up each time.
class ZELSTORYHOST_API FileEntry {
 public:
  // What a symbolic link at the name means.
  enum class Links {
    kFollow,   // the file at its end, which need not exist
    kReplace,  // the link itself: it is not read, and a replacement takes its place
  };

  // Looks nothing up but links and the folder. Throws Error for links that lead in a circle.
  explicit FileEntry(const std::filesystem::path& file, Links links = Links::kFollow);

  // The entry `name` of the same folder, with the same rule for links.
  FileEntry Sibling(const std::string& name) const;

  // The name that was given, as errors have it.
  const std::string& Name() const { return mName; }

  // The bytes of the file, or nothing when there is none. Throws Error as ReadFile does, and for a
  // link.
  std::optional<std::string> Read() const;

  bool IsLink() const;

  // Throws Error, of the kind kHardLinks, if the file has other names (hard links).
  void RefuseOtherNames() const;

  // Whether nobody may write to the file, or this process may not. Replace does not ask: it needs
  // no more than a folder that it can write to. False when there is none.
  bool IsWriteProtected() const;

  // Replaces the file by the bytes, or creates it: whole or not at all. The bytes are written to a
  // nameless or hidden file in the same folder, flushed to disk, and renamed; the folder is
  // flushed. Owner, permissions and extended attributes pass to the new file as far as the system
  // allows; nobody gets more permissions than before. Signals that would end the process wait until
  // the file is replaced. Throws Error, also for a directory, a device or a pipe; the old file is
  // then as it was, and nothing else is left in the folder. Without POSIX, the system decides what
  // a crash leaves, and permissions and owner are those of a new file.
  void Replace(const std::string& bytes, HardLinks hardLinks) const;

  // Writes a new file as Replace does. Throws Error, of the kind kForeignFile, if there is one,
  // even if it came up a moment before; without POSIX, such a one may be replaced.
  void Create(const std::string& bytes) const;

 private:
  friend class FolderLock;

  FileEntry(std::string name, std::filesystem::path target, Links links,
            std::shared_ptr<const OpenFolder> folder);

  bool HasOtherNames() const;
  std::string Leaf() const;  // the name in the folder

  std::string mName;
  std::filesystem::path mTarget;  // the file itself
  Links mLinks;
  std::shared_ptr<const OpenFolder> mFolder;  // its folder; none without POSIX
};

// Replaces the file at the path, or at the end of the links there, or creates it.
ZELSTORYHOST_API void ReplaceFile(const std::filesystem::path& file, const std::string& bytes,
                                  HardLinks hardLinks = HardLinks::kRefuse);

}  // namespace zelstoryhost
