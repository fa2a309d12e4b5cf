#include <algorithm>

#include <utf8proc.h>

#include <zelcore/String.h>
#include <zelstoryhost/Text.h>

#include "UTF16.h"

namespace zelstoryhost {

std::string ToUTF8(std::u16string_view text) {
  const zelcore::UTF8String bytes = zelcore::utility::UTF16to8(text);
  return std::string(bytes.data(), bytes.size());
}

std::string TextOf(const zelstoryparser::Paragraph& paragraph) {
  return ToUTF8(JoinedText(paragraph));
}

std::int64_t CountWords(const std::string& text) {
  constexpr const char* kBlanks = " \t\n\v\f\r";
  std::int64_t count = 0;
  std::size_t end = 0;
  while ((end = text.find_first_not_of(kBlanks, end)) != std::string::npos) {
    end = std::min(text.find_first_of(kBlanks, end), text.size());
    ++count;
  }
  return count;
}

Character FirstCharacter(std::string_view text) {
  utf8proc_int32_t character = 0;
  const utf8proc_ssize_t length =
      utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                       static_cast<utf8proc_ssize_t>(text.size()), &character);
  if (length <= 0) return {};
  return {static_cast<char32_t>(character), static_cast<std::size_t>(length), true};
}

}  // namespace zelstoryhost
