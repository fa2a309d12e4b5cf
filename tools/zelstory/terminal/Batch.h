#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace zelstory {

// A signal ended the command after a file was completed.
class Interrupted : public std::runtime_error {
 public:
  Interrupted(int signal, std::size_t done, std::size_t count);

  int Signal() const { return mSignal; }

 private:
  int mSignal;
};

// A run over several files. During the run, the first Ctrl-C (or request to terminate) waits until
// the current file is done; a second one ends the tool at once. A run that takes longer than a
// second shows its progress on standard error when that is a terminal. A run over one file does
// nothing. One run at a time, on the main thread.
class Batch {
 public:
  explicit Batch(std::size_t count);
  ~Batch();
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

  // Call this before each file. Throws Interrupted when a signal has asked for the end.
  void Next();

  // Call this while a file waits for something, with nothing done for it yet. Throws Interrupted
  // likewise; does nothing when no batch runs.
  static void StopIfAsked();

 private:
  class Signals;

  std::size_t mCount;
  std::size_t mStarted = 0;
  std::chrono::steady_clock::time_point mShownLast;
  std::unique_ptr<Signals> mSignals;
};

// Calls `work` with each file and the label to print before its results: "FILE: " for several
// files, empty for one. An Error for one file is printed and does not stop the others. Returns
// kDone, or kRefused if any file failed. Shows progress, and stops after the current file when a
// signal asks for it.
int ForEachFile(const std::vector<std::string>& files,
                const std::function<void(const std::string& file, const std::string& label)>& work);

}  // namespace zelstory
