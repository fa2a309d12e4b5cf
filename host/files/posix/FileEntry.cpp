#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Files.h>

#include "files/FileTarget.h"
#include "files/posix/OpenFolder.h"

namespace zelstoryhost {
namespace {

namespace fs = std::filesystem;

constexpr int kReading = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

bool IsMissing(int error) {
  return error == ENOENT || error == ENOTDIR;
}

void RefuseUnlessRegular(const std::string& name, mode_t mode) {
  if (S_ISDIR(mode)) throw Error(name, "is a directory");
  if (!S_ISREG(mode)) throw Error(name, "is not a regular file");
}

std::string ReadAll(const Descriptor& file, const std::string& name) {
  struct stat status {};
  if (!file || fstat(file.Number(), &status) != 0) FailOn(name, "cannot be read", errno);
  RefuseUnlessRegular(name, status.st_mode);
  const auto size = static_cast<std::uintmax_t>(status.st_size);
  if (size > kLargestFile) throw Error(name, "is larger than 1 GiB");
  std::string bytes(static_cast<std::size_t>(size) + 1, '\0');  // one more shows the end
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count = read(file.Number(), bytes.data() + done, bytes.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) FailOn(name, "cannot be read", errno);
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  if (done != size) throw Error(name, "changed while it was read");
  bytes.resize(done);
  return bytes;
}

}  // namespace

OpenFolder::OpenFolder(const fs::path& path)
    : mDescriptor(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
#if defined(O_PATH)
  if (!mDescriptor && errno == EACCES) {
    mDescriptor = Descriptor(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  }
#endif
  if (!mDescriptor) mError = errno;
}

std::optional<struct stat> OpenFolder::StatusOf(const std::string& entry) const {
  struct stat status {};
  errno = mError;
  if (!mDescriptor || fstatat(Number(), entry.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    return std::nullopt;
  }
  return status;
}

Descriptor OpenFolder::OpenToRead(const std::string& entry) const {
  return Descriptor(openat(Number(), entry.c_str(), kReading | O_NOFOLLOW));
}

// What a file is, is looked at before it is opened, because opening a device can have effects.
std::optional<std::string> ReadFile(const fs::path& file) {
  const std::string name = file.string();
  struct stat status {};
  if (stat(file.c_str(), &status) != 0) {
    if (IsMissing(errno)) return std::nullopt;
    FailOn(name, "cannot be read", errno);
  }
  RefuseUnlessRegular(name, status.st_mode);
  return ReadAll(Descriptor(open(file.c_str(), kReading)), name);
}

FileEntry::FileEntry(const fs::path& file, Links links)
    : mName(file.string()),
      mTarget(links == Links::kFollow ? TargetOf(file) : file),
      mLinks(links),
      mFolder(std::make_shared<const OpenFolder>(FolderOf(mTarget))) {}

std::optional<std::string> FileEntry::Read() const {
  const std::optional<struct stat> status = mFolder->StatusOf(Leaf());
  if (!status) {
    if (IsMissing(errno)) return std::nullopt;
    FailOn(mName, "cannot be read", errno);
  }
  RefuseUnlessRegular(mName, status->st_mode);
  return ReadAll(mFolder->OpenToRead(Leaf()), mName);
}

bool FileEntry::IsLink() const {
  const std::optional<struct stat> status = mFolder->StatusOf(Leaf());
  return status && S_ISLNK(status->st_mode);
}

bool FileEntry::HasOtherNames() const {
  const std::optional<struct stat> status = mFolder->StatusOf(Leaf());
  return status && S_ISREG(status->st_mode) && status->st_nlink > 1;
}

bool FileEntry::IsWriteProtected() const {
  const std::optional<struct stat> status = mFolder->StatusOf(Leaf());
  if (!status) return false;
  return (status->st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0 ||
         faccessat(mFolder->Number(), Leaf().c_str(), W_OK, 0) != 0;
}

}  // namespace zelstoryhost
