#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <zelstoryhost/Export.h>
#include <zelstoryparser/StoryTree.h>

// Story text for hosts that work in UTF-8. All functions may be called from several threads at
// once.
namespace zelstoryhost {

// Story text (UTF-16) as UTF-8. A surrogate without its partner becomes U+FFFD.
ZELSTORYHOST_API std::string ToUTF8(std::u16string_view text);

// What a paragraph says: the texts of its runs, joined, as UTF-8.
ZELSTORYHOST_API std::string TextOf(const zelstoryparser::Paragraph& paragraph);

// The number of words in a text, which white space separates.
ZELSTORYHOST_API std::int64_t CountWords(const std::string& text);

// A character in UTF-8 text.
struct Character {
  char32_t mValue = 0xFFFD;
  std::size_t mLength = 1;  // in bytes
  bool mIsWellFormed = false;
};

// The first character of a UTF-8 text, which must not be empty. A byte that begins no character is
// one of its own, U+FFFD, and ill-formed.
ZELSTORYHOST_API Character FirstCharacter(std::string_view text);

}  // namespace zelstoryhost
