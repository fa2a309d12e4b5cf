#include "FileReplacement.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <istream>
#include <system_error>
#include <thread>
#include <utility>

#include "ToolError.h"

#if defined(__unix__) || defined(__APPLE__)
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#define ZELSTORY_POSIX 1
#endif

namespace zelstory {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const fs::path& file, const std::string& what, int error) {
  throw ToolError(file.string(), what + ": " + std::generic_category().message(error));
}

fs::path FolderOf(const fs::path& file) {
  const fs::path folder = file.parent_path();
  return folder.empty() ? fs::path(".") : folder;
}

// The file behind a chain of links, which need not exist itself.
fs::path TargetOf(fs::path file) {
  constexpr int kMostLinks = 40;
  for (int links = 0; links < kMostLinks; ++links) {
    std::error_code error;
    if (!fs::is_symlink(fs::symlink_status(file, error))) return file;
    const fs::path next = fs::read_symlink(file, error);
    if (error) Fail(file, "cannot follow the link", error.value());
    file = next.is_absolute() ? next : file.parent_path() / next;
  }
  throw ToolError(file.string(), "too many links");
}

}  // namespace

void RefuseUnlessFile(const fs::path& file) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (fs::is_directory(status)) throw ToolError(file.string(), "is a directory");
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    throw ToolError(file.string(), "is not a regular file");
  }
}

std::optional<std::string> ReadWholeFile(const fs::path& file) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (status.type() == fs::file_type::not_found) return std::nullopt;
  if (error) Fail(file, "cannot be read", error.value());
  RefuseUnlessFile(file);
  const std::uintmax_t size = fs::file_size(file, error);
  if (error) Fail(file, "cannot be read", error.value());
  if (size > kLargestFile) throw ToolError(file.string(), "is larger than 1 GiB");
  std::ifstream stream(file, std::ios::binary);
  if (!stream) Fail(file, "cannot be read", errno);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  stream.read(bytes.data(), static_cast<std::streamsize>(size));
  if (static_cast<std::uintmax_t>(stream.gcount()) != size || stream.peek() != EOF) {
    throw ToolError(file.string(), "changed while it was read");
  }
  return bytes;
}

std::string ReadWholeStream(std::istream& stream, const std::string& name) {
  std::string bytes;
  while (stream) {
    constexpr std::size_t kPiece = 1u << 20;
    const std::size_t before = bytes.size();
    bytes.resize(before + kPiece);
    stream.read(bytes.data() + before, kPiece);
    bytes.resize(before + static_cast<std::size_t>(stream.gcount()));
    if (bytes.size() > kLargestFile) throw ToolError(name, "is larger than 1 GiB");
  }
  if (stream.bad()) throw ToolError(name, "cannot be read");
  return bytes;
}

#if defined(ZELSTORY_POSIX)

namespace {

// Keeps the signals that end a process waiting.
class SignalsHeld {
 public:
  SignalsHeld() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
      sigaddset(&ending, signal);
    }
    pthread_sigmask(SIG_BLOCK, &ending, &mBefore);
  }
  ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &mBefore, nullptr); }
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;

 private:
  sigset_t mBefore;
};

