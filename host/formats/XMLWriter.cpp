#include "formats/XMLWriter.h"

#include <utility>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Text.h>

#include "UTF16.h"

namespace zelstoryhost {
namespace {

// Whether XML 1.0 can hold a character of one code unit.
constexpr bool IsXMLCharacter(char16_t unit) {
  return (unit >= 0x20 && unit < 0xFFFE) || unit == '\t' || unit == '\n' || unit == '\r';
}

// What stands for a character that would be read as something else; empty for the others. Line
// ends are normalised, and in attributes become blanks.
std::string_view Escaped(char16_t unit, bool isAttribute) {
  switch (unit) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '\r':
      return "&#13;";
    case '"':
      return isAttribute ? "&quot;" : "";
    case '\n':
      return isAttribute ? "&#10;" : "";
    case '\t':
      return isAttribute ? "&#9;" : "";
    default:
      return "";
  }
}

std::string CodePoint(char16_t unit) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text = "U+";
  for (int shift = 12; shift >= 0; shift -= 4) text += kDigits[(unit >> shift) & 15];
  return text;
}

}  // namespace

void XMLWriter::BreakLine() {
  mBytes += '\n';
  mBytes.append(2 * mOpen.size(), ' ');
}

void XMLWriter::CloseTag() {
  if (std::exchange(mIsInTag, false)) mBytes += '>';
}

XMLWriter& XMLWriter::Begin(std::string_view name) {
  CloseTag();
  if (!mOpen.empty()) mOpen.back().mHasChildren = true;
  BreakLine();
  (mBytes += '<') += name;
  mOpen.push_back({name});
  mIsInTag = true;
  return *this;
}

void XMLWriter::End() {
  const Element element = mOpen.back();
  mOpen.pop_back();
  if (std::exchange(mIsInTag, false)) {
    mBytes += "/>";
    return;
  }
  if (element.mHasChildren) BreakLine();
  ((mBytes += "</") += element.mName) += '>';
}

XMLWriter& XMLWriter::Attribute(std::string_view name, std::u16string_view value) {
  ((mBytes += ' ') += name) += "=\"";
  Append(value, true);
  mBytes += '"';
  return *this;
}

XMLWriter& XMLWriter::Attribute(std::string_view name, std::string_view utf8) {
  return Attribute(name, zelcore::utility::UTF8to16(utf8));
}

XMLWriter& XMLWriter::Text(std::u16string_view text) {
  if (text.empty()) return *this;
  CloseTag();
  Append(text, false);
  return *this;
}

void XMLWriter::Append(std::u16string_view text, bool isAttribute) {
  std::size_t plain = 0;  // where the characters begin that stand for themselves
  std::size_t i = 0;
  while (i < text.size()) {
    const std::size_t length = LengthOfCharacter(text.substr(i));
    if (length == 0 || !IsXMLCharacter(text[i])) {
      throw Error(mDocument, std::nullopt, "XML cannot hold the character " + CodePoint(text[i]),
                  mPlace.Describe());
    }
    const std::string_view escaped = Escaped(text[i], isAttribute);
    i += length;
    if (escaped.empty()) continue;
    mBytes += ToUTF8(text.substr(plain, i - 1 - plain));
    mBytes += escaped;
    plain = i;
  }
  mBytes += ToUTF8(text.substr(plain));
}

std::string XMLWriter::Take() {
  mBytes += '\n';
  return std::move(mBytes);
}

}  // namespace zelstoryhost
