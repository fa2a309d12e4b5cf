#include <cerrno>
#include <string>
#include <thread>

#include <sys/file.h>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/FolderLock.h>

#include "files/FileTarget.h"
#include "files/posix/OpenFolder.h"

namespace zelstoryhost {
namespace {

std::string DescribeTimeout(std::chrono::milliseconds limit) {
  std::string text = "another process is changing files in this folder";
  if (limit.count() > 0) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(limit).count();
    text += "; gave up after " + std::to_string(seconds) + " s";
  }
  return text;
}

}  // namespace

FolderLock::FolderLock(const FileEntry& file, const Waiting& waiting) {
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::milliseconds kBetweenTries(20);
  constexpr std::chrono::seconds kQuietTime(1);
  const Clock::time_point start = Clock::now();
  for (bool isNoted = false; flock(file.mFolder->Number(), LOCK_EX | LOCK_NB) != 0;) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) return;  // a file system without locks, or a folder that is not there
    const std::string name = FolderOf(file.Name()).string();
    const auto waited = Clock::now() - start;
    if (waited >= waiting.mLimit) throw Error(name, DescribeTimeout(waiting.mLimit));
    if (!isNoted && waiting.mNote && waited > kQuietTime) {
      waiting.mNote(name, "waiting for another process that changes files in this folder");
      isNoted = true;
    }
    if (waiting.mCheck) waiting.mCheck();
    std::this_thread::sleep_for(kBetweenTries);
  }
  mFolder = file.mFolder;
}

FolderLock::~FolderLock() {
  if (mFolder) flock(mFolder->Number(), LOCK_UN);
}

}  // namespace zelstoryhost