// A new file beside the target. Where the system offers it, it has no name until it is complete, so
// that not even a kill leaves it behind; otherwise, and from then on, it is removed unless renamed.
class NewFile {
 public:
  explicit NewFile(const fs::path& target) : mTarget(target) {
#if defined(O_TMPFILE)
    mDescriptor = open(FolderOf(target).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (mDescriptor >= 0) return;
#endif
    mName = NamePattern();
    mDescriptor = mkstemp(mName.data());
    if (mDescriptor < 0) {
      mName.clear();
      Fail(mTarget, "cannot be written", errno);
    }
  }

  ~NewFile() {
    if (mDescriptor >= 0) close(mDescriptor);
    if (!mName.empty()) unlink(mName.c_str());
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  void Write(const std::string& bytes) {
    for (std::size_t done = 0; done < bytes.size();) {
      const ssize_t count = write(mDescriptor, bytes.data() + done, bytes.size() - done);
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) Fail(mTarget, "cannot be written", errno);
      done += static_cast<std::size_t>(count);
    }
  }

  // Takes mode and owner of the file that will be replaced, or the mode that a new file would get.
  void TakeOver() {
    struct stat old {};
    if (stat(mTarget.c_str(), &old) != 0) {
      const mode_t mask = umask(0);
      umask(mask);
      if (fchmod(mDescriptor, 0666 & ~mask) != 0) Fail(mTarget, "cannot set the mode", errno);
      return;
    }
    // Another's file may be replaced without the right to give the new one away: that is no error.
    if (fchown(mDescriptor, old.st_uid, old.st_gid) != 0) errno = 0;
    if (fchmod(mDescriptor, old.st_mode & 07777) != 0) Fail(mTarget, "cannot set the mode", errno);
  }

  void Rename() {
    if (fsync(mDescriptor) != 0) Fail(mTarget, "cannot be written", errno);
    if (mName.empty()) GiveName();
    if (rename(mName.c_str(), mTarget.c_str()) != 0) Fail(mTarget, "cannot be replaced", errno);
    mName.clear();
    const int folder = open(FolderOf(mTarget).c_str(), O_RDONLY | O_CLOEXEC);
    if (folder < 0) return;
    fsync(folder);  // some file systems refuse; the file itself is safe by now
    close(folder);
  }

 private:
  std::string NamePattern() const {
    std::string name(".");
    name.append(mTarget.filename().string()).append(".XXXXXX");
    return (FolderOf(mTarget) / name).string();
  }

  void GiveName() {
#if defined(O_TMPFILE)
    const std::string self = "/proc/self/fd/" + std::to_string(mDescriptor);
    // mkstemp finds a free name; its empty file makes way at once.
    for (int tries = 0; tries < 100; ++tries) {
      std::string name = NamePattern();
      const int placeholder = mkstemp(name.data());
      if (placeholder < 0) break;
      close(placeholder);
      unlink(name.c_str());
      if (linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
        mName = std::move(name);
        return;
      }
      if (errno != EEXIST) break;
    }
    Fail(mTarget, "cannot be written", errno);
#endif
  }

  const fs::path& mTarget;
  int mDescriptor = -1;
  std::string mName;  // empty while the file has none
};

}  // namespace

bool IsStandardInput(const fs::path& file) {
  struct stat input {};
  struct stat named {};
  return fstat(STDIN_FILENO, &input) == 0 && stat(file.c_str(), &named) == 0 &&
         input.st_dev == named.st_dev && input.st_ino == named.st_ino;
}

bool IsWriteProtected(const fs::path& file) {
  struct stat named {};
  if (stat(file.c_str(), &named) != 0) return false;
  return (named.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0 || access(file.c_str(), W_OK) != 0;
}

DirectoryLock::DirectoryLock(const fs::path& file, Waiting waiting, const Note& note) {
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::milliseconds kBetweenTries(20);
  constexpr std::chrono::seconds kQuietTime(1);
  const fs::path folder = FolderOf(TargetOf(file));
  mDescriptor = open(folder.c_str(), O_RDONLY | O_CLOEXEC);
  if (mDescriptor < 0) return;  // whoever reads or writes the file next says why
  const Clock::time_point start = Clock::now();
  for (bool isNoted = false; flock(mDescriptor, LOCK_EX | LOCK_NB) != 0;) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) return;  // a file system without locks
    if (waiting == Waiting::kNever) {
      close(mDescriptor);
      throw ToolError(folder.string(), "another process is changing files in this folder");
    }
    if (!isNoted && Clock::now() - start > kQuietTime) {
      note(folder.string(), "waiting for another process that changes files in this folder");
      isNoted = true;
    }
    std::this_thread::sleep_for(kBetweenTries);
  }
}

DirectoryLock::~DirectoryLock() {
  if (mDescriptor >= 0) close(mDescriptor);
}

void ReplaceFile(const fs::path& file, const std::string& bytes) {
  RefuseUnlessFile(file);
  const fs::path target = TargetOf(file);
  const SignalsHeld held;
  NewFile replacement(target);
  replacement.Write(bytes);
  replacement.TakeOver();
  replacement.Rename();
}

#else  // without POSIX: whole or not at all as far as the standard library can promise it

bool IsStandardInput(const fs::path&) {
  return false;
}

bool IsWriteProtected(const fs::path& file) {
  constexpr fs::perms kWriters =
      fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  return fs::exists(status) && (status.permissions() & kWriters) == fs::perms::none;
}

DirectoryLock::DirectoryLock(const fs::path&, Waiting, const Note&) {}
DirectoryLock::~DirectoryLock() = default;

void ReplaceFile(const fs::path& file, const std::string& bytes) {
  RefuseUnlessFile(file);
  const fs::path target = TargetOf(file);
  fs::path name = target;
  name += ".new";
  std::ofstream stream(name, std::ios::binary | std::ios::trunc);
  stream << bytes;
  stream.close();
  std::error_code error;
  if (stream) fs::rename(name, target, error);
  if (stream && !error) return;
  std::error_code ignored;
  fs::remove(name, ignored);
  throw ToolError(file.string(), "cannot be written");
}

#endif

}  // namespace zelstory
