#include <fstream>

#include <gtest/gtest.h>
#include <utf8proc.h>

#include <zelstoryparser/HeadingRules.h>

#include "support/Table.h"

namespace zelstoryparser {
namespace {

// A heading's parts in the notation of headings.txt.
std::string Describe(const std::string& heading, const ParsedHeading& parsed) {
  std::string qualifiers;
  for (const UTF16String& qualifier : parsed.mQualifiers) {
    qualifiers += (qualifiers.empty() ? "" : "; ") + Utf8(qualifier);
  }
  const std::string guessed = parsed.mIsTimeOfDayKnown || parsed.mTimeOfDay.empty() ? "" : "?";
  std::string line = heading;
  for (const std::string& part :
       {Utf8(parsed.mSetting), Utf8(parsed.mLocation), Utf8(parsed.mSubLocation),
        Utf8(parsed.mTimeOfDay) + guessed, qualifiers}) {
    line += part.empty() ? " |" : " | " + part;
  }
  return line;
}

std::string Decomposed(const std::string& text) {
  utf8proc_uint8_t* const bytes =
      utf8proc_NFD(reinterpret_cast<const utf8proc_uint8_t*>(text.c_str()));
  const std::string decomposed(reinterpret_cast<const char*>(bytes));
  std::free(bytes);
  return decomposed;
}

TEST(CommonHeadings, AreSplitAsTheTableSays) {
  std::ifstream table(ZELSTORY_HEADINGS);
  int rows = 0;
  for (std::string line; std::getline(table, line);) {
    if (line.starts_with("# ")) continue;
    ++rows;
    for (const std::string& expected : {line, Decomposed(line)}) {
      const std::string heading = expected.substr(0, expected.find(" | "));
      EXPECT_EQ(Describe(heading, ParseHeading(Utf16(heading), CommonHeadingRules())), expected);
    }
  }
  EXPECT_GE(rows, 150);
}

}  // namespace
}  // namespace zelstoryparser
