#pragma once

#include <cstddef>
#include <vector>

#include "headings/HeadingTables.h"
#include "headings/HeadingTokens.h"

namespace zelstoryparser {

// The longest spelling of some classes that begins at a token. Hyphens, full stops and blanks
// between its words do not count. `mEnd` is the token behind it, 0 if there is none.
struct SpellingMatch {
  std::size_t mEnd = 0;
  unsigned mClasses = 0;
};
SpellingMatch MatchSpelling(const HeadingTables& tables, const HeadingTokens& tokens,
                            std::size_t begin, std::size_t end, unsigned classes);

// Whether a full stop is the last of an initialism, as in "A.M." and "P.O.V.", and belongs to it.
bool EndsInitialism(const HeadingTokens& tokens, std::size_t stop);

// One piece of a time of day: a spelling of the tables, a clock time or a number.
struct TimeUnit {
  std::size_t mBegin = 0;  // tokens
  std::size_t mEnd = 0;
  bool mMakesTime = false;  // DAY, 10:30, AM beside a number
  bool mIsNumber = false;   // a mere number
  bool mIsClock = false;    // a word of the clock
};

// The units at tokens [begin, end) from the first on, as far as they go.
std::vector<TimeUnit> UnitsFrom(const HeadingTables& tables, const HeadingTokens& tokens,
                                std::size_t begin, std::size_t end);

// The units that reach to `end`, or to a full stop there; begins with no mere number.
std::vector<TimeUnit> UnitsUpTo(const HeadingTables& tables, const HeadingTokens& tokens,
                                std::size_t begin, std::size_t end);

// Whether units make a time of day.
bool MakeTime(const std::vector<TimeUnit>& units);

}  // namespace zelstoryparser
