#include "formats/fountain/FountainSyntax.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include <utf8proc.h>

#include <zelstoryhost/Text.h>

#include "Letters.h"
#include "LowerCase.h"

namespace zelstoryhost::fountain {
namespace {

constexpr bool IsASCII(char c) {
  return static_cast<unsigned char>(c) < 0x80;
}

constexpr bool IsASCIILetterOrDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool BeginsWithLetterOrDigit(std::string_view text) {
  if (text.empty()) return false;
  return IsASCII(text[0]) ? IsASCIILetterOrDigit(text[0])
                          : IsLetterOrDigit(FirstCharacter(text).mValue);
}

// Whether a text has capitals and no small letters. Scripts without the difference have no
// capitals. What stands in parentheses does not count, if `exceptParentheses`.
bool IsInCapitals(std::string_view text, bool exceptParentheses) {
  bool hasCapital = false;
  int depth = 0;
  while (!text.empty()) {
    const Character character = FirstCharacter(text);
    text.remove_prefix(character.mLength);
    if (exceptParentheses && character.mValue == '(') ++depth;
    if (exceptParentheses && character.mValue == ')' && depth > 0) --depth;
    if (depth > 0) continue;
    const auto category = utf8proc_category(static_cast<utf8proc_int32_t>(character.mValue));
    if (category == UTF8PROC_CATEGORY_LL) return false;
    hasCapital = hasCapital || category == UTF8PROC_CATEGORY_LU;
  }
  return hasCapital;
}

// Whether the character at `place` follows an odd number of backslashes.
bool IsEscaped(std::string_view text, std::size_t place) {
  const std::size_t before = text.substr(0, place).find_last_not_of('\\');
  return (place - (before == std::string_view::npos ? 0 : before + 1)) % 2 != 0;
}

// A text in which nothing begins a note or a boneyard and, if wanted, nothing is a mark of
// emphasis.
std::string Escaped(std::string_view text, bool escapesFirst, bool escapesMarks) {
  std::string line;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool opensNote =
        c == '[' && (text.substr(i + 1).starts_with('[') || (i > 0 && text[i - 1] == '['));
    const bool opensBoneyard = c == '*' && i > 0 && text[i - 1] == '/';
    const bool isMark = escapesMarks && (c == '*' || c == '_' || c == '\\');
    if (opensNote || opensBoneyard || isMark || (escapesFirst && i == 0)) line += '\\';
    line += c;
  }
  return line;
}

}  // namespace

bool EndsWith(std::string_view text, char c) {
  return text.ends_with(c) && !IsEscaped(text, text.size() - 1);
}

std::string_view TrimEnd(std::string_view text) {
  const std::size_t last = text.find_last_not_of(' ');
  return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

std::string_view Trim(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  return TrimEnd(text);
}

bool IsBlank(std::string_view line) {
  return line.find_first_not_of(' ') == std::string_view::npos;
}

bool IsEscapable(std::string_view text) {
  constexpr std::string_view kWhiteSpace = " \t\n\v\f";
  return !text.empty() && kWhiteSpace.find(text[0]) == std::string_view::npos &&
         !BeginsWithLetterOrDigit(text);
}

bool IsNaturalHeading(std::string_view line) {
  constexpr std::array<std::string_view, 7> kFirstWords{"int",     "ext",     "est", "int./ext",
                                                        "int/ext", "ext/int", "i/e"};
  line.remove_prefix(std::min(line.find_first_not_of(" *_"), line.size()));
  const std::string start = LowerCase(std::string(line.substr(0, 9)));
  return std::ranges::any_of(kFirstWords, [&start](std::string_view word) {
    return start.starts_with(word) && start.size() > word.size() &&
           (start[word.size()] == ' ' || start[word.size()] == '.');
  });
}

bool IsForcedHeading(std::string_view line) {
  line = Trim(line);
  if (!line.starts_with('.')) return false;
  line.remove_prefix(1);
  return BeginsWithLetterOrDigit(line) || (line.starts_with('\\') && IsEscapable(line.substr(1)));
}

bool IsSceneNumber(std::string_view text) {
  if (text.empty()) return false;
  while (!text.empty()) {
    if (text[0] != '-' && text[0] != '.' && !BeginsWithLetterOrDigit(text)) return false;
    text.remove_prefix(FirstCharacter(text).mLength);
  }
  return true;
}

std::string_view TakeSceneNumber(std::string_view& heading) {
  if (heading.size() < 3 || !heading.ends_with('#')) return {};
  const std::size_t begin = heading.rfind('#', heading.size() - 2);
  if (begin == std::string_view::npos || IsEscaped(heading, begin)) return {};
  const std::string_view number = heading.substr(begin + 1, heading.size() - begin - 2);
  if (!IsSceneNumber(number)) return {};
  heading = TrimEnd(heading.substr(0, begin));
  return number;
}

bool IsNaturalTransition(std::string_view line) {
  return line.ends_with("TO:") && IsInCapitals(line, false);
}

bool IsNaturalCue(std::string_view line) {
  return IsInCapitals(line, true);
}

bool IsCentred(std::string_view line) {
  line = Trim(line);
  return line.size() > 1 && line.starts_with('>') && EndsWith(line, '<');
}

bool IsParenthetical(std::string_view line) {
  line = Trim(line);
  return line.size() > 1 && line.starts_with('(') && line.ends_with(')');
}

bool IsPageBreak(std::string_view line) {
  line = Trim(line);
  return line.size() >= 3 && line.find_first_not_of('=') == std::string_view::npos;
}

bool IsSection(std::string_view line) {
  line = Trim(line);
  return line.starts_with('#') && line.find_first_not_of("# ") != std::string_view::npos;
}

bool IsSynopsis(std::string_view line) {
  line = Trim(line);
  return line.starts_with('=') && !IsPageBreak(line) && !IsBlank(line.substr(1));
}

bool IsOutline(std::string_view line) {
  return IsSection(line) || IsPageBreak(line) || IsSynopsis(line);
}

bool HasMark(std::string_view line) {
  line = Trim(line);
  return !line.empty() && std::string_view("!@>~#=.").find(line[0]) != std::string_view::npos;
}

std::optional<std::string_view> TitleKeyIn(std::string_view line) {
  const std::size_t colon = line.find(':');
  const bool isKey = colon != std::string_view::npos && colon > 0 && line[0] != ' ' &&
                     !HasMark(line) && !IsNaturalHeading(line);
  return isKey ? std::optional(line.substr(0, colon)) : std::nullopt;
}

bool IsKnownTitleKey(std::string_view key) {
  constexpr std::array<std::string_view, 12> kKeys{
      "title", "credit",  "author",       "authors",   "source",   "notes",
      "date",  "contact", "contact info", "copyright", "revision", "draft date"};
  return std::ranges::find(kKeys, LowerCase(std::string(Trim(key)))) != kKeys.end();
}

std::string WithEscapes(std::string_view text, bool escapesFirst) {
  // The backslash of one escape can turn the marks beside it into emphasis, so the result is read.
  std::string line = Escaped(text, escapesFirst, false);
  bool found = false;
  return WithoutMarks(line, found) == text ? line : Escaped(text, escapesFirst, true);
}

}  // namespace zelstoryhost::fountain
