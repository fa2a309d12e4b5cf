#include "headings/HeadingFrame.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "headings/TimeOfDay.h"

namespace zelstoryparser {
namespace {

// Whether a text of folded ASCII may number a scene: 12, 12a, a12, 12ab.
bool IsSceneNumber(std::string_view text) {
  constexpr std::size_t kMostLetters = 2;
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  const auto isLetter = [](char c) { return c >= 'a' && c <= 'z'; };
  const auto digits = std::count_if(text.begin(), text.end(), isDigit);
  const auto letters = std::count_if(text.begin(), text.end(), isLetter);
  return digits > 0 && letters <= static_cast<std::ptrdiff_t>(kMostLetters) &&
         digits + letters == static_cast<std::ptrdiff_t>(text.size());
}

class FrameFinder {
 public:
  FrameFinder(const HeadingTables& tables, const HeadingTokens& tokens)
      : mTables(tables), mTokens(tokens), mRest{0, tokens.size()} {}

  HeadingFrame Run() {
    DropMarkedNumbers();
    const TokenRange number = LeadingNumber();
    FindSetting();
    DropTrailingNumber(number);
    mFrame.mAfter.mEnd = mRest.mEnd;
    return std::move(mFrame);
  }

 private:
  bool Is(std::size_t at, TokenKind kind) const {
    return at < mRest.mEnd && mTokens[at].mKind == kind;
  }
  bool IsTight(std::size_t left) const {
    return left + 1 < mRest.mEnd && mTokens[left].mEnd == mTokens[left + 1].mBegin;
  }
  void Add(HeadingPartKind kind, std::size_t begin, std::size_t end) {
    mFrame.mPieces.push_back({kind, begin, end, true});
  }

  // #12A# at either end.
  void DropMarkedNumbers() {
    constexpr std::size_t kMostTokens = 5;  // #12-A#
    if (Is(mRest.mBegin, TokenKind::kHash)) {
      for (std::size_t i = 2; i < kMostTokens && i < mRest.mEnd; ++i) {
        if (!Is(i, TokenKind::kHash)) continue;
        Add(HeadingPartKind::kSceneNumber, 0, i + 1);
        mRest.mBegin = i + 1;
        break;
      }
    }
    if (mRest.mEnd == 0 || !Is(mRest.mEnd - 1, TokenKind::kHash)) return;
    for (std::size_t i = 2; i < kMostTokens && i + mRest.mBegin < mRest.mEnd; ++i) {
      const std::size_t begin = mRest.mEnd - 1 - i;
      if (!Is(begin, TokenKind::kHash)) continue;
      Add(HeadingPartKind::kSceneNumber, begin, mRest.mEnd);
      mRest.mEnd = begin;
      break;
    }
  }

  // Returns the end of a scene number that begins at a token; 0 if there is none.
  std::size_t EndOfNumber(std::size_t at) const {
    if (!Is(at, TokenKind::kWord) || !IsSceneNumber(mTokens[at].mText)) return 0;
    const bool hasPart = (Is(at + 1, TokenKind::kHyphen) || Is(at + 1, TokenKind::kStop)) &&
                         IsTight(at) && IsTight(at + 1) && Is(at + 2, TokenKind::kWord);
    if (!hasPart) return at + 1;
    const HeadingToken& part = mTokens[at + 2];
    return part.mEnd == part.mBegin + 1 || IsSceneNumber(part.mText) ? at + 3 : at + 1;
  }

  // A number at the beginning counts if a setting follows: 12A INT., SCENE 12: INT.
  TokenRange LeadingNumber() {
    const std::size_t begin = mRest.mBegin;
    const std::size_t word = MatchSpelling(mTables, mTokens, begin, mRest.mEnd, kSceneWord).mEnd;
    std::size_t number = std::max(begin, word);
    while (word > 0 && Is(number, TokenKind::kStop)) ++number;
    const std::size_t end = EndOfNumber(number);
    if (end == 0) return {};
    std::size_t next = end;
    const auto isMark = [this](std::size_t at) {
      return Is(at, TokenKind::kStop) || Is(at, TokenKind::kClose) || Is(at, TokenKind::kColon) ||
             Is(at, TokenKind::kSeparator);
    };
    while (isMark(next)) ++next;
    if (EndOfSetting(next) == 0) return {};
    Add(HeadingPartKind::kSceneNumber, begin, end);
    mRest.mBegin = next;
    return {number, end};
  }

  // Returns the end of one setting with its full stop; 0 if there is none at the token. A hyphen
  // binds a word to the next one: INTERIOR-DESIGN is no setting.
  std::size_t EndOfOneSetting(std::size_t at) const {
    std::size_t end = MatchSpelling(mTables, mTokens, at, mRest.mEnd, kSettingWord).mEnd;
    if (end == 0) return 0;
    if (Is(end, TokenKind::kHyphen)) {
      const unsigned classes = kSettingWord | kTimeWord;
      if (MatchSpelling(mTables, mTokens, end + 1, mRest.mEnd, classes).mEnd == 0) return 0;
    }
    return Is(end, TokenKind::kStop) ? end + 1 : end;
  }

