#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "SceneFacts.h"

namespace zelstory {

// How long one or more scenes run, in seconds: by their durations, and by their words where they
// have none. A duration below zero counts as none.
struct RunningTime {
  std::int64_t mKnown = 0;
  std::int64_t mEstimated = 0;
  bool mHasKnown = false;  // whether any scene has a duration, even one of zero seconds
  bool mHasEstimated = false;

  std::int64_t Seconds() const { return mKnown + mEstimated; }
  void Add(const RunningTime& other);

  // "1:32:10", "1:32:10 (of which 0:12:30 estimated)", or "0:12:30 (estimated)".
  std::string Describe() const;
};

struct RunningTimes {
  std::vector<RunningTime> mScenes;  // in order
  RunningTime mTotal;
  double mWordsPerMinute = 0;    // of the estimates
  bool mIsRateMeasured = false;  // on the scenes that have a duration
};

RunningTimes ReadRunningTimes(const std::vector<SceneFacts>& scenes);

}  // namespace zelstory
