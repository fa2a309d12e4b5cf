#include <cerrno>
#include <chrono>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <zelstoryhost/Error.h>
#include <zelstoryhost/FolderLock.h>

#include "files/FileTarget.h"

namespace zelstoryhost {

FolderLock::FolderLock(const std::filesystem::path& file, Waiting waiting, const Note& note) {
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::milliseconds kBetweenTries(20);
  constexpr std::chrono::seconds kQuietTime(1);
  const std::filesystem::path folder = FolderOf(TargetOf(file));
  mDescriptor = open(folder.c_str(), O_RDONLY | O_CLOEXEC);
  if (mDescriptor < 0) return;  // reading or writing the file will report why
  const Clock::time_point start = Clock::now();
  for (bool isNoted = false; flock(mDescriptor, LOCK_EX | LOCK_NB) != 0;) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) return;  // a file system without locks
    if (waiting == Waiting::kNever) {
      close(mDescriptor);
      throw Error(folder.string(), "another process is changing files in this folder");
    }
    if (!isNoted && note && Clock::now() - start > kQuietTime) {
      note(folder.string(), "waiting for another process that changes files in this folder");
      isNoted = true;
    }
    std::this_thread::sleep_for(kBetweenTries);
  }
}

FolderLock::~FolderLock() {
  if (mDescriptor >= 0) close(mDescriptor);
}

}  // namespace zelstoryhost
