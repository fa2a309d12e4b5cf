#include "terminal/Batch.h"

#include <array>
#include <csignal>
#include <iostream>

#include <zelstoryhost/Error.h>

#include "options/CommandLine.h"
#include "terminal/Console.h"

namespace zelstory {

using zelstoryhost::Error;

namespace {

volatile std::sig_atomic_t theSignal = 0;
const Batch* theBatch = nullptr;

extern "C" void RememberSignal(int signal) {
  theSignal = signal;
  std::signal(signal, SIG_DFL);  // a second signal ends the tool at once
}

constexpr std::array kEndingSignals {
  SIGINT, SIGTERM,
#if defined(SIGHUP)
      SIGHUP,
#endif
};

constexpr std::chrono::seconds kQuietTime(1);
constexpr std::chrono::milliseconds kRenewal(100);

}  // namespace

// Signals that were ignored before, as under nohup, stay ignored.
class Batch::Signals {
 public:
  Signals() {
    theSignal = 0;
    for (std::size_t i = 0; i < kEndingSignals.size(); ++i) {
      mBefore[i] = std::signal(kEndingSignals[i], RememberSignal);
      if (mBefore[i] == SIG_IGN) std::signal(kEndingSignals[i], SIG_IGN);
    }
  }
  ~Signals() {
    for (std::size_t i = 0; i < kEndingSignals.size(); ++i) {
      std::signal(kEndingSignals[i], mBefore[i]);
    }
  }
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

 private:
  using Handler = void (*)(int);
  std::array<Handler, kEndingSignals.size()> mBefore{};
};

Interrupted::Interrupted(int signal, std::size_t done, std::size_t count)
    : std::runtime_error("zelstory: interrupted after " + std::to_string(done) + " of " +
                         std::to_string(count) + " files; the others are unchanged"),
      mSignal(signal) {}

Batch::Batch(std::size_t count)
    : mCount(count),
      mShownLast(std::chrono::steady_clock::now() + kQuietTime - kRenewal),
      mSignals(count > 1 ? std::make_unique<Signals>() : nullptr) {
  if (mSignals) theBatch = this;
}

Batch::~Batch() {
  theBatch = nullptr;
  HideProgress();
}

void Batch::StopIfAsked() {
  if (theBatch == nullptr || theSignal == 0) return;
  throw Interrupted(theSignal, theBatch->mStarted - 1, theBatch->mCount);
}

void Batch::Next() {
  if (!mSignals) return;
  if (theSignal != 0) throw Interrupted(theSignal, mStarted, mCount);
  ++mStarted;
  std::cout.flush();  // so that a reader sees each result as soon as it exists
  const auto now = std::chrono::steady_clock::now();
  if (now - mShownLast < kRenewal) return;
  mShownLast = now;
  ShowProgress(std::to_string(mStarted) + " of " + std::to_string(mCount));
}

int ForEachFile(
    const std::vector<std::string>& files,
    const std::function<void(const std::string& file, const std::string& label)>& work) {
  int status = kDone;
  Batch batch(files.size());
  for (const std::string& file : files) {
    batch.Next();
    try {
      work(file, files.size() > 1 ? file + ": " : "");
    } catch (const zelstoryhost::Error& error) {
      PrintError(error);
      status = kRefused;
    }
  }
  return status;
}

}  // namespace zelstory
