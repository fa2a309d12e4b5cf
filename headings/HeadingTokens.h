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

struct HeadingCharacter {
  char32_t mValue = 0;
  std::size_t mBegin = 0;  // in UTF-16 code units
};

// What splitting a text needs. Used again, it allocates nothing for most texts.
struct TokenBuffers {
  std::vector<HeadingCharacter> mCharacters;  // and one behind the end
  HeadingTokens mTokens;
  std::vector<std::size_t> mOpen;  // parentheses
  std::u32string mWord;            // folded
};

// Splits a text into tokens, in linear time. Words that `tables` does not have are kUnknown.
HeadingTokens TokensOf(std::u16string_view text, const HeadingTables& tables);

// Likewise for a spelling in UTF-8, which must be well-formed: its words become symbols of
// `tables`. The result lives as long as `buffers` and until they are used again.
const HeadingTokens& TokensOfSpelling(std::string_view text, HeadingTables& tables,
                                      TokenBuffers& buffers);

}  // namespace zelstoryparser
