#pragma once

#include <filesystem>

#include <zelcore/String.h>

namespace zelcore::filesupport {

// The entry at a path, for TraverseStory; a link is not followed.
class File {
 public:
  explicit File(const UTF16String& path) : mPath(path) {}
  bool Exists() const { return std::filesystem::exists(std::filesystem::symlink_status(mPath)); }
  void Delete() { std::filesystem::remove(mPath); }

 private:
  std::filesystem::path mPath;
};

}  // namespace zelcore::filesupport
