#include <zelstoryparser/HeadingRules.h>

#include "Support.h"
#include "scenexmp/SceneHeading.h"

// Reads a text as a heading, by the exact rule, by the common ones, and by rules that are read from
// the text itself.
namespace {

using namespace zelstoryparser;
using fuzzing::Require;
using fuzzing::Text;

// Every code unit is in one part, and the texts are those of the parts.
void TestParts(const Text& heading, const ParsedHeading& parsed) {
  std::size_t end = 0;
  Text places, time, setting;
  std::vector<Text> qualifiers;
  for (const HeadingPart& part : parsed.mParts) {
    Require(part.mBegin == end && part.mLength > 0, "parts follow one another");
    end += part.mLength;
    Require(end <= heading.size(), "parts lie in the heading");
    const Text text = heading.substr(part.mBegin, part.mLength);
    if (part.mKind == HeadingPartKind::kSetting) setting = text;
    if (part.mKind == HeadingPartKind::kTimeOfDay) time = text;
    if (part.mKind == HeadingPartKind::kQualifier) qualifiers.push_back(text);
    if (part.mKind == HeadingPartKind::kLocation) places = text;
    if (part.mKind == HeadingPartKind::kSubLocation) places += u" - " + text;
  }
  Require(end == heading.size(), "parts cover the heading");
  Require(setting == parsed.mSetting && time == parsed.mTimeOfDay, "setting and time are parts");
  Require(qualifiers == parsed.mQualifiers, "qualifiers are parts");
  const Text& below = parsed.mSubLocation;
  Require(places == parsed.mLocation + (below.empty() ? Text() : u" - " + below), "so are places");
}

void TestExact(const Text& heading) {
  const ParsedHeading parsed = ParseHeading(heading, ExactHeadingRules());
  Text setting, location, time;
  ParseSceneHeading(heading, setting, location, time);
  Require(parsed.mSetting == setting && parsed.mLocation == location && parsed.mTimeOfDay == time,
          "the exact rule is the exact rule");
  std::size_t end = 0;
  for (const HeadingPart& part : parsed.mParts) {
    Require(part.mBegin == end && part.mLength > 0, "its parts follow one another");
    end += part.mLength;
  }
  Require(end == heading.size(), "its parts cover the heading");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(bytes), size);
  HeadingRulesFault fault;
  const auto own = ReadHeadingRules(input, fault);
  Require(own || (fault.mLine > 0 && fault.mColumn > 0 && !fault.mReason.empty()),
          "a refusal has a place and a reason");
  for (const Text& heading : {zelcore::utility::UTF8to16(input), fuzzing::RawText(input)}) {
    TestExact(heading);
    TestParts(heading, ParseHeading(heading, CommonHeadingRules()));
    if (own) TestParts(heading, ParseHeading(heading, *own));
  }
  return 0;
}
