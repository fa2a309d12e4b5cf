#include "headings/WordHeading.h"

#include <algorithm>
#include <utility>

#include "headings/HeadingFrame.h"
#include "headings/HeadingParts.h"
#include "headings/HeadingTokens.h"
#include "headings/TimeOfDay.h"

namespace zelstoryparser {
namespace {

enum class SegmentKind { kPlace, kTime, kQualifier, kNumber };

// What stands between two separators.
struct Segment {
  TokenRange mRange;
  SegmentKind mKind = SegmentKind::kPlace;
  bool mIsKnown = false;
};

bool IsEmpty(TokenRange range) {
  return range.mBegin >= range.mEnd;
}

class WordHeading {
 public:
  WordHeading(const UTF16String& heading, const HeadingTables& tables)
      : mHeading(heading), mTables(tables), mTokens(TokensOf(heading, tables)) {}

  ParsedHeading Run() {
    const HeadingFrame frame = FindFrame(mTables, mTokens);
    mPieces = frame.mPieces;
    AddSegments(frame.mBefore);
    if (!mSegments.empty()) TrimStop(mSegments.back().mRange);  // KITCHEN. INT - DAY
    AddSegments(frame.mAfter);
    SettleTime(frame.mHasSlash);
    SettlePlaces();
    for (const Segment& segment : mSegments) AddPiece(segment);
    return Parts();
  }

 private:
  TokenKind Kind(std::size_t at) const { return mTokens[at].mKind; }

  // --- Splitting

  static bool IsPunctuation(TokenKind kind) {
    return kind == TokenKind::kStop || kind == TokenKind::kComma || kind == TokenKind::kColon ||
           kind == TokenKind::kSlash || kind == TokenKind::kHyphen;
  }

  void TrimStop(TokenRange& range) const {
    while (!IsEmpty(range) && IsPunctuation(Kind(range.mEnd - 1))) --range.mEnd;
  }

  void TrimPunctuation(TokenRange& range) const {
    while (!IsEmpty(range) && IsPunctuation(Kind(range.mBegin))) ++range.mBegin;
    while (!IsEmpty(range) && IsPunctuation(Kind(range.mEnd - 1)) &&
           Kind(range.mEnd - 1) != TokenKind::kStop) {
      --range.mEnd;
    }
  }

  // Splits at separators outside of parentheses.
  void AddSegments(TokenRange range) {
    std::size_t begin = range.mBegin;
    for (std::size_t at = range.mBegin; at < range.mEnd; ++at) {
      const std::size_t partner = mTokens[at].mPartner;
      if (Kind(at) == TokenKind::kOpen && partner < range.mEnd) {
        at = partner;
      } else if (Kind(at) == TokenKind::kSeparator) {
        AddSegment({begin, at});
        begin = at + 1;
      }
    }
    AddSegment({begin, range.mEnd});
  }

  // Parentheses at the ends of a segment are qualifiers of their own.
  void AddSegment(TokenRange range) {
    TrimPunctuation(range);
    while (!IsEmpty(range) && Kind(range.mBegin) == TokenKind::kOpen &&
           mTokens[range.mBegin].mPartner < range.mEnd) {
      const std::size_t end = mTokens[range.mBegin].mPartner + 1;
      AddQualifier({range.mBegin, end});
      range.mBegin = end;
      TrimPunctuation(range);
    }
    std::vector<TokenRange> behind;
    while (const std::size_t begin = OpeningOfLast(range)) {
      behind.push_back({begin, range.mEnd});
      range.mEnd = begin;
      TrimPunctuation(range);
    }
    if (!IsEmpty(range)) mSegments.push_back(Classified(range));
    std::for_each(behind.rbegin(), behind.rend(),
                  [this](TokenRange qualifier) { AddQualifier(qualifier); });
  }

  // The opening parenthesis of a closing one at the end of a range; 0 if there is none behind the
  // range's beginning. A full stop behind it is dropped.
  std::size_t OpeningOfLast(TokenRange& range) const {
    TokenRange inner = range;
    while (!IsEmpty(inner) && Kind(inner.mEnd - 1) == TokenKind::kStop) --inner.mEnd;
    if (IsEmpty(inner) || Kind(inner.mEnd - 1) != TokenKind::kClose) return 0;
    const std::size_t partner = mTokens[inner.mEnd - 1].mPartner;
    if (partner == kNoPartner || partner <= range.mBegin) return 0;
    range = inner;
    return partner;
  }

  void AddQualifier(TokenRange range) {
    mSegments.push_back({range, SegmentKind::kQualifier, false});
  }

