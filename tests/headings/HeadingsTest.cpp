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

// In a heading, "~" stands for the line break of the rules.
TEST(HeadingRules, AreReadFromText) {
  for (const Row& row : Rows(R"(
      setting: STAGE => STAGE. HALL - DAY => | STAGE | HALL | DAY | |
      setting: STAGE~# all~~time: DAY # of day => stage HALL DAY => | stage | HALL | | DAY? |
      use: German, english~time: TEA TIME => INNEN. HALL - LATE TEA-TIME => | INNEN | HALL | | LATE TEA-TIME |
      use: all~separator: | ; => INT. HALL ; DAY => | INT | HALL | | DAY |
      setting: INN.~time: x => INN ON THE HILL => | | INN ON THE HILL | | |
      tme: DAY => => 1:1: unknown key tme: use language, use, setting, time, modifier, clock, qualifier, scene or separator
      ~ setting DAY => => 2:2: a colon is missing after the key
      time: => => 1:6: nothing follows the key time ;; time: Ä, , B => => 1:9: a value is empty
      use: Latin => => 1:6: no language Latin is built in
      time: A B C D E F G H I => => 1:7: a spelling has at most eight words
      time: ... => => 1:7: a spelling needs a letter or digit ;; time: /A => => 1:7: a spelling begins with a letter or digit
      separator: | x => => 1:14: a letter or digit cannot be a separator ;; time: \xFF => => 1:7: is not UTF-8
      language: None => => 1:1: the rules have no settings and no times)")) {
    HeadingRulesFault fault;
    const std::string text = Replaced(row[0], {{"~", "\n"}});
    const std::optional<HeadingRules> rules = ReadHeadingRules(text, fault);
    const std::string place = std::to_string(fault.mLine) + ':' + std::to_string(fault.mColumn);
    EXPECT_EQ(
        rules ? Describe("", ParseHeading(Utf16(row[1]), *rules)) : place + ": " + fault.mReason,
        rules ? ' ' + row[2] : row[2])
        << text;
  }
  HeadingRulesFault fault;
  const HeadingRules rules = ReadHeadingRules("use: Polish\nlanguage: Own", fault).value();
  EXPECT_EQ(rules.Languages(), (std::vector<std::string>{"Polish", "Own"}));
  EXPECT_EQ(CommonHeadingRules().Languages().size(), 11u);
}

}  // namespace
}  // namespace zelstoryparser
