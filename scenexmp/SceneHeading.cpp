#include "scenexmp/SceneHeading.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "text/StringTokenizer.h"

namespace zelstoryparser {
namespace {

using Word = std::u16string_view;

constexpr std::array<Word, 17> kSettingPrefixes{
    u"INT",      u"EXT",        u"I/E",    u"E/I", u"INT/EXT", u"EXT/INT",
    u"P.O.V.",   u"INN",        u"AUSS",   u"I/A", u"A/I",     u"INN/AUSS",
    u"AUSS/INN", u"SUBJEKTIVE", u"P.D.V.", u"EST", u"INT/EST"};

constexpr std::array<Word, 5> kTimesOfDay{u"Day", u"Night", u"Evening", u"Morning", u"Late Night"};

constexpr Word kBlanks = u" \t";
constexpr char16_t kDash = u'-';
constexpr char16_t kFullStop = u'.';

char16_t FoldCase(char16_t unit) {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
}

bool EqualIgnoringCase(Word left, Word right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char16_t l, char16_t r) { return FoldCase(l) == FoldCase(r); });
}

UTF16String WithoutLeadingBlanks(Word text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  return begin == Word::npos ? UTF16String() : UTF16String(text.substr(begin));
}

UTF16String WithoutTrailingBlanks(Word text) {
  return UTF16String(text.substr(0, text.find_last_not_of(kBlanks) + 1));
}

// Returns the longest entry of a table that matches; empty if none does.
template <typename Table, typename Test>
Word LongestMatch(const Table& table, Test matches) {
  Word longest;
  for (const Word entry : table) {
    if (entry.size() > longest.size() && matches(entry)) longest = entry;
  }
  return longest;
}

Word FindSetting(Word heading) {
  return LongestMatch(kSettingPrefixes, [heading](Word entry) {
    return EqualIgnoringCase(heading.substr(0, entry.size()), entry);
  });
}

// Returns the part after a recognised setting; one full stop belongs to the setting.
UTF16String RestBehindSetting(Word rest) {
  if (!rest.empty() && rest.front() == kFullStop) rest.remove_prefix(1);
  return WithoutLeadingBlanks(rest);
}

// Without a recognised setting, the text before the first full stop is the setting.
UTF16String RestBehindFirstStop(const UTF16String& heading, UTF16String& setting) {
  StringTokenizer parts(heading, UTF16String(1, kFullStop), true);
  if (parts.HasMoreTokens()) setting = WithoutLeadingBlanks(parts.NextToken());
  return WithoutLeadingBlanks(parts.RemainingText());
}

}  // namespace

std::size_t LengthOfKnownSetting(const UTF16String& heading) {
  return FindSetting(heading).size();
}

bool IsKnownTimeOfDay(const UTF16String& text) {
  return std::any_of(kTimesOfDay.begin(), kTimesOfDay.end(),
                     [&text](Word entry) { return EqualIgnoringCase(entry, text); });
}

bool EndsWithIgnoringCase(const UTF16String& text, const UTF16String& word) {
  if (word.empty() || word.size() > text.size()) return false;
  return EqualIgnoringCase(Word(text).substr(text.size() - word.size()), word);
}

void SplitLocationAndTimeOfDay(const UTF16String& text, UTF16String& location,
                               UTF16String& timeOfDay) {
  const std::size_t dash = text.find(kDash, 1);
  if (dash != UTF16String::npos) {
    timeOfDay = WithoutLeadingBlanks(Word(text).substr(dash + 1));
    location = WithoutTrailingBlanks(Word(text).substr(0, dash));
  }
  if (timeOfDay.empty()) {
    const Word word = LongestMatch(kTimesOfDay, [&text](Word entry) {
      return EndsWithIgnoringCase(text, UTF16String(entry));
    });
    if (!word.empty()) timeOfDay = word;
    // The one character before the word is removed with it, whatever it is.
    if (!word.empty() && text.size() > word.size()) {
      location = text.substr(0, text.size() - word.size() - 1);
    }
  }
  if (location.empty()) location = text;
}

void ParseSceneHeading(const UTF16String& heading, UTF16String& setting, UTF16String& location,
                       UTF16String& timeOfDay) {
  const Word entry = FindSetting(heading);
  const UTF16String rest = entry.empty() ? RestBehindFirstStop(heading, setting)
                                         : RestBehindSetting(Word(heading).substr(entry.size()));
  if (!rest.empty()) SplitLocationAndTimeOfDay(rest, location, timeOfDay);
  if (!entry.empty()) setting = entry;
}

}  // namespace zelstoryparser
