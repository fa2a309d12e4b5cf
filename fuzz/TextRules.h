#pragma once

#include <algorithm>
#include <locale>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "Support.h"

// The text rules stated a second time, in the plainest way; nothing here is fast.
namespace fuzzing {

// One character of UTF-8 by the table of well-formed byte sequences: the characters that `bytes`
// begins with, or nothing for its maximal ill-formed part; `length` is that of either.
inline std::optional<char32_t> FirstCharacter(std::string_view bytes, std::size_t& length) {
  constexpr struct {
    unsigned mFirst, mLast, mSecondFrom, mSecondTo, mLength;
  } kTable[] = {
      {0x00, 0x7F, 0, 0, 1},       {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
      {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
      {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4}};
  const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
  length = 1;
  for (const auto& row : kTable) {
    if (byte(0) < row.mFirst || byte(0) > row.mLast) continue;
    char32_t character = row.mLength == 1 ? byte(0) : byte(0) & (0x7Fu >> row.mLength);
    for (; length < row.mLength; ++length) {
      const unsigned from = length == 1 ? row.mSecondFrom : 0x80;
      const unsigned to = length == 1 ? row.mSecondTo : 0xBF;
      if (length == bytes.size() || byte(length) < from || byte(length) > to) return std::nullopt;
      character = character * 64 + byte(length) % 64;
    }
    return character;
  }
  return std::nullopt;
}

inline Text ToUTF16(std::string_view bytes) {
  Text text;
  for (std::size_t length = 0; !bytes.empty(); bytes.remove_prefix(length)) {
    const char32_t character = FirstCharacter(bytes, length).value_or(0xFFFD);
    if (character > 0xFFFF) {
      text += static_cast<char16_t>(0xD800 + (character - 0x10000) / 0x400);
      text += static_cast<char16_t>(0xDC00 + (character - 0x10000) % 0x400);
    } else {
      text += static_cast<char16_t>(character);
    }
  }
  return text;
}

// What XML 1.0 calls a Char, in UTF-8.
inline bool IsXMLText(std::string_view bytes) {
  for (std::size_t length = 0; !bytes.empty(); bytes.remove_prefix(length)) {
    const char32_t c = FirstCharacter(bytes, length).value_or(0);
    if (c < 0x20 ? c != 9 && c != 10 && c != 13 : c == 0xFFFE || c == 0xFFFF) return false;
  }
  return true;
}

inline Text WithoutLeading(const Text& text, const char16_t* set) {
  return text.substr(std::min(text.find_first_not_of(set), text.size()));
}
inline Text WithoutTrailing(const Text& text, const char16_t* set) {
  return text.substr(0, text.find_last_not_of(set) + 1);
}
inline Text Folded(Text text) {
  for (char16_t& unit : text) unit = u'A' <= unit && unit <= u'Z' ? unit + 32 : unit;
  return text;
}
inline bool EndsWith(const Text& text, const Text& word) {
  return !word.empty() && Folded(text).ends_with(Folded(word));
}

struct Heading {
  Text mSetting, mLocation, mTime;
};

inline void SplitRest(const Text& rest, Heading& heading) {
  if (const std::size_t dash = rest.find(u'-', 1); dash != rest.npos) {
    heading.mTime = WithoutLeading(rest.substr(dash + 1), u" \t");
    heading.mLocation = WithoutTrailing(rest.substr(0, dash), u" \t");
  }
  if (heading.mTime.empty()) {
    for (const Text word : {u"Late Night", u"Night", u"Morning", u"Evening", u"Day"}) {
      if (!EndsWith(rest, word)) continue;
      heading.mTime = word;
      if (rest.size() > word.size())
        heading.mLocation = rest.substr(0, rest.size() - word.size() - 1);
      break;
    }
  }
  if (heading.mLocation.empty()) heading.mLocation = rest;
}

inline Heading SplitHeading(const Text& text) {
  Heading heading;
  for (const Text entry :
       {u"INT", u"EXT", u"I/E", u"E/I", u"INT/EXT", u"EXT/INT", u"P.O.V.", u"INN", u"AUSS", u"I/A",
        u"A/I", u"INN/AUSS", u"AUSS/INN", u"SUBJEKTIVE", u"P.D.V.", u"EST", u"INT/EST"}) {
    if (Folded(text).starts_with(Folded(entry)) && entry.size() > heading.mSetting.size())
      heading.mSetting = entry;
  }
  Text rest = text.substr(heading.mSetting.size());
  const std::size_t stop = text.find(u'.');
  if (!heading.mSetting.empty()) {
    if (rest.starts_with(u'.')) rest = rest.substr(1);
  } else if (stop != text.npos) {
    heading.mSetting = WithoutLeading(text.substr(0, stop), u" \t");
    rest = WithoutLeading(text.substr(stop), u".");
  }
  rest = WithoutLeading(rest, u" \t");
  if (!rest.empty()) SplitRest(rest, heading);
  return heading;
}

// The pieces of a text, one for each delimiter but one at the very end, and what is left last.
inline std::vector<Text> Pieces(const Text& text, const Text& delimiters, bool skipsRepeated) {
  std::vector<Text> pieces(text.empty() ? 0 : 1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (delimiters.find(text[i]) == text.npos) {
      pieces.back() += text[i];
      continue;
    }
    while (skipsRepeated && i + 1 < text.size() && delimiters == text.substr(i + 1, 1)) ++i;
    if (i + 1 < text.size()) pieces.emplace_back();
  }
  return pieces;
}

// A stream of the standard library, for comparison: its characters are the text's ASCII.
inline std::istringstream ClassicStream(const Text& text) {
  std::string ascii;
  for (const char16_t unit : text) ascii += unit < 0x80 ? static_cast<char>(unit) : '?';
  std::istringstream stream(ascii);
  stream.imbue(std::locale::classic());
  return stream;
}

// Seconds of "hours:minutes:seconds"; nothing when all three are 0.
inline std::optional<std::int64_t> Seconds(const Text& duration) {
  std::int64_t total = 0;
  bool hasAny = false;
  std::vector<Text> fields = Pieces(duration, u":", false);
  fields.resize(3);
  for (const Text& field : fields) {
    std::int32_t number = 0;
    std::istringstream stream = ClassicStream(field);
    if (!(stream >> number)) number = 0;
    hasAny |= number != 0;
    total = total * 60 + number;
  }
  return hasAny ? std::optional(total) : std::nullopt;
}

}  // namespace fuzzing
