#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include <zelcore/String.h>

// Tests write and compare UTF-8, which reads well in a failure's message.
inline zelcore::UTF16String Utf16(std::string_view text) {
  return zelcore::utility::UTF8to16(text);
}

inline std::string Utf8(const zelcore::UTF16String& text) {
  return zelcore::utility::UTF16to8(text);
}
