#pragma once

#include <algorithm>
#include <optional>
#include <vector>

#include "Support.h"

// A second, independent statement of the text rules. It is simple rather than fast.
namespace fuzzing {

// Returns the first character of UTF-8 bytes, by the table of well-formed byte sequences; nothing
// if it is ill-formed. `length` receives the length of the sequence, or of its maximal ill-formed
// part.
inline std::optional<char32_t> FirstCharacter(std::string_view bytes, std::size_t& length) {
  constexpr struct {
    unsigned mFirst, mLast, mSecondFrom, mSecondTo, mLength;
  } kTable[] = {
      {0x00, 0x7F, 0x00, 0x00, 1}, {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
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
    const char32_t c = FirstCharacter(bytes, length).value_or(0xFFFD);
    if (c > 0xFFFF) text += static_cast<char16_t>(0xD800 + (c - 0x10000) / 0x400);
    text += static_cast<char16_t>(c > 0xFFFF ? 0xDC00 + c % 0x400 : c);
  }
  return text;
}

// Returns whether XML 1.0 can carry UTF-8 bytes.
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
inline Text Folded(Text text) {
  for (char16_t& unit : text)
    if (u'A' <= unit && unit <= u'Z') unit = static_cast<char16_t>(unit + 32);
  return text;
}
inline bool EndsWith(const Text& text, const Text& word) {
  return !word.empty() && Folded(text).ends_with(Folded(word));
}

struct Heading {
  Text mSetting, mLocation, mTime;
};

inline Heading SplitRest(const Text& rest) {
  Heading heading;
  if (const std::size_t dash = rest.find(u'-', 1); dash != rest.npos) {
    heading.mTime = WithoutLeading(rest.substr(dash + 1), u" \t");
    heading.mLocation = rest.substr(0, rest.find_last_not_of(u" \t", dash - 1) + 1);
  }
  for (const Text word : {u"Late Night", u"Night", u"Morning", u"Evening", u"Day"}) {
    if (!heading.mTime.empty() || !EndsWith(rest, word)) continue;
    heading.mTime = word;
    if (rest.size() > word.size())
      heading.mLocation = rest.substr(0, rest.size() - word.size() - 1);
  }
  if (heading.mLocation.empty()) heading.mLocation = rest;
  return heading;
}

inline Heading SplitHeading(const Text& text) {
  Text setting;
  for (const Text& entry : Words("INT EXT I/E E/I INT/EXT EXT/INT P.O.V. INN AUSS I/A A/I INN/AUSS "
                                 "AUSS/INN SUBJEKTIVE P.D.V. EST INT/EST")) {
    if (Folded(text).starts_with(Folded(entry)) && entry.size() > setting.size()) setting = entry;
  }
  Text rest = text.substr(setting.size());
  if (!setting.empty()) {
    if (rest.starts_with(u'.')) rest = rest.substr(1);
  } else if (const std::size_t stop = text.find(u'.'); stop != text.npos) {
    setting = WithoutLeading(text.substr(0, stop), u" \t");
    rest = WithoutLeading(text.substr(stop), u".");
  }
  rest = WithoutLeading(rest, u" \t");
  Heading heading = rest.empty() ? Heading() : SplitRest(rest);
  heading.mSetting = setting;
  return heading;
}

// Returns the pieces of a text: one before each delimiter, and the text after the last one, if any.
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

}  // namespace fuzzing
