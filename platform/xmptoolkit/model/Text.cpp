#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utility>

#include <xmptoolkit/model/Text.h>
#include <zelcore/String.h>
#include <zelcore/UTF8.h>

namespace xmptoolkit {

namespace {

// XML 1.0's Char.
bool IsXMLCharacter(char32_t c) {
  if (c < 0x20) return c == 0x9 || c == 0xA || c == 0xD;
  return c != kMalformed && c != 0xFFFE && c != 0xFFFF;
}

using Range = std::pair<char32_t, char32_t>;

// XML 1.0's NameStartChar without the colon.
constexpr std::array<Range, 15> kNameStart = {{{'A', 'Z'},
                                               {'_', '_'},
                                               {'a', 'z'},
                                               {0xC0, 0xD6},
                                               {0xD8, 0xF6},
                                               {0xF8, 0x2FF},
                                               {0x370, 0x37D},
                                               {0x37F, 0x1FFF},
                                               {0x200C, 0x200D},
                                               {0x2070, 0x218F},
                                               {0x2C00, 0x2FEF},
                                               {0x3001, 0xD7FF},
                                               {0xF900, 0xFDCF},
                                               {0xFDF0, 0xFFFD},
                                               {0x10000, 0xEFFFF}}};

// What NameChar adds to it.
constexpr std::array<Range, 5> kNameRest = {
    {{'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}}};

template <typename Ranges>
constexpr bool LiesIn(const Ranges& ranges, char32_t c) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [c](const Range& range) { return range.first <= c && c <= range.second; });
}

// A set of bytes. Most names and values are ASCII, for which a table is the fastest test.
using ByteSet = std::array<bool, 256>;

constexpr ByteSet SetOf(std::string_view bytes) {
  ByteSet set{};
  for (const char byte : bytes) set[static_cast<unsigned char>(byte)] = true;
  return set;
}

constexpr ByteSet ASCIINameCharacters() {
  ByteSet set{};
  for (char32_t c = 0; c < 0x80; ++c) set[c] = LiesIn(kNameStart, c) || LiesIn(kNameRest, c);
  return set;
}

constexpr ByteSet kTextSpecials = SetOf("&<>\r");
constexpr ByteSet kAttributeSpecials = SetOf("&<\"\t\n\r");
constexpr ByteSet kSingleQuotedSpecials = SetOf("&<'\t\n\r");
constexpr ByteSet kASCIINameCharacters = ASCIINameCharacters();

bool Contains(const ByteSet& set, char byte) {
  return set[static_cast<unsigned char>(byte)];
}

// The first byte from `position` on that is not a printable ASCII character. Takes eight
// bytes at a time, which saves 2 % of the instructions of writing and reading a scene's properties.
std::size_t SkipPrintable(std::string_view text, std::size_t position) {
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  constexpr std::uint64_t kHighBits = 0x80 * kOnes;
  for (std::uint64_t word = 0; position + sizeof word <= text.size(); position += sizeof word) {
    std::memcpy(&word, text.data() + position, sizeof word);
    // Where no high bit is set, a byte below a space borrows when the space is taken from it.
    if (((word | (word - 0x20 * kOnes)) & kHighBits) != 0) break;
  }
  const auto isPrintable = [](char byte) {
    return static_cast<unsigned char>(byte) >= 0x20 && static_cast<unsigned char>(byte) < 0x80;
  };
  while (position < text.size() && isPrintable(text[position])) ++position;
  return position;
}

// Finds the first character that `accepts` refuses. It must accept printable ASCII characters,
// which are skipped unchecked.
template <typename Accepts>
std::size_t FindRefused(std::string_view text, Accepts accepts) {
  for (std::size_t position = SkipPrintable(text, 0); position < text.size();
       position = SkipPrintable(text, position)) {
    const std::size_t start = position;
    if (!accepts(NextCharacter(text, position))) return start;
  }
  return std::string_view::npos;
}

const char* ReferenceTo(char special) {
  switch (special) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&apos;";
    case '\t':
      return "&#x9;";
    case '\n':
      return "&#xA;";
    default:
      return "&#xD;";
  }
}

void AppendEscaped(std::string_view value, const ByteSet& specials, std::string& xml) {
  for (;;) {
    const auto special = std::find_if(value.begin(), value.end(),
                                      [&](char byte) { return Contains(specials, byte); });
    xml.append(value.begin(), special);
    if (special == value.end()) return;
    xml += ReferenceTo(*special);
    value.remove_prefix(static_cast<std::size_t>(special - value.begin()) + 1);
  }
}

}  // namespace

char32_t NextCharacter(std::string_view text, std::size_t& position) {
  const auto decoded = zelcore::utility::DecodeUTF8(text.substr(position));
  if (!decoded.mWellFormed) return kMalformed;
  position += decoded.mBytes;
  return decoded.mCharacter;
}

std::size_t FindUnfitForXML(std::string_view text) {
  return FindRefused(text, IsXMLCharacter);
}

std::size_t FindMalformed(std::string_view text) {
  return FindRefused(text, [](char32_t c) { return c != kMalformed; });
}

bool IsNCName(std::string_view text) {
  if (text.empty()) return false;
  std::size_t position = 0;
  if (!LiesIn(kNameStart, NextCharacter(text, position))) return false;
  while (position < text.size()) {
    if (Contains(kASCIINameCharacters, text[position])) {
      ++position;
      continue;
    }
    const char32_t c = NextCharacter(text, position);
    if (!LiesIn(kNameStart, c) && !LiesIn(kNameRest, c)) return false;
  }
  return true;
}

bool IsReservedName(std::string_view name) {
  return zelcore::utility::EqualsIgnoringASCIICase(name.substr(0, 3), "xml");
}

bool IsWhiteSpace(std::string_view text) {
  return text.find_first_not_of(" \t\n\r") == std::string_view::npos;
}

void AppendEscapedText(std::string_view value, std::string& xml, std::string_view newline) {
  if (newline != "\n") {
    for (std::size_t end; (end = value.find('\n')) != std::string_view::npos;
         value.remove_prefix(end + 1)) {
      AppendEscaped(value.substr(0, end), kTextSpecials, xml);
      xml += newline;
    }
  }
  AppendEscaped(value, kTextSpecials, xml);
}

void AppendEscapedAttribute(std::string_view value, std::string& xml, char quote) {
  AppendEscaped(value, quote == '"' ? kAttributeSpecials : kSingleQuotedSpecials, xml);
}

std::string Quoted(std::string_view text) {
  constexpr std::size_t kShown = 100;
  std::string quoted = "\"";
  std::size_t position = 0;
  while (position < text.size() && position < kShown) {
    const char32_t character = NextCharacter(text, position);
    if (character == kMalformed) ++position;
    zelcore::utility::AppendUTF8(character == kMalformed || character < 0x20 ? U'?' : character,
                                 quoted);
  }
  quoted += position < text.size() ? "...\"" : "\"";
  return quoted;
}

std::string Describe(const zelcore::xml::Position& position) {
  return std::to_string(position.mLine) + ":" + std::to_string(position.mColumn) + ": ";
}

}  // namespace xmptoolkit
