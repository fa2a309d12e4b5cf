#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace zelstoryhost {

// The first few numbers, and how many more there are, so that a message stays short.
inline std::string Enumerate(const std::vector<std::size_t>& numbers) {
  constexpr std::size_t kNamed = 5;
  std::string text;
  for (std::size_t i = 0; i < std::min(numbers.size(), kNamed); ++i) {
    text += (i > 0 ? ", " : "") + std::to_string(numbers[i]);
  }
  if (numbers.size() <= kNamed) return text;
  return text + " and " + std::to_string(numbers.size() - kNamed) + " more";
}

}  // namespace zelstoryhost