  Segment Classified(TokenRange range) const {
    TokenRange core = range;
    while (core.mEnd > core.mBegin + 1 && Kind(core.mEnd - 1) == TokenKind::kStop) --core.mEnd;
    const std::vector<TimeUnit> units = UnitsFrom(mTables, mTokens, core.mBegin, core.mEnd);
    if (!units.empty() && units.back().mEnd == core.mEnd) {
      if (MakeTime(units)) return {WithInitialism(core), SegmentKind::kTime, true};
      const bool areNumbers = std::all_of(units.begin(), units.end(),
                                          [](const TimeUnit& unit) { return unit.mIsNumber; });
      if (areNumbers) return {core, SegmentKind::kNumber, false};
    }
    if (IsQualifier(core)) return {core, SegmentKind::kQualifier, true};
    return {range, SegmentKind::kPlace, false};
  }

  TokenRange WithInitialism(TokenRange range) const {
    if (range.mEnd < mTokens.size() && EndsInitialism(mTokens, range.mEnd)) ++range.mEnd;
    return range;
  }

  // Whether a range holds qualifiers of the tables and numbers, and nothing else.
  bool IsQualifier(TokenRange range) const {
    bool hasWord = false;
    for (std::size_t at = range.mBegin; at < range.mEnd;) {
      const SpellingMatch match = MatchSpelling(mTables, mTokens, at, range.mEnd, kQualifierWord);
      if (match.mEnd > 0) {
        at = match.mEnd;
        hasWord = true;
      } else if (!mTokens[at].mText.empty() || IsPunctuation(Kind(at))) {
        ++at;
      } else {
        return false;
      }
    }
    return hasWord;
  }

  // --- Time of day

  // The last segment that is a time is the time, with those right before it.
  void SettleTime(bool hasSlash) {
    const auto isTime = [](const Segment& s) { return s.mKind == SegmentKind::kTime; };
    const auto last = std::find_if(mSegments.rbegin(), mSegments.rend(), isTime);
    if (last == mSegments.rend()) {
      if (!SplitTimeAtEnd()) SplitTimeAtBegin(hasSlash);
      return;
    }
    auto first = last;
    while (std::next(first) != mSegments.rend() && isTime(*std::next(first)) &&
           AreNeighbours(*std::next(first), *first)) {
      ++first;
    }
    const bool isAlone = std::none_of(mSegments.begin(), mSegments.end(), [](const Segment& s) {
      return s.mKind == SegmentKind::kPlace;
    });
    if (isAlone && first != last) {  // EXT. DAWN - DAY
      first->mKind = SegmentKind::kPlace;
      --first;
    }
    MergeInto(first.base() - 1, last.base() - 1);
    for (Segment& segment : mSegments) {
      if (isTime(segment) && segment.mRange.mBegin != mTime.mBegin) {
        segment.mKind = SegmentKind::kQualifier;
      }
    }
  }

  bool AreNeighbours(const Segment& left, const Segment& right) const {
    return left.mRange.mEnd + 1 == right.mRange.mBegin;
  }

  void MergeInto(std::vector<Segment>::iterator first, std::vector<Segment>::iterator last) {
    first->mRange.mEnd = last->mRange.mEnd;
    mTime = first->mRange;
    mSegments.erase(first + 1, last + 1);
  }

  // Without such a segment, a time ends the last place: KITCHEN. NIGHT, KITCHEN NIGHT.
  bool SplitTimeAtEnd() {
    const auto isPlace = [](const Segment& s) { return s.mKind == SegmentKind::kPlace; };
    const auto last = std::find_if(mSegments.rbegin(), mSegments.rend(), isPlace);
    if (last == mSegments.rend()) return false;
    const TokenRange range = last->mRange;
    const std::vector<TimeUnit> units = UnitsUpTo(mTables, mTokens, range.mBegin, range.mEnd);
    if (!MakeTime(units) || units.front().mBegin == range.mBegin) return false;
    const TokenKind before = Kind(units.front().mBegin - 1);
    const bool isBound = before == TokenKind::kHyphen;
    if (isBound && mSegments.size() > 1) return false;  // CAFE - ALL-NIGHT
    const bool isApart = IsPunctuation(before) && !isBound;
    mTime = WithInitialism({units.front().mBegin, units.back().mEnd});
    last->mRange.mEnd = mTime.mBegin;
    TrimStop(last->mRange);
    mSegments.insert(last.base(), {mTime, SegmentKind::kTime, isApart});
    return true;
  }

