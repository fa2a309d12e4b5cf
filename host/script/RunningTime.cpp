#include <cmath>
#include <cstdio>
#include <cstdlib>

#include <zelstoryhost/RunningTime.h>

namespace zelstoryhost {
namespace {

// A page of a screenplay customarily runs for a minute; it has about this many words.
constexpr std::int64_t kWordsPerPage = 180;

// A script's own durations set the rate, since scripts differ in pace. Rates outside this range
// come from placeholders or mistakes.
constexpr double kSlowestRate = 10;
constexpr double kFastestRate = 1000;

bool HasDuration(const SceneFacts& scene) {
  return scene.mSeconds.value_or(-1) >= 0;
}

// Words per minute, or 0 if less than a page has durations, too little to measure.
double MeasuredRate(const std::vector<SceneFacts>& scenes) {
  std::int64_t words = 0;
  std::int64_t seconds = 0;
  for (const SceneFacts& scene : scenes) {
    if (!HasDuration(scene)) continue;
    words += scene.mWords;
    seconds += *scene.mSeconds;
  }
  if (words < kWordsPerPage || seconds == 0) return 0;
  const double rate = static_cast<double>(words) * 60 / static_cast<double>(seconds);
  return rate < kSlowestRate || rate > kFastestRate ? 0 : rate;
}

RunningTime TimeOf(const SceneFacts& scene, double wordsPerMinute) {
  if (HasDuration(scene)) return {*scene.mSeconds, 0, true, false};
  const double seconds = std::ceil(static_cast<double>(scene.mWords) * 60 / wordsPerMinute);
  return {0, static_cast<std::int64_t>(seconds), false, true};
}

}  // namespace

std::string DescribeDuration(std::int64_t seconds) {
  char text[40];
  std::snprintf(text, sizeof text, "%s%lld:%02lld:%02lld", seconds < 0 ? "-" : "",
                std::llabs(seconds / 3600), std::llabs(seconds / 60 % 60),
                std::llabs(seconds % 60));
  return text;
}

void RunningTime::Add(const RunningTime& other) {
  mKnown += other.mKnown;
  mEstimated += other.mEstimated;
  mHasKnown = mHasKnown || other.mHasKnown;
  mHasEstimated = mHasEstimated || other.mHasEstimated;
}

std::string RunningTime::Describe() const {
  std::string time = DescribeDuration(Seconds());
  if (!mHasEstimated) return time;
  if (!mHasKnown) return time + " (estimated)";
  return time + " (of which " + DescribeDuration(mEstimated) + " estimated)";
}

RunningTimes ReadRunningTimes(const std::vector<SceneFacts>& scenes) {
  RunningTimes times;
  const double measured = MeasuredRate(scenes);
  times.mIsRateMeasured = measured > 0;
  times.mWordsPerMinute = times.mIsRateMeasured ? measured : static_cast<double>(kWordsPerPage);
  for (const SceneFacts& scene : scenes) {
    times.mScenes.push_back(TimeOf(scene, times.mWordsPerMinute));
    times.mTotal.Add(times.mScenes.back());
  }
  return times;
}

}  // namespace zelstoryhost
