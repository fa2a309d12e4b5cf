#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "headings/HeadingTables.h"

namespace zelstoryparser {

enum class TokenKind {
  kWord,       // letters, digits, marks, and apostrophes inside
  kStop,       // .
  kSlash,      // / \ & or +: joins two words
  kHyphen,     // one that binds two words: SOUTH-WEST
  kSeparator,  // a dash between parts, or a separator of the tables
  kComma,
  kColon,
  kHash,
  kOpen,   // a parenthesis or bracket
  kClose,  // its counterpart
  kOther,
};

inline constexpr std::size_t kNoPartner = static_cast<std::size_t>(-1);

// A word or a mark of punctuation. Blanks are between tokens.
struct HeadingToken {
  TokenKind mKind = TokenKind::kOther;
  std::size_t mBegin = 0;  // in UTF-16 code units
  std::size_t mEnd = 0;
  HeadingTables::Symbol mSymbol = HeadingTables::kUnknown;  // of a word or a slash
  std::size_t mPartner = kNoPartner;  // the index of the other one of two parentheses
  std::string mText;  // of a word that begins or ends with a digit: folded; '?' for no ASCII
};

using HeadingTokens = std::vector<HeadingToken>;

// Splits a text into tokens, in linear time. Words that `tables` does not have are kUnknown.
HeadingTokens TokensOf(std::u16string_view text, const HeadingTables& tables);

// The same for a spelling: its words become symbols of `tables`.
HeadingTokens TokensOfSpelling(std::u16string_view text, HeadingTables& tables);

}  // namespace zelstoryparser
