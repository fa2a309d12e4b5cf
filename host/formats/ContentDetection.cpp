#include "formats/ContentDetection.h"

#include <algorithm>
#include <array>

namespace zelstoryhost {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kBlanks = " \t\r\n";

bool IsNameStart(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

// The ASCII bytes of a text, whatever the width of its characters, without a byte-order mark.
std::string NarrowText(std::string_view head) {
  for (const std::string_view mark : {"\xEF\xBB\xBF"sv, "\xFE\xFF"sv, "\xFF\xFE"sv}) {
    if (head.starts_with(mark)) head.remove_prefix(mark.size());
  }
  std::string text(head);
  std::erase(text, '\0');
  return text;
}

// What follows the first `end` in a text; nothing if it is not there.
std::string_view After(std::string_view text, std::string_view end) {
  const std::size_t found = text.find(end);
  return found == std::string_view::npos ? std::string_view() : text.substr(found + end.size());
}

// What follows a document type declaration, whose internal subset is in brackets.
std::string_view AfterDoctype(std::string_view text) {
  const std::size_t end = text.find_first_of("[>");
  if (end == std::string_view::npos) return {};
  return text[end] == '>' ? text.substr(end + 1) : After(After(text, "]"), ">");
}

}  // namespace

std::optional<std::string> RootElementIn(std::string_view head) {
  const std::string narrow = NarrowText(head);
  std::string_view text = narrow;
  bool isXML = false;
  while (true) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    if (text.starts_with("<?")) {
      text = After(text, "?>");
    } else if (text.starts_with("<!--")) {
      text = After(text, "-->");
    } else if (text.starts_with("<!DOCTYPE")) {
      text = AfterDoctype(text);
    } else {
      break;
    }
    isXML = true;
  }
  const bool isTag = text.size() > 1 && text[0] == '<' && IsNameStart(text[1]);
  if (!isTag) return isXML ? std::optional<std::string>("") : std::nullopt;
  return std::string(text.substr(1, std::min(text.find_first_of(" \t\r\n/>"), text.size()) - 1));
}

std::optional<std::string_view> ForeignFormIn(std::string_view head) {
  struct Form {
    std::string_view mStart, mName;
  };
  constexpr std::array<Form, 6> kForms{{{"%PDF-", "a PDF document"},
                                        {"PK\3\4", "a Word document or another ZIP archive"},
                                        {"\xD0\xCF\x11\xE0", "a Word document"},
                                        {"{\\rtf", "an RTF document"},
                                        {"<!DOCTYPE html", "a web page"},
                                        {"\x1F\x8B", "a gzip archive"}}};
  const auto* const form = std::find_if(kForms.begin(), kForms.end(), [head](const Form& known) {
    return head.starts_with(known.mStart);
  });
  return form == kForms.end() ? std::nullopt : std::optional(form->mName);
}

}  // namespace zelstoryhost
