#include "text/StringTokenizer.h"

#include <algorithm>
#include <utility>

namespace zelstoryparser {

StringTokenizer::StringTokenizer(const UTF16String& text, UTF16String delimiters, bool skipRepeated)
    : mText(text), mDelimiters(std::move(delimiters)), mSkipRepeated(skipRepeated) {}

bool StringTokenizer::HasMoreTokens() const {
  return !IsExhausted() && mText.find_first_of(mDelimiters, mPosition) != UTF16String::npos;
}

UTF16String StringTokenizer::NextToken() {
  if (IsExhausted()) return {};
  const std::size_t end = std::min(mText.find_first_of(mDelimiters, mPosition), mText.size());
  UTF16String piece = mText.substr(mPosition, end - mPosition);
  mPosition = end + 1;
  const auto atDelimiterText = [this] {
    return mPosition < mText.size() && mText.compare(mPosition, 1, mDelimiters) == 0;
  };
  while (mSkipRepeated && atDelimiterText()) ++mPosition;
  if (mPosition >= mText.size()) mPosition = UTF16String::npos;
  return piece;
}

UTF16String StringTokenizer::RemainingText() {
  if (IsExhausted()) return {};
  return mText.substr(std::exchange(mPosition, UTF16String::npos));
}

}  // namespace zelstoryparser
