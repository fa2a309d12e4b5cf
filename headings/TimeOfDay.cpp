#include "headings/TimeOfDay.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace zelstoryparser {
namespace {

bool IsWord(const HeadingTokens& tokens, std::size_t at) {
  return at < tokens.size() && tokens[at].mKind == TokenKind::kWord;
}

bool IsKind(const HeadingTokens& tokens, std::size_t at, TokenKind kind) {
  return at < tokens.size() && tokens[at].mKind == kind;
}

// Whether no blank is between two tokens.
bool AreTight(const HeadingTokens& tokens, std::size_t left) {
  return left + 1 < tokens.size() && tokens[left].mEnd == tokens[left + 1].mBegin;
}

std::size_t CountDigits(std::string_view text) {
  return std::min(text.find_first_not_of("0123456789"), text.size());
}

bool HasDigits(const HeadingTokens& tokens, std::size_t at, std::size_t least, std::size_t most) {
  if (!IsWord(tokens, at)) return false;
  const std::string& text = tokens[at].mText;
  return CountDigits(text) == text.size() && least <= text.size() && text.size() <= most;
}

// Whether a word is a clock time by itself: 6am, 18h, 18h30.
bool IsClockWord(std::string_view text) {
  const std::size_t digits = CountDigits(text);
  if (digits < 1 || digits > 2) return false;
  const std::string_view rest = text.substr(digits);
  if (rest == "am" || rest == "pm" || rest == "h") return true;
  return rest.size() == 3 && rest[0] == 'h' && CountDigits(rest.substr(1)) == 2;
}

// A number of up to four digits, or a small ordinal: 2, 1987, 3rd.
bool IsNumberWord(std::string_view text) {
  constexpr std::array<std::string_view, 8> kEndings{"", "st", "nd", "rd", "th", "e", "er", "eme"};
  const std::size_t digits = CountDigits(text);
  if (digits < 1 || digits > 4) return false;
  const std::string_view ending = text.substr(digits);
  return std::find(kEndings.begin(), kEndings.end(), ending) != kEndings.end();
}

// The end of minutes behind an hour, as in 10:30, 10:30:15 and 10:30pm; `hour` + 1 if there are
// none.
std::size_t EndOfMinutes(const HeadingTokens& tokens, std::size_t hour, TokenKind mark) {
  std::size_t end = hour + 1;
  while (IsKind(tokens, end, mark) && AreTight(tokens, end - 1) && AreTight(tokens, end) &&
         IsWord(tokens, end + 1)) {
    const std::string_view minutes = tokens[end + 1].mText;
    const std::string_view rest = minutes.substr(std::min<std::size_t>(2, minutes.size()));
    if (CountDigits(minutes) != 2 || (!rest.empty() && rest != "am" && rest != "pm")) break;
    end += 2;
  }
  return end;
}

TimeUnit NumberAt(const HeadingTokens& tokens, std::size_t at) {
  if (!IsWord(tokens, at)) return {};
  const std::string& text = tokens[at].mText;
  if (IsClockWord(text)) return {at, at + 1, true};
  if (HasDigits(tokens, at, 1, 2)) {
    const std::size_t end = EndOfMinutes(tokens, at, TokenKind::kColon);
    if (end > at + 1) return {at, end, true};
    return {at, EndOfMinutes(tokens, at, TokenKind::kStop), false, true};
  }
  if (IsNumberWord(text)) return {at, at + 1, false, true};
  return {};
}

// The unit at a token; it ends at 0 if there is none.
TimeUnit UnitAt(const HeadingTables& tables, const HeadingTokens& tokens, std::size_t at,
                std::size_t end) {
  const TimeUnit number = NumberAt(tokens, at);
  if (number.mEnd > 0 && number.mEnd <= end) return number;
  const SpellingMatch match =
      MatchSpelling(tables, tokens, at, end, kTimeWord | kTimeModifier | kClockWord);
  const bool makesTime = (match.mClasses & kTimeWord) != 0;
  const bool isClock = (match.mClasses & kClockWord) != 0;
  return {at, match.mEnd, makesTime, false, isClock};
}

// Appends the unit at a token, and moves behind it; returns false if there is none. A word of the
// clock beside a number makes a time.
bool TakeUnit(const HeadingTables& tables, const HeadingTokens& tokens, std::size_t& at,
              std::size_t end, std::vector<TimeUnit>& units) {
  TimeUnit unit = UnitAt(tables, tokens, at, end);
  if (unit.mEnd == 0) return false;
  if (!units.empty()) {
    const TimeUnit& last = units.back();
    unit.mMakesTime |= (unit.mIsClock && last.mIsNumber) || (unit.mIsNumber && last.mIsClock);
  }
  units.push_back(unit);
  at = unit.mEnd;
  return true;
}

bool JoinsUnits(TokenKind kind) {
  return kind == TokenKind::kStop || kind == TokenKind::kHyphen || kind == TokenKind::kSlash ||
         kind == TokenKind::kComma;
}

}  // namespace

