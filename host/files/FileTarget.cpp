#include "files/FileTarget.h"

#include <system_error>

#include <zelstoryhost/Error.h>

namespace zelstoryhost {

namespace fs = std::filesystem;

void FailOn(const fs::path& file, const std::string& what, int error) {
  throw Error(file.string(), what + ": " + std::generic_category().message(error));
}

void RefuseUnlessFile(const fs::path& file) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (fs::is_directory(status)) throw Error(file.string(), "is a directory");
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    throw Error(file.string(), "is not a regular file");
  }
}

fs::path FolderOf(const fs::path& file) {
  const fs::path folder = file.parent_path();
  return folder.empty() ? fs::path(".") : folder;
}

fs::path TargetOf(fs::path file) {
  constexpr int kMostLinks = 40;
  for (int links = 0; links < kMostLinks; ++links) {
    std::error_code error;
    if (!fs::is_symlink(fs::symlink_status(file, error))) return file;
    const fs::path next = fs::read_symlink(file, error);
    if (error) FailOn(file, "cannot follow the link", error.value());
    file = next.is_absolute() ? next : file.parent_path() / next;
  }
  throw Error(file.string(), "too many links");
}

}  // namespace zelstoryhost
