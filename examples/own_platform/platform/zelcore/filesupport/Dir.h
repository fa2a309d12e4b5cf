#pragma once

#include <filesystem>

#include <zelcore/String.h>

namespace zelcore::filesupport {

// A directory entry's name, for TraverseStory.
class Dir {
 public:
  static Dir TempDir() { return Dir(std::filesystem::temp_directory_path()); }
  Dir(const Dir& parent, const UTF16String& name) : mPath(parent.mPath / name) {}
  UTF16String FullPath() const { return mPath.u16string(); }

 private:
  explicit Dir(std::filesystem::path path) : mPath(std::move(path)) {}
  std::filesystem::path mPath;
};

}  // namespace zelcore::filesupport