  // Likewise for settings that are joined: INT./EXT., INT - EXT.
  std::size_t EndOfSetting(std::size_t at) const {
    std::size_t end = EndOfOneSetting(at);
    while (end > 0) {
      const bool isJoined = Is(end, TokenKind::kSlash) || Is(end, TokenKind::kHyphen) ||
                            Is(end, TokenKind::kSeparator);
      const std::size_t next = EndOfOneSetting(isJoined ? end + 1 : end);
      if (next == 0) break;
      end = next;
    }
    return end;
  }

  // Whether nothing but a time follows: KITCHEN INT/DAY.
  bool IsFollowedByTime(std::size_t at) const {
    while (at < mRest.mEnd && !Is(at, TokenKind::kWord) && !Is(at, TokenKind::kOpen)) ++at;
    if (at >= mRest.mEnd || Is(at, TokenKind::kOpen)) return true;
    const std::vector<TimeUnit> units = UnitsFrom(mTables, mTokens, at, mRest.mEnd);
    if (!MakeTime(units)) return false;
    const std::size_t end = units.back().mEnd;
    return end == mRest.mEnd || !Is(end, TokenKind::kWord);
  }

  bool BeginsPart(std::size_t at) const {
    return Is(at - 1, TokenKind::kSeparator) || Is(at - 1, TokenKind::kColon) ||
           Is(at - 1, TokenKind::kClose);
  }

  // A setting inside the heading begins a part of it, or only a time follows it.
  TokenRange SettingInside() const {
    TokenRange last;
    for (std::size_t at = mRest.mBegin; at < mRest.mEnd; ++at) {
      if (Is(at, TokenKind::kOpen) && mTokens[at].mPartner != kNoPartner) {
        at = mTokens[at].mPartner;
        continue;
      }
      if (at == mRest.mBegin) continue;
      const bool isBound = Is(at - 1, TokenKind::kHyphen) || Is(at - 1, TokenKind::kSlash);
      const std::size_t end = isBound ? 0 : EndOfSetting(at);
      if (end == 0) continue;
      if (BeginsPart(at)) return {at, end};
      last = {at, end};
      at = end - 1;
    }
    return last.mEnd > 0 && IsFollowedByTime(last.mEnd) ? last : TokenRange();
  }

  void FindSetting() {
    TokenRange setting{mRest.mBegin, EndOfSetting(mRest.mBegin)};
    if (setting.mEnd == 0) setting = SettingInside();
    if (setting.mEnd == 0) {
      mFrame.mAfter = mRest;
      return;
    }
    mFrame.mBefore = {mRest.mBegin, setting.mBegin};
    mFrame.mAfter = {setting.mEnd, mRest.mEnd};
    mFrame.mHasSlash = Is(setting.mEnd, TokenKind::kSlash);
    const std::size_t last = setting.mEnd - 1;
    const bool hasStop = Is(last, TokenKind::kStop) && !EndsInitialism(mTokens, last);
    Add(HeadingPartKind::kSetting, setting.mBegin, hasStop ? last : setting.mEnd);
  }

  // A number at the end counts if it is the one at the beginning, or if it has a letter and stands
  // behind a time.
  void DropTrailingNumber(TokenRange leading) {
    const std::size_t begin = mFrame.mAfter.mBegin;
    const std::size_t length = std::max<std::size_t>(1, leading.mEnd - leading.mBegin);
    if (mRest.mEnd < begin + length + 1) return;
    const std::size_t number = mRest.mEnd - length;
    if (EndOfNumber(number) != mRest.mEnd) return;
    const auto isSame = [](const HeadingToken& left, const HeadingToken& right) {
      return left.mKind == right.mKind && left.mText == right.mText &&
             left.mEnd - left.mBegin == right.mEnd - right.mBegin;
    };
    const auto leads = mTokens.begin() + static_cast<std::ptrdiff_t>(leading.mBegin);
    const auto ends = mTokens.begin() + static_cast<std::ptrdiff_t>(number);
    const bool repeats =
        leading.mEnd > 0 &&
        std::equal(ends, ends + static_cast<std::ptrdiff_t>(length), leads, isSame);
    if (!repeats && !IsLetteredBehindTime(begin, number)) return;
    Add(HeadingPartKind::kSceneNumber, number, mRest.mEnd);
    mRest.mEnd = number;
  }

  bool IsLetteredBehindTime(std::size_t begin, std::size_t number) const {
    const std::string& text = mTokens[number].mText;
    const auto isLetter = [](char c) { return c >= 'a' && c <= 'z'; };
    if (std::count_if(text.begin(), text.end(), isLetter) != 1) return false;
    const std::vector<TimeUnit> units = UnitsUpTo(mTables, mTokens, begin, number);
    return MakeTime(units) && UnitsFrom(mTables, mTokens, number, mRest.mEnd).empty();
  }

  const HeadingTables& mTables;
  const HeadingTokens& mTokens;
  TokenRange mRest;  // what is not found yet
  HeadingFrame mFrame;
};

}  // namespace

HeadingFrame FindFrame(const HeadingTables& tables, const HeadingTokens& tokens) {
  return FrameFinder(tables, tokens).Run();
}

}  // namespace zelstoryparser
