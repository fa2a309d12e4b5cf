#pragma once

#include <cstddef>
#include <string>

#include <zelstoryhost/SceneFacts.h>

namespace zelstoryhost {

// A text of a script in quotation marks, cut where it is too long for a message.
inline std::string Quoted(const std::string& text) {
  if (text.size() <= kLongestSceneName) return '"' + text + '"';
  std::size_t size = kLongestSceneName;
  while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) --size;
  return '"' + text.substr(0, size) + "...\"";
}

}  // namespace zelstoryhost
