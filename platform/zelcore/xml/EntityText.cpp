#include <algorithm>
#include <array>

#include <zelcore/xml/EntityText.h>

namespace zelcore::xml {
namespace {

// The length of the markup at the front of a text that begins with "<".
std::size_t MarkupLength(std::string_view text) {
  struct Delimiters {
    std::string_view mOpening, mClosing;
  };
  static constexpr std::array<Delimiters, 3> kDelimiters{
      {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}}};
  for (const auto& [opening, closing] : kDelimiters) {
    if (!text.starts_with(opening)) continue;
    const std::size_t end = text.find(closing, opening.size());
    return end == std::string_view::npos ? text.size() : end + closing.size();
  }
  char quote = '\0';  // a tag may have a ">" in a quoted value
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (quote == '\0' && text[i] == '>') return i + 1;
    if (quote == '\0' && (text[i] == '"' || text[i] == '\'')) {
      quote = text[i];
    } else if (text[i] == quote) {
      quote = '\0';
    }
  }
  return text.size();
}

}  // namespace

std::string WithReferences(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    if (text.front() == '\r') {
      result += "&#13;";
      text.remove_prefix(1);
      continue;
    }
    const std::size_t length =
        text.front() == '<' ? MarkupLength(text) : std::min(text.find_first_of("\r<"), text.size());
    result += text.substr(0, length);
    text.remove_prefix(length);
  }
  return result;
}

}  // namespace zelcore::xml
