#include <fstream>
#include <random>
#include <system_error>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Files.h>

#include "files/FileTarget.h"

// Whole or not at all, as far as the standard library can guarantee it.
namespace zelstoryhost {
namespace {

namespace fs = std::filesystem;

// An unused name in the target's folder.
fs::path FreeName(const fs::path& target) {
  std::random_device random;
  fs::path name;
  do {
    name = FolderOf(target) / ("." + target.filename().string() + '.' + std::to_string(random()));
  } while (fs::exists(fs::symlink_status(name)));
  return name;
}

}  // namespace

bool IsWriteProtected(const fs::path& file) {
  constexpr fs::perms kWriters =
      fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  return fs::exists(status) && (status.permissions() & kWriters) == fs::perms::none;
}

void ReplaceFile(const fs::path& file, const std::string& bytes) {
  RefuseUnlessFile(file);
  const fs::path target = TargetOf(file);
  const fs::path name = FreeName(target);
  std::ofstream stream(name, std::ios::binary);
  stream << bytes;
  stream.close();
  std::error_code error;
  if (stream) fs::rename(name, target, error);
  if (stream && !error) return;
  std::error_code ignored;
  fs::remove(name, ignored);
  throw Error(file.string(), "cannot be written");
}

}  // namespace zelstoryhost
