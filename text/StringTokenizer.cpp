#include "text/StringTokenizer.h"

#include <utility>

namespace zelstoryparser {

StringTokenizer::StringTokenizer(const UTF16String& text, UTF16String delimiters, bool skipRepeated)
    : mText(text), mDelimiters(std::move(delimiters)), mSkipRepeated(skipRepeated) {}

bool StringTokenizer::HasMoreTokens() const {
  return !IsExhausted() && mText.find_first_of(mDelimiters, mPosition) != UTF16String::npos;
}

UTF16String StringTokenizer::NextToken() {
  if (IsExhausted()) return {};
  const std::size_t end = mText.find_first_of(mDelimiters, mPosition);
  if (end == UTF16String::npos) return RemainingText();
  UTF16String piece = mText.substr(mPosition, end - mPosition);
  mPosition = end + 1;
  while (mSkipRepeated && mText.compare(mPosition, 1, mDelimiters) == 0) ++mPosition;
  if (mPosition == mText.size()) mPosition = UTF16String::npos;
  return piece;
}

UTF16String StringTokenizer::RemainingText() {
  if (IsExhausted()) return {};
  return mText.substr(std::exchange(mPosition, UTF16String::npos));
}

}  // namespace zelstoryparser
