#pragma once

#include <cstddef>
#include <string_view>

#include <zelcore/Export.h>

// UTF-8 character by character, for the platform's own text code; hosts convert whole strings with
// String.h.
namespace zelcore::utility {

// The first character of some bytes.
struct DecodedUTF8 {
  char32_t mCharacter = 0;  // a Unicode scalar value; meaningless when ill-formed
  std::size_t mBytes = 1;   // its length; of an ill-formed sequence, that of its maximal part
  bool mWellFormed = false;
};

// Decodes the first character of `bytes`, which must not be empty.
DecodedUTF8 DecodeUTF8(std::string_view bytes);

// Whether all of `bytes` is well-formed.
bool IsUTF8(std::string_view bytes);

// Appends a Unicode scalar value to a string of bytes.
template <typename Bytes>
void AppendUTF8(char32_t character, Bytes& bytes) {
  const auto push = [&bytes](char32_t byte) { bytes.push_back(static_cast<char>(byte)); };
  if (character < 0x80) return push(character);
  if (character < 0x800) {
    push(0xC0 | (character >> 6));
  } else {
    if (character < 0x10000) {
      push(0xE0 | (character >> 12));
    } else {
      push(0xF0 | (character >> 18));
      push(0x80 | ((character >> 12) & 0x3F));
    }
    push(0x80 | ((character >> 6) & 0x3F));
  }
  push(0x80 | (character & 0x3F));
}

}  // namespace zelcore::utility
