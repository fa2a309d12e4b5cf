#pragma once

#include <cstddef>
#include <string_view>

#include <zelstoryparser/StoryTree.h>

namespace zelstoryhost {

// The length, in code units, of the character that a text begins with; 0 for half a surrogate pair.
constexpr std::size_t LengthOfCharacter(std::u16string_view text) {
  const auto isSurrogate = [](char16_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; };
  if (!isSurrogate(text[0])) return 1;
  const bool isPair =
      text[0] < 0xDC00 && text.size() > 1 && isSurrogate(text[1]) && text[1] >= 0xDC00;
  return isPair ? 2 : 0;
}

// The number of code units before the first half of a surrogate pair; all, if there is none.
constexpr std::size_t LengthOfWellFormed(std::u16string_view text) {
  std::size_t length = 0;
  while (length < text.size()) {
    const std::size_t next = LengthOfCharacter(text.substr(length));
    if (next == 0) break;
    length += next;
  }
  return length;
}

// What a paragraph says: the texts of its runs, joined.
inline zelcore::UTF16String JoinedText(const zelstoryparser::Paragraph& paragraph) {
  zelcore::UTF16String text;
  for (const auto& run : paragraph.mTextRuns) {
    if (run) text += run->mText;
  }
  return text;
}

}  // namespace zelstoryhost