  // A time may also begin the first place: INT. NIGHT. KITCHEN, INT/NIGHT KITCHEN.
  void SplitTimeAtBegin(bool hasSlash) {
    if (mSegments.empty() || mSegments.front().mKind != SegmentKind::kPlace) return;
    const TokenRange range = mSegments.front().mRange;
    std::vector<TimeUnit> units = UnitsFrom(mTables, mTokens, range.mBegin, range.mEnd);
    const auto isApart = [&](const TimeUnit& unit) {
      return hasSlash || (Kind(unit.mEnd) != TokenKind::kHyphen && IsPunctuation(Kind(unit.mEnd)));
    };
    while (!units.empty() && (units.back().mEnd >= range.mEnd || !isApart(units.back()))) {
      units.pop_back();
    }
    if (!MakeTime(units)) return;
    mTime = {units.front().mBegin, units.back().mEnd};
    mSegments.front().mRange.mBegin = mTime.mEnd;
    TrimPunctuation(mSegments.front().mRange);
    mSegments.insert(mSegments.begin(), {mTime, SegmentKind::kTime, true});
  }

  // --- Places

  // The first place is the location, others before the time are below it. What stands behind both a
  // place and the time qualifies them, and so do numbers. Without a place, a qualifier
  // is the location.
  void SettlePlaces() {
    std::size_t places = 0;
    for (Segment& segment : mSegments) {
      const bool isBehind = !IsEmpty(mTime) && segment.mRange.mBegin > mTime.mBegin;
      const bool isQualifier = segment.mKind == SegmentKind::kNumber ||
                               (segment.mKind == SegmentKind::kPlace && isBehind);
      if (places > 0 && isQualifier) segment.mKind = SegmentKind::kQualifier;
      if (segment.mKind == SegmentKind::kPlace) ++places;
    }
    if (places > 0) return;
    const auto isBare = [this](const Segment& segment) {
      const bool isTime = segment.mKind == SegmentKind::kTime;
      return !isTime && Kind(segment.mRange.mBegin) != TokenKind::kOpen;
    };
    const auto bare = std::find_if(mSegments.begin(), mSegments.end(), isBare);
    if (bare != mSegments.end()) *bare = {bare->mRange, SegmentKind::kPlace, false};
  }

  void AddPiece(const Segment& segment) {
    HeadingPartKind kind = HeadingPartKind::kQualifier;
    if (segment.mKind == SegmentKind::kTime) kind = HeadingPartKind::kTimeOfDay;
    if (segment.mKind == SegmentKind::kPlace) {
      kind = std::exchange(mHasLocation, true) ? HeadingPartKind::kSubLocation
                                               : HeadingPartKind::kLocation;
    }
    mPieces.push_back({kind, segment.mRange.mBegin, segment.mRange.mEnd, segment.mIsKnown});
  }

  // --- Result

  ParsedHeading Parts() {
    ParsedHeading parsed;
    std::sort(mPieces.begin(), mPieces.end(),
              [](const HeadingPiece& a, const HeadingPiece& b) { return a.mBegin < b.mBegin; });
    for (const HeadingPiece& piece : mPieces) {
      const std::size_t begin = mTokens[piece.mBegin].mBegin;
      const std::size_t length = mTokens[piece.mEnd - 1].mEnd - begin;
      AppendPart({piece.mKind, begin, length, piece.mIsKnown}, parsed.mParts);
      AddText(piece, mHeading.substr(begin, length), parsed);
    }
    AppendPart({HeadingPartKind::kSeparator, mHeading.size(), 0, false}, parsed.mParts);
    return parsed;
  }

  static void AddText(const HeadingPiece& piece, UTF16String text, ParsedHeading& parsed) {
    switch (piece.mKind) {
      case HeadingPartKind::kSetting:
        parsed.mSetting = std::move(text);
        parsed.mIsSettingKnown = piece.mIsKnown;
        break;
      case HeadingPartKind::kLocation:
        parsed.mLocation = std::move(text);
        break;
      case HeadingPartKind::kSubLocation:
        if (!parsed.mSubLocation.empty()) parsed.mSubLocation += u" - ";
        parsed.mSubLocation += text;
        break;
      case HeadingPartKind::kTimeOfDay:
        parsed.mTimeOfDay = std::move(text);
        parsed.mIsTimeOfDayKnown = piece.mIsKnown;
        break;
      case HeadingPartKind::kQualifier:
        parsed.mQualifiers.push_back(std::move(text));
        break;
      case HeadingPartKind::kSceneNumber:
      case HeadingPartKind::kSeparator:
        break;
    }
  }

  const UTF16String& mHeading;
  const HeadingTables& mTables;
  const HeadingTokens mTokens;
  std::vector<HeadingPiece> mPieces;
  std::vector<Segment> mSegments;  // in order
  TokenRange mTime;                // empty if there is none
  bool mHasLocation = false;
};

}  // namespace

ParsedHeading ParseByWords(const UTF16String& heading, const HeadingTables& tables) {
  return WordHeading(heading, tables).Run();
}

}  // namespace zelstoryparser
