#include "terminal/Escaped.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include <zelstoryhost/Text.h>

namespace zelstory {
namespace {

struct Range {
  char32_t mFirst;
  char32_t mLast;
};

constexpr std::array<Range, 6> kEscaped{{
    {0x00, 0x1F},
    {0x7F, 0x9F},
    {0x061C, 0x061C},  // the Arabic letter mark
    {0x200E, 0x200F},  // marks of direction
    {0x2028, 0x202E},  // separators of lines and paragraphs; embeddings and overrides
    {0x2066, 0x206F},  // isolates, and controls that Unicode has given up
}};

bool IsEscaped(char32_t character) {
  const bool isNoncharacter = (character & 0xFFFE) == 0xFFFE;
  return isNoncharacter ||
         std::any_of(kEscaped.begin(), kEscaped.end(), [character](const Range& range) {
           return range.mFirst <= character && character <= range.mLast;
         });
}

std::string Escape(const char* form, char32_t value) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), form, static_cast<unsigned>(value));
  return text.data();
}

std::string EscapeOf(char32_t character) {
  if (character == '\n') return "\\n";
  if (character == '\t') return "\\t";
  if (character == '\r') return "\\r";
  return Escape(character < 0x80 ? "\\x%02X" : "\\u{%X}", character);
}

}  // namespace

std::string Escaped(std::string_view text, std::string_view layout) {
  std::string escaped;
  escaped.reserve(text.size());
  while (!text.empty()) {
    const auto [value, length, isWellFormed] = zelstoryhost::FirstCharacter(text);
    if (!isWellFormed) {
      escaped += Escape("\\x%02X", static_cast<unsigned char>(text.front()));
    } else if (IsEscaped(value) && layout.find(text.front()) == std::string_view::npos) {
      escaped += EscapeOf(value);
    } else {
      escaped += text.substr(0, length);
    }
    text.remove_prefix(length);
  }
  return escaped;
}

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return Escaped(quoted) + '"';
}

}  // namespace zelstory