SpellingMatch MatchSpelling(const HeadingTables& tables, const HeadingTokens& tokens,
                            std::size_t begin, std::size_t end, unsigned classes) {
  SpellingMatch match;
  std::size_t place = HeadingTables::kRoot;
  for (std::size_t at = begin; at < end; ++at) {
    const HeadingToken& token = tokens[at];
    const bool isSkipped = token.mKind == TokenKind::kStop || token.mKind == TokenKind::kHyphen;
    if (isSkipped && at > begin) continue;
    if (token.mSymbol == HeadingTables::kUnknown) break;
    place = tables.Next(place, token.mSymbol);
    if (place == HeadingTables::kNowhere) break;
    const bool hasStop =
        IsKind(tokens, at + 1, TokenKind::kStop) || IsKind(tokens, at + 1, TokenKind::kSlash);
    const HeadingTables::Place& found = tables.At(place);
    const unsigned here = (found.mClasses | (hasStop ? found.mStopClasses : 0)) & classes;
    if (here != 0) match = {at + 1, here};
  }
  return match;
}

bool EndsInitialism(const HeadingTokens& tokens, std::size_t stop) {
  const auto isLetter = [&tokens](std::size_t at) {
    return IsWord(tokens, at) && tokens[at].mEnd == tokens[at].mBegin + 1;
  };
  return stop >= 3 && IsKind(tokens, stop, TokenKind::kStop) && isLetter(stop - 1) &&
         IsKind(tokens, stop - 2, TokenKind::kStop) && isLetter(stop - 3) &&
         AreTight(tokens, stop - 1);
}

std::vector<TimeUnit> UnitsFrom(const HeadingTables& tables, const HeadingTokens& tokens,
                                std::size_t begin, std::size_t end) {
  std::vector<TimeUnit> units;
  for (std::size_t at = begin; at < end;) {
    if (TakeUnit(tables, tokens, at, end, units)) continue;
    if (at == begin || !JoinsUnits(tokens[at].mKind)) break;
    ++at;
  }
  return units;
}

std::vector<TimeUnit> UnitsUpTo(const HeadingTables& tables, const HeadingTokens& tokens,
                                std::size_t begin, std::size_t end) {
  std::vector<TimeUnit> units;
  for (std::size_t at = begin; at < end;) {
    if (TakeUnit(tables, tokens, at, end, units)) continue;
    if (!JoinsUnits(tokens[at].mKind)) units.clear();
    ++at;
  }
  // A number at the beginning belongs to what stands before it, as in STUDIO 54 NIGHT.
  const auto belongs = [&](const TimeUnit& unit) {
    const bool isApart = unit.mBegin > 0 && JoinsUnits(tokens[unit.mBegin - 1].mKind);
    const bool isClock = &unit != &units.back() && (&unit)[1].mIsClock;
    return !unit.mIsNumber || isApart || isClock;
  };
  units.erase(units.begin(), std::find_if(units.begin(), units.end(), belongs));
  return units;
}

bool MakeTime(const std::vector<TimeUnit>& units) {
  return std::any_of(units.begin(), units.end(),
                     [](const TimeUnit& unit) { return unit.mMakesTime; });
}

}  // namespace zelstoryparser
