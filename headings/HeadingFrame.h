#pragma once

#include <cstddef>
#include <vector>

#include <zelstoryparser/HeadingRules.h>

#include "headings/HeadingTables.h"
#include "headings/HeadingTokens.h"

namespace zelstoryparser {

// A part of a heading as a range of tokens.
struct HeadingPiece {
  HeadingPartKind mKind = HeadingPartKind::kSeparator;
  std::size_t mBegin = 0;
  std::size_t mEnd = 0;
  bool mIsKnown = false;
};

struct TokenRange {
  std::size_t mBegin = 0;
  std::size_t mEnd = 0;
};

// What stands around places and times: the scene's numbers and the setting.
struct HeadingFrame {
  std::vector<HeadingPiece> mPieces;  // numbers and setting
  TokenRange mBefore;                 // what stands before a setting that is not at the beginning
  TokenRange mAfter;                  // what stands after it; everything, without a setting
  bool mHasSlash = false;             // a slash follows the setting: INT/DAY
};

HeadingFrame FindFrame(const HeadingTables& tables, const HeadingTokens& tokens);

}  // namespace zelstoryparser
