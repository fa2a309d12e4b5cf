#include "formats/fdx/FDXTitlePage.h"

#include <algorithm>
#include <array>

#include "LowerCase.h"
#include "formats/Lines.h"

namespace zelstoryhost {
namespace {

struct Key {
  std::string_view mName;
  std::u16string_view mStart;  // of its line
};
constexpr std::array<Key, 2> kKeys{{{"Title", u"Title: "}, {"Author", u"Author: "}}};

constexpr std::array<std::string_view, 5> kBeforeAuthor{"by", "written by", "screenplay by",
                                                        "script by", "teleplay by"};

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

// A line with its key, unless it has it already.
std::string Keyed(std::string_view key, std::string_view line) {
  const std::string start = std::string(key) + ": ";
  const bool hasKey = LowerCase(std::string(line)).starts_with(LowerCase(start));
  return (hasKey ? "" : start) + std::string(line);
}

// The lines that are not blank, without the white space that places them on the page.
std::vector<std::string_view> LinesOf(const std::vector<TitleLine>& page) {
  std::vector<std::string_view> lines;
  for (const TitleLine& paragraph : page) {
    ForEachLine(std::string_view(paragraph.mText), [&](std::string_view line) {
      if (!Trimmed(line).empty()) lines.push_back(Trimmed(line));
    });
  }
  return lines;
}

std::string GuessedMetadata(const std::vector<TitleLine>& page) {
  std::string metadata;
  bool hasAuthor = false;
  bool isAuthor = false;  // the next line
  for (const std::string_view line : LinesOf(page)) {
    if (metadata.empty()) {
      metadata = Keyed("Title", line);
      continue;
    }
    (metadata += '\n') += isAuthor ? Keyed("Author", line) : std::string(line);
    hasAuthor = hasAuthor || isAuthor;
    isAuthor = !hasAuthor && std::ranges::find(kBeforeAuthor, LowerCase(std::string(line))) !=
                                 kBeforeAuthor.end();
  }
  return metadata;
}

}  // namespace

std::string MetadataOf(const std::vector<TitleLine>& lines) {
  const bool hasKeys =
      std::ranges::any_of(lines, [](const TitleLine& line) { return line.mKey.has_value(); });
  if (!hasKeys) return GuessedMetadata(lines);
  std::string metadata;
  for (const TitleLine& line : lines) {
    if (&line != lines.data()) metadata += '\n';
    const std::string key = line.mKey.value_or("");
    metadata += (key.empty() ? "" : key + ": ") + line.mText;
  }
  return metadata;
}

std::vector<KeyedLine> TitlePageOf(std::u16string_view metadata) {
  std::vector<KeyedLine> lines;
  if (metadata.empty()) return lines;
  ForEachLine(metadata, [&](std::u16string_view line) {
    lines.push_back({"", line});
    for (const Key& key : kKeys) {
      if (line.starts_with(key.mStart)) lines.back() = {key.mName, line.substr(key.mStart.size())};
    }
  });
  return lines;
}

}  // namespace zelstoryhost
