#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "Quoted.h"

namespace zelstoryhost {

inline std::string Named(std::size_t number) {
  return std::to_string(number);
}
inline std::string Named(const std::string& text) {
  return Quoted(text);
}

// The first few numbers or texts, and how many more there are, so that a message stays short.
template <typename Item>
std::string Enumerate(const std::vector<Item>& items) {
  constexpr std::size_t kNamed = 5;
  std::string text;
  for (std::size_t i = 0; i < std::min(items.size(), kNamed); ++i) {
    text += (i > 0 ? ", " : "") + Named(items[i]);
  }
  if (items.size() <= kNamed) return text;
  return text + " and " + std::to_string(items.size() - kNamed) + " more";
}

}  // namespace zelstoryhost
