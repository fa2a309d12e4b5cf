#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace zelstory {

// Ends a command between two files because a signal asked for it.
class Interrupted : public std::runtime_error {
 public:
  Interrupted(int signal, std::size_t done, std::size_t count);

  int Signal() const { return mSignal; }

 private:
  int mSignal;
};

// A run over several files. While it lives, the first Ctrl-C (or request to terminate) waits for
// the file in work; a second one ends the tool at once. A run that takes longer than a second shows
// its progress on standard error when that is a terminal. With one file it does nothing. One run at
// a time, on the main thread.
class Batch {
 public:
  explicit Batch(std::size_t count);
  ~Batch();
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

  // To be called before each file. Throws Interrupted when the files in front of it were the last
  // to be done.
  void Next();

 private:
  class Signals;

  std::size_t mCount;
  std::size_t mStarted = 0;
  std::chrono::steady_clock::time_point mShownLast;
  std::unique_ptr<Signals> mSignals;
};

// Runs `work` on each file with the label that its results begin with: "FILE: " for several files,
// empty for one. The refusal of one file is printed and does not stop the others. Returns kDone, or
// kRefused when any was refused. Shows progress, and ends between two files when a signal asks for
// it.
int ForEachFile(const std::vector<std::string>& files,
                const std::function<void(const std::string& file, const std::string& label)>& work);

}  // namespace zelstory
