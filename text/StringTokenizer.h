#pragma once

#include <cstddef>

#include <zelcore/String.h>

namespace zelstoryparser {

using zelcore::UTF16String;

// Cuts a text into the pieces between delimiter characters, from its beginning to its end. A
// delimiter at the very end of the text exhausts the tokenizer: no empty piece follows it.
class StringTokenizer {
 public:
  // `text` is not copied: it must outlive the tokenizer unchanged. Each code unit of `delimiters`
  // ends a piece. With `skipRepeated`, code units equal to the whole delimiter text that directly
  // follow a delimiter are stepped over.
  StringTokenizer(const UTF16String& text, UTF16String delimiters, bool skipRepeated);

  // Whether a delimiter stands at or behind the position. False for the last piece, which NextToken
  // still returns.
  bool HasMoreTokens() const;

  // The piece up to the next delimiter or the end; empty once the tokenizer is exhausted.
  UTF16String NextToken();

  // Everything from the position on; exhausts the tokenizer.
  UTF16String RemainingText();

  // Whether all of the text has been handed out.
  bool IsExhausted() const { return mPosition == UTF16String::npos; }

 private:
  const UTF16String& mText;
  UTF16String mDelimiters;
  std::size_t mPosition = 0;  // of the first code unit not handed out; npos: exhausted
  bool mSkipRepeated;
};

}  // namespace zelstoryparser
