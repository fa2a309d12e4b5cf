#include "Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace xmptoolkit {

namespace {

unsigned ByteAt(std::string_view text, std::size_t position) {
  return static_cast<unsigned char>(text[position]);
}

// The well-formed byte sequences by their first byte, as Unicode's table 3-7 lists them: how many
// continuation bytes follow, and the range of the first of them.
struct LeadByte {
  unsigned mContinuations;
  unsigned mSecondLow;
  unsigned mSecondHigh;
};

LeadByte DescribeLead(unsigned lead) {
  if (lead < 0xC2 || lead > 0xF4) return {0, 0, 0};
  if (lead < 0xE0) return {1, 0x80, 0xBF};
  if (lead < 0xF0) return {2, lead == 0xE0 ? 0xA0u : 0x80u, lead == 0xED ? 0x9Fu : 0xBFu};
  return {3, lead == 0xF0 ? 0x90u : 0x80u, lead == 0xF4 ? 0x8Fu : 0xBFu};
}

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
bool LiesIn(const Ranges& ranges, char32_t c) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [c](const Range& range) { return range.first <= c && c <= range.second; });
}

template <typename Accepts>
std::size_t FindRefused(std::string_view text, Accepts accepts) {
  for (std::size_t position = 0; position < text.size();) {
    const std::size_t start = position;
    if (!accepts(DecodeUTF8(text, position))) return start;
  }
  return std::string_view::npos;
}

}  // namespace

char32_t DecodeUTF8(std::string_view text, std::size_t& position) {
  const unsigned lead = ByteAt(text, position);
  if (lead < 0x80) {
    ++position;
    return lead;
  }
  const LeadByte form = DescribeLead(lead);
  if (form.mContinuations == 0 || text.size() - position <= form.mContinuations) return kMalformed;
  char32_t character = lead & (0x3Fu >> form.mContinuations);
  for (unsigned i = 1; i <= form.mContinuations; ++i) {
    const unsigned byte = ByteAt(text, position + i);
    if (byte < (i == 1 ? form.mSecondLow : 0x80u)) return kMalformed;
    if (byte > (i == 1 ? form.mSecondHigh : 0xBFu)) return kMalformed;
    character = (character << 6) | (byte & 0x3F);
  }
  position += form.mContinuations + 1;
  return character;
}

void AppendUTF8(char32_t character, std::string& text) {
  const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
  if (character < 0x80) return append(character);
  if (character < 0x800) {
    append(0xC0 | (character >> 6));
  } else {
    if (character < 0x10000) {
      append(0xE0 | (character >> 12));
    } else {
      append(0xF0 | (character >> 18));
      append(0x80 | ((character >> 12) & 0x3F));
    }
    append(0x80 | ((character >> 6) & 0x3F));
  }
  append(0x80 | (character & 0x3F));
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
  if (!LiesIn(kNameStart, DecodeUTF8(text, position))) return false;
  const auto isNameCharacter = [](char32_t c) {
    return LiesIn(kNameStart, c) || LiesIn(kNameRest, c);
  };
  return FindRefused(text.substr(position), isNameCharacter) == std::string_view::npos;
}

bool IsReservedName(std::string_view name) {
  if (name.size() < 3) return false;
  return (name[0] | 0x20) == 'x' && (name[1] | 0x20) == 'm' && (name[2] | 0x20) == 'l';
}

bool IsWhiteSpace(std::string_view text) {
  return text.find_first_not_of(" \t\n\r") == std::string_view::npos;
}

void AppendEscapedText(std::string_view value, std::string& xml) {
  for (std::size_t start = 0;;) {
    const std::size_t special = value.find_first_of("&<>\r", start);
    xml += value.substr(start, special - start);
    if (special == std::string_view::npos) return;
    switch (value[special]) {
      case '&':
        xml += "&amp;";
        break;
      case '<':
        xml += "&lt;";
        break;
      case '>':
        xml += "&gt;";
        break;
      default:
        xml += "&#xD;";
        break;
    }
    start = special + 1;
  }
}

void AppendEscapedAttribute(std::string_view value, std::string& xml) {
  for (std::size_t start = 0;;) {
    const std::size_t special = value.find_first_of("&<\"\t\n\r", start);
    xml += value.substr(start, special - start);
    if (special == std::string_view::npos) return;
    switch (value[special]) {
      case '&':
        xml += "&amp;";
        break;
      case '<':
        xml += "&lt;";
        break;
      case '"':
        xml += "&quot;";
        break;
      case '\t':
        xml += "&#x9;";
        break;
      case '\n':
        xml += "&#xA;";
        break;
      default:
        xml += "&#xD;";
        break;
    }
    start = special + 1;
  }
}

std::string Quoted(std::string_view text) {
  constexpr std::size_t kShown = 100;
  std::string quoted = "\"";
  std::size_t position = 0;
  while (position < text.size() && position < kShown) {
    const char32_t character = DecodeUTF8(text, position);
    if (character == kMalformed) ++position;
    AppendUTF8(character == kMalformed || character < 0x20 ? U'?' : character, quoted);
  }
  quoted += position < text.size() ? "...\"" : "\"";
  return quoted;
}

}  // namespace xmptoolkit
