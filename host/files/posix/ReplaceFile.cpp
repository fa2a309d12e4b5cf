#include <cerrno>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zelstoryhost/Files.h>

#include "files/FileTarget.h"

namespace zelstoryhost {
namespace {

namespace fs = std::filesystem;

// Blocks the signals that would end the process.
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

// A new file in the target's folder. Where the system supports it, the file has no name until it is
// complete, so that even a kill leaves nothing; otherwise, and from then on, it is removed unless
// renamed.
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
      FailOn(mTarget, "cannot be written", errno);
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
      if (count < 0) FailOn(mTarget, "cannot be written", errno);
      done += static_cast<std::size_t>(count);
    }
  }

  // Takes over mode and owner of the old file, or the mode of a new file if there is none.
  void TakeOver() {
    struct stat old {};
    if (stat(mTarget.c_str(), &old) != 0) {
      const mode_t mask = umask(0);
      umask(mask);
      if (fchmod(mDescriptor, 0666 & ~mask) != 0) FailOn(mTarget, "cannot set the mode", errno);
      return;
    }
    // Without the right to change the owner, the file becomes this user's. That is not an error.
    if (fchown(mDescriptor, old.st_uid, old.st_gid) != 0) errno = 0;
    if (fchmod(mDescriptor, old.st_mode & 07777) != 0)
      FailOn(mTarget, "cannot set the mode", errno);
  }

  void Rename() {
    if (fsync(mDescriptor) != 0) FailOn(mTarget, "cannot be written", errno);
    if (mName.empty()) GiveName();
    if (rename(mName.c_str(), mTarget.c_str()) != 0) FailOn(mTarget, "cannot be replaced", errno);
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
    // mkstemp finds a free name; its empty file is removed at once.
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
    FailOn(mTarget, "cannot be written", errno);
#endif
  }

  const fs::path& mTarget;
  int mDescriptor = -1;
  std::string mName;  // empty while the file has none
};

}  // namespace

bool IsWriteProtected(const fs::path& file) {
  struct stat named {};
  if (stat(file.c_str(), &named) != 0) return false;
  return (named.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0 || access(file.c_str(), W_OK) != 0;
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

}  // namespace zelstoryhost
