#include "scenexmp/ParseHeading.h"

#include <algorithm>
#include <utility>

#include "headings/HeadingParts.h"
#include "headings/WordHeading.h"
#include "scenexmp/SceneHeading.h"

namespace zelstoryparser {
namespace {

// Where the exact rule begins to look for location and time.
std::size_t EndOfExactSetting(const UTF16String& heading, std::size_t known, std::size_t setting) {
  std::size_t end = setting;
  if (known > 0) {
    if (end < heading.size() && heading[end] == u'.') ++end;
  } else {
    end = std::min(heading.find_first_not_of(u'.', end), heading.size());
  }
  return std::min(heading.find_first_not_of(u" \t", end), heading.size());
}

ParsedHeading ParseExactly(const UTF16String& heading) {
  ParsedHeading parsed;
  ParseSceneHeading(heading, parsed.mSetting, parsed.mLocation, parsed.mTimeOfDay);
  const std::size_t known = LengthOfKnownSetting(heading);
  parsed.mIsSettingKnown = known > 0;
  parsed.mIsTimeOfDayKnown = IsKnownTimeOfDay(parsed.mTimeOfDay);

  const std::size_t stop = heading.find(u'.');
  const std::size_t settingEnd = known > 0 ? known : stop == UTF16String::npos ? 0 : stop;
  const std::size_t rest = EndOfExactSetting(heading, known, settingEnd);
  const std::size_t time = heading.size() - parsed.mTimeOfDay.size();  // it ends the heading
  const std::size_t location = std::min(parsed.mLocation.size(), time - std::min(rest, time));
  AppendPart({HeadingPartKind::kSetting, settingEnd - parsed.mSetting.size(),
              parsed.mSetting.size(), parsed.mIsSettingKnown},
             parsed.mParts);
  AppendPart({HeadingPartKind::kLocation, rest, location, false}, parsed.mParts);
  AppendPart(
      {HeadingPartKind::kTimeOfDay, time, parsed.mTimeOfDay.size(), parsed.mIsTimeOfDayKnown},
      parsed.mParts);
  return parsed;
}

}  // namespace

ParsedHeading ParseHeading(const UTF16String& heading, const HeadingRules& rules) {
  return rules.IsExact() ? ParseExactly(heading) : ParseByWords(heading, *rules.Tables());
}

void SplitHeading(const UTF16String& heading, const HeadingRules& rules, UTF16String& setting,
                  UTF16String& location, UTF16String& timeOfDay) {
  if (rules.IsExact()) return ParseSceneHeading(heading, setting, location, timeOfDay);
  ParsedHeading parsed = ParseHeading(heading, rules);
  setting = std::move(parsed.mSetting);
  location = std::move(parsed.mLocation);
  if (!parsed.mSubLocation.empty()) location += u" - " + parsed.mSubLocation;
  timeOfDay = std::move(parsed.mTimeOfDay);
}

}  // namespace zelstoryparser
