#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <zelstoryhost/Export.h>
#include <zelstoryhost/SceneFacts.h>

// How long scenes run. All functions may be called from several threads at once.
namespace zelstoryhost {

// How long one or more scenes run, in seconds: by their durations, or estimated from their words
// where they have none. A duration below zero counts as none.
struct ZELSTORYHOST_API RunningTime {
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
  double mWordsPerMinute = 0;    // the rate of the estimates
  bool mIsRateMeasured = false;  // from the scenes that have a duration, else a customary rate
};

// Seconds as h:mm:ss.
ZELSTORYHOST_API std::string DescribeDuration(std::int64_t seconds);

ZELSTORYHOST_API RunningTimes ReadRunningTimes(const std::vector<SceneFacts>& scenes);

}  // namespace zelstoryhost
