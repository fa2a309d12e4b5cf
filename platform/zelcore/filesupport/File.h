#pragma once

#include <filesystem>

#include <zelcore/Export.h>
#include <zelcore/String.h>

namespace zelcore::filesupport {

// A file by its path. A plain value that keeps nothing open. Both operations are about the
// directory entry at the path itself: a symbolic link is that entry, whatever it points to.
class ZELPLATFORM_API File {
 public:
  // Only stores the path, absolute or relative to the working directory.
  explicit File(const UTF16String& path);

  // True when there is an entry at the path, even a link that points nowhere. An entry that cannot
  // be examined counts as absent.
  bool Exists() const;

  // Removes the entry; a link is removed, not followed. Does nothing when there is none. Throws
  // std::filesystem::filesystem_error when the entry cannot be removed.
  void Delete();

 private:
  std::filesystem::path mPath;
};

}  // namespace zelcore::filesupport
