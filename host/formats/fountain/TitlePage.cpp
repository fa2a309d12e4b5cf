#include "formats/fountain/TitlePage.h"

#include "formats/Lines.h"
#include "formats/fountain/FountainSyntax.h"

namespace zelstoryhost::fountain {
namespace {

constexpr const char* kIndent = "    ";

// A line of a title page as the metadata has it.
std::string LineOfMetadata(std::string_view line, bool& hasEmphasis) {
  const auto key = TitleKeyIn(line);
  if (!key) return kIndent + WithoutMarks(Trim(line), hasEmphasis);
  const std::string_view value = Trim(line.substr(key->size() + 1));
  const std::string name = WithoutMarks(TrimEnd(*key), hasEmphasis) + ":";
  return value.empty() ? name : name + " " + WithoutMarks(value, hasEmphasis);
}

}  // namespace

// Any key will do, but a transition such as FADE IN: is none: something must follow it.
bool BeginsWithTitlePage(std::string_view first, std::string_view second) {
  const auto key = TitleKeyIn(first);
  if (!key) return false;
  const bool hasValue =
      !IsBlank(first.substr(key->size() + 1)) || (second.starts_with(' ') && !IsBlank(second));
  return hasValue || IsKnownTitleKey(*key);
}

TitlePage ReadTitlePage(const FountainText& text, FindingList& findings) {
  const auto lineAt = [&text](std::size_t index) {
    return index < text.CountLines() ? text.Line(index) : std::string_view();
  };
  std::size_t next = 0;
  while (next < text.CountLines() && IsBlank(lineAt(next))) ++next;
  if (!BeginsWithTitlePage(lineAt(next), lineAt(next + 1))) return {};
  const std::size_t first = next;
  TitlePage page;
  bool hasKnownKey = false;
  for (; !IsBlank(lineAt(next)); ++next) {
    const auto key = TitleKeyIn(lineAt(next));
    hasKnownKey = hasKnownKey || (key && IsKnownTitleKey(*key));
    if (!page.mMetadata.empty()) page.mMetadata += '\n';
    page.mMetadata += LineOfMetadata(lineAt(next), page.mHasEmphasis);
  }
  if (!hasKnownKey) {
    findings.Add(Severity::kNote, "the text up to the first empty line is taken for a title page",
                 zelcore::xml::Position{text.NumberOf(first), 1});
  }
  page.mLines = next;
  return page;
}

std::string WriteTitlePage(const std::string& metadata, FindingList& findings) {
  std::string page;
  ForEachLine(std::string_view(metadata), [&page](std::string_view line) {
    if (IsBlank(line)) return;
    const bool isIndented = line.starts_with(' ');
    const bool escapesFirst = !isIndented && !TitleKeyIn(line) && IsEscapable(line);
    const std::string written = WithEscapes(Trim(line), escapesFirst);
    const bool hasKey = !isIndented && TitleKeyIn(written);
    if (page.empty() && !hasKey) page += "Notes:\n";
    ((page += hasKey ? "" : kIndent) += written) += '\n';
  });
  FindingList unused;
  if (ReadTitlePage(FountainText(page, unused), unused).mMetadata != metadata) {
    findings.Add(Severity::kNote, "the metadata text is no title page as Fountain has it",
                 std::nullopt);
  }
  return page.empty() ? page : page + '\n';
}

}  // namespace zelstoryhost::fountain
