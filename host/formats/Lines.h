#pragma once

#include <string_view>

namespace zelstoryhost {

// Calls `action` with each line of a text, in UTF-8 or UTF-16, without the line feed. An empty text
// is one empty line.
template <typename Unit, typename Action>
void ForEachLine(std::basic_string_view<Unit> text, Action action) {
  for (std::size_t end; (end = text.find(Unit('\n'))) != text.npos; text.remove_prefix(end + 1)) {
    action(text.substr(0, end));
  }
  action(text);
}

}  // namespace zelstoryhost
