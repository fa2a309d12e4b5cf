#pragma once

#include <cstddef>
#include <string_view>

#include <utf8proc.h>

namespace zelstoryparser {

// The bytes of the first character of a UTF-8 text; 0 if it is ill-formed.
inline std::size_t LengthOfFirst(std::string_view text, char32_t& character) {
  utf8proc_int32_t value = 0;
  const utf8proc_ssize_t length =
      utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                       static_cast<utf8proc_ssize_t>(text.size()), &value);
  character = static_cast<char32_t>(value);
  return length > 0 ? static_cast<std::size_t>(length) : 0;
}

}  // namespace zelstoryparser
