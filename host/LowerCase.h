#pragma once

#include <string>

namespace zelstoryhost {

// A text with its ASCII letters in lower case; all other bytes stay.
inline std::string LowerCase(std::string text) {
  for (char& c : text) {
    if ('A' <= c && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

}  // namespace zelstoryhost
