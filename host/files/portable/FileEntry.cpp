#include <cerrno>
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
    name = FolderOf(target) / (".zelstory-" + std::to_string(random()));
  } while (fs::exists(fs::symlink_status(name)));
  return name;
}

}  // namespace

std::optional<std::string> ReadFile(const fs::path& file) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (status.type() == fs::file_type::not_found) return std::nullopt;
  if (error) FailOn(file, "cannot be read", error.value());
  RefuseUnlessFile(file);
  const std::uintmax_t size = fs::file_size(file, error);
  if (error) FailOn(file, "cannot be read", error.value());
  if (size > kLargestFile) throw Error(file.string(), "is larger than 1 GiB");
  std::ifstream stream(file, std::ios::binary);
  if (!stream) FailOn(file, "cannot be read", errno);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  stream.read(bytes.data(), static_cast<std::streamsize>(size));
  if (static_cast<std::uintmax_t>(stream.gcount()) != size || stream.peek() != EOF) {
    throw Error(file.string(), "changed while it was read");
  }
  return bytes;
}

FileEntry::FileEntry(const fs::path& file, Links links)
    : mName(file.string()),
      mTarget(links == Links::kFollow ? TargetOf(file) : file),
      mLinks(links) {}

std::optional<std::string> FileEntry::Read() const {
  if (IsLink()) throw Error(mName, "is not a regular file");
  return ReadFile(mTarget);
}

bool FileEntry::IsLink() const {
  std::error_code error;
  return fs::is_symlink(fs::symlink_status(mTarget, error));
}

bool FileEntry::HasOtherNames() const {
  std::error_code error;
  return fs::is_regular_file(fs::symlink_status(mTarget, error)) &&
         fs::hard_link_count(mTarget, error) > 1 && !error;
}

bool FileEntry::IsWriteProtected() const {
  constexpr fs::perms kWriters =
      fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  std::error_code error;
  const fs::file_status status = fs::status(mTarget, error);
  return fs::exists(status) && (status.permissions() & kWriters) == fs::perms::none;
}

void FileEntry::Replace(const std::string& bytes, HardLinks hardLinks) const {
  if (!IsLink()) {
    RefuseUnlessFile(mTarget);
  } else if (mLinks == Links::kFollow) {
    throw Error(mName, "is not a regular file");
  }
  if (hardLinks == HardLinks::kRefuse) RefuseOtherNames();
  const fs::path name = FreeName(mTarget);
  std::ofstream stream(name, std::ios::binary);
  stream << bytes;
  stream.close();
  std::error_code error;
  if (stream) fs::rename(name, mTarget, error);
  if (stream && !error) return;
  std::error_code ignored;
  fs::remove(name, ignored);
  throw Error(mName, "cannot be written");
}

void FileEntry::Create(const std::string& bytes) const {
  std::error_code error;
  if (fs::exists(fs::symlink_status(mTarget, error))) {
    throw Error(mName, "exists already", ErrorKind::kForeignFile);
  }
  Replace(bytes, HardLinks::kRefuse);
}

}  // namespace zelstoryhost
