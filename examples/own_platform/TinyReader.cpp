#include "TinyReader.h"

#include <array>
#include <optional>
#include <vector>

namespace {

using zelcore::UTF16String;
using Attributes = std::map<UTF16String, UTF16String>;

constexpr std::string_view kSpaces = " \t\r\n";

// Takes the text before `mark`, and the mark; takes nothing if there is no mark.
std::optional<std::string_view> TakeUpTo(std::string_view mark, std::string_view& text) {
  const std::size_t end = text.find(mark);
  if (end == std::string_view::npos) return std::nullopt;
  const std::string_view taken = text.substr(0, end);
  text.remove_prefix(end + mark.size());
  return taken;
}

bool Unescape(std::string_view escaped, UTF16String& text) {
  constexpr std::array<std::pair<std::string_view, char>, 5> kEntities{
      {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}}};
  std::string bytes;
  while (const auto plain = TakeUpTo("&", escaped)) {
    bytes += *plain;
    const auto name = TakeUpTo(";", escaped);
    const std::size_t before = bytes.size();
    for (const auto& [known, character] : kEntities) {
      if (name == known) bytes += character;
    }
    if (bytes.size() == before) return false;
  }
  text = zelcore::utility::UTF8to16(bytes.append(escaped));
  return true;
}

// Reads the attributes from the text of a tag after its name.
bool ReadAttributes(std::string_view tag, Attributes& attributes) {
  while (tag.find_first_not_of(kSpaces) != std::string_view::npos) {
    tag.remove_prefix(tag.find_first_not_of(kSpaces));
    const auto name = TakeUpTo("=", tag);
    if (!name || tag.empty() || (tag[0] != '"' && tag[0] != '\'')) return false;
    const char quote = tag[0];
    tag.remove_prefix(1);
    const auto value = TakeUpTo({&quote, 1}, tag);
    const auto [attribute, isNew] = attributes.emplace(zelcore::utility::UTF8to16(*name), u"");
    if (!isNew || !value || !Unescape(*value, attribute->second)) return false;
  }
  return true;
}

class Parse {
 public:
  explicit Parse(zelcore::xml::AbstractParseHandler& handler) : mHandler(handler) {}

  bool Run(std::string_view document) {
    while (const auto text = TakeUpTo("<", document)) {
      if (!ReadText(*text) || !ReadMarkup(document)) return false;
    }
    return mOpenNames.empty() && mHasRoot && ReadText(document);
  }

 private:
  bool ReadText(std::string_view escaped) {
    if (mOpenNames.empty()) return escaped.find_first_not_of(kSpaces) == std::string_view::npos;
    UTF16String text;
    if (!Unescape(escaped, text)) return false;
    if (!text.empty()) mHandler.Characters(text);
    return true;
  }

  // The text after a "<".
  bool ReadMarkup(std::string_view& document) {
    if (document.starts_with("!--")) return TakeUpTo("-->", document).has_value();
    if (document.starts_with("?")) return TakeUpTo("?>", document).has_value();
    const auto tag = TakeTag(document);
    if (!tag || tag->empty() || tag->front() == '!') return false;
    return tag->front() == '/' ? EndElement(tag->substr(1)) : StartElement(*tag);
  }

  // Up to the first ">" outside quotes.
  static std::optional<std::string_view> TakeTag(std::string_view& document) {
    char quote = '\0';
    for (std::size_t i = 0; i < document.size(); ++i) {
      const char c = document[i];
      if (c == '>' && quote == '\0') {
        const std::string_view tag = document.substr(0, i);
        document.remove_prefix(i + 1);
        return tag;
      }
      if (c == quote) {
        quote = '\0';
      } else if (quote == '\0' && (c == '"' || c == '\'')) {
        quote = c;
      }
    }
    return std::nullopt;
  }

  bool StartElement(std::string_view tag) {
    if (mOpenNames.empty() && mHasRoot) return false;
    mHasRoot = true;
    const bool isEmpty = tag.back() == '/';
    if (isEmpty) tag.remove_suffix(1);
    const std::string_view name = tag.substr(0, tag.find_first_of(kSpaces));
    Attributes attributes;
    if (!ReadAttributes(tag.substr(name.size()), attributes)) return false;
    mOpenNames.push_back(name);
    mHandler.StartElement(zelcore::utility::UTF8to16(name), attributes);
    return !isEmpty || EndElement(name);
  }

  bool EndElement(std::string_view tag) {
    const std::string_view name = tag.substr(0, tag.find_last_not_of(kSpaces) + 1);
    if (mOpenNames.empty() || name != mOpenNames.back()) return false;
    mOpenNames.pop_back();
    mHandler.EndElement(zelcore::utility::UTF8to16(name));
    return true;
  }

  zelcore::xml::AbstractParseHandler& mHandler;
  std::vector<std::string_view> mOpenNames;
  bool mHasRoot = false;
};

}  // namespace

bool ReadDocument(std::string_view document, zelcore::xml::AbstractParseHandler& handler) {
  handler.StartDocument();
  const bool isGood = Parse(handler).Run(document);
  handler.EndDocument();
  return isGood;
}
