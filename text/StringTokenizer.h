#pragma once

#include <cstddef>

#include <zelcore/String.h>

namespace zelstoryparser {

using zelcore::UTF16String;

// Splits a text at delimiter characters, from beginning to end. A delimiter at the very end of the
// text exhausts the tokenizer: no empty piece follows it.
class StringTokenizer {
 public:
  // `text` is not copied: it must outlive the tokenizer unchanged. Each UTF-16 code unit of
  // `delimiters` ends a piece. With `skipRepeated`, code units equal to the whole delimiter text
  // are skipped if they directly follow a delimiter.
  StringTokenizer(const UTF16String& text, UTF16String delimiters, bool skipRepeated);

  // Returns whether there is a delimiter at or after the position. False for the last piece, which
  // NextToken still returns.
  bool HasMoreTokens() const;

  // Returns the piece up to the next delimiter or the end; empty if the tokenizer is exhausted.
  UTF16String NextToken();

  // Returns the text from the position to the end, and exhausts the tokenizer.
  UTF16String RemainingText();

  // Returns whether the whole text has been returned.
  bool IsExhausted() const { return mPosition == UTF16String::npos; }

 private:
  const UTF16String& mText;
  UTF16String mDelimiters;
  std::size_t mPosition = 0;  // of the first code unit not yet returned; npos if exhausted
  bool mSkipRepeated;
};

}  // namespace zelstoryparser
