#pragma once

#include <filesystem>

#include <zelcore/Export.h>
#include <zelcore/String.h>

namespace zelcore::filesupport {

// The path of a directory entry, which need not exist. A plain value; only TempDir, which asks the
// system for its temporary folder, touches the disk.
class ZELPLATFORM_API Dir {
 public:
  // The system's temporary folder. Throws std::filesystem::filesystem_error when there is none.
  static Dir TempDir();

  // The entry `name` inside `parent`. `name` is one path component.
  Dir(const Dir& parent, const UTF16String& name);

  // The absolute path, without a separator at its end (except for that of the root folder).
  UTF16String FullPath() const;

 private:
  explicit Dir(const std::filesystem::path& path);

  std::filesystem::path mPath;
};

}  // namespace zelcore::filesupport
