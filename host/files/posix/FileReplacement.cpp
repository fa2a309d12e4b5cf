#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <random>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Files.h>

#include "files/FileTarget.h"
#include "files/posix/OpenFolder.h"
#include "files/posix/Permissions.h"

namespace zelstoryhost {
namespace {

constexpr mode_t kModeOfNewFiles = 0666;  // less the process's mask
constexpr const char* kExists = "exists already";

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

// A name that is as good as surely free, and short enough for every folder.
std::string HiddenName() {
  std::random_device random;
  const std::uint64_t number = std::uint64_t{random()} << 32 | random();
  char name[40];
  std::snprintf(name, sizeof name, ".zelstory-%016llx", static_cast<unsigned long long>(number));
  return name;
}

// Whether a nameless file can be given a name later.
bool CanNameLater() {
  static const bool can = access("/proc/self/fd", X_OK) == 0;
  return can;
}

// A new file in a folder. Where the system supports it, the file has no name until it is complete,
// so that even a kill leaves nothing; otherwise, and from then on, it is removed unless renamed.
class NewFile {
 public:
  NewFile(const OpenFolder& folder, mode_t mode, const std::string& nameInErrors)
      : mFolder(folder), mNameInErrors(nameInErrors) {
#if defined(O_TMPFILE)
    const int flags = O_TMPFILE | O_WRONLY | O_CLOEXEC;
    if (CanNameLater()) mFile = Descriptor(openat(mFolder.Number(), ".", flags, mode));
    if (mFile) return;
#endif
    std::string name = HiddenName();
    mFile = Descriptor(
        openat(mFolder.Number(), name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, mode));
    if (!mFile) FailOn(mNameInErrors, "cannot be written", errno);
    mName = std::move(name);
  }

  ~NewFile() {
    if (!mName.empty()) unlinkat(mFolder.Number(), mName.c_str(), 0);
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  const Descriptor& File() const {
    return mFile;
  }

  void Write(const std::string& bytes) const {
    for (std::size_t done = 0; done < bytes.size();) {
      const ssize_t count = write(mFile.Number(), bytes.data() + done, bytes.size() - done);
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) FailOn(mNameInErrors, "cannot be written", errno);
      done += static_cast<std::size_t>(count);
    }
  }

  void Rename(const std::string& name) {
    Flush();
    if (mName.empty()) GiveName(HiddenName());
    if (renameat(mFolder.Number(), mName.c_str(), mFolder.Number(), name.c_str()) != 0) {
      FailOn(mNameInErrors, "cannot be replaced", errno);
    }
    mName.clear();
    fsync(mFolder.Number());  // some file systems refuse; the file itself is safe by now
  }

  // Gives the file a name that is free.
  void TakeFreeName(const std::string& name) {
    const std::string hidden = mName;
    if (!hidden.empty() && !CanLink()) return Rename(name);
    Flush();
    GiveName(name);
    if (!hidden.empty()) unlinkat(mFolder.Number(), hidden.c_str(), 0);
    mName.clear();
    fsync(mFolder.Number());
  }

 private:
  // Whether the file system has hard links. Some that people carry about have none.
  bool CanLink() const {
    const std::string name = HiddenName();
    const int folder = mFolder.Number();
    return linkat(folder, mName.c_str(), folder, name.c_str(), 0) == 0 &&
           unlinkat(folder, name.c_str(), 0) == 0;
  }

  void Flush() {
    if (fsync(mFile.Number()) != 0) FailOn(mNameInErrors, "cannot be written", errno);
  }

  void GiveName(std::string name) {
    const int folder = mName.empty() ? AT_FDCWD : mFolder.Number();
    const std::string old =
        mName.empty() ? "/proc/self/fd/" + std::to_string(mFile.Number()) : mName;
    if (linkat(folder, old.c_str(), mFolder.Number(), name.c_str(), AT_SYMLINK_FOLLOW) != 0) {
      if (errno == EEXIST) throw Error(mNameInErrors, kExists, ErrorKind::kForeignFile);
      FailOn(mNameInErrors, "cannot be written", errno);
    }
    mName = std::move(name);  // takes no memory: the file must be known by now
  }

  const OpenFolder& mFolder;
  const std::string& mNameInErrors;
  Descriptor mFile;
  std::string mName;  // empty while the file has none
};

}  // namespace

void FileEntry::Replace(const std::string& bytes, HardLinks hardLinks) const {
  if (mFolder->Error() != 0) FailOn(mName, "cannot be written", mFolder->Error());
  std::optional<OldFile> old;
  if (const std::optional<struct stat> status = mFolder->StatusOf(Leaf())) {
    const bool isReplacedLink = S_ISLNK(status->st_mode) && mLinks == Links::kReplace;
    if (S_ISDIR(status->st_mode)) throw Error(mName, "is a directory");
    if (!S_ISREG(status->st_mode) && !isReplacedLink) throw Error(mName, "is not a regular file");
    if (hardLinks == HardLinks::kRefuse) RefuseOtherNames();
    if (!isReplacedLink) old = OldFile{*status, mFolder->OpenToRead(Leaf())};
  }
  const SignalsHeld held;
  NewFile file(*mFolder, old ? NarrowMode(*old) : kModeOfNewFiles, mName);
  file.Write(bytes);
  if (old) TakeOver(*old, file.File());
  file.Rename(Leaf());
}

void FileEntry::Create(const std::string& bytes) const {
  if (mFolder->Error() != 0) FailOn(mName, "cannot be written", mFolder->Error());
  if (mFolder->StatusOf(Leaf())) throw Error(mName, kExists, ErrorKind::kForeignFile);
  const SignalsHeld held;
  NewFile file(*mFolder, kModeOfNewFiles, mName);
  file.Write(bytes);
  file.TakeFreeName(Leaf());
}

}  // namespace zelstoryhost
