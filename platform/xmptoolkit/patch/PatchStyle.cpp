#include <algorithm>
#include <optional>

#include <xmptoolkit/model/Names.h>
#include <xmptoolkit/patch/PatchStyle.h>
#include <xmptoolkit/patch/SourceForm.h>

namespace xmptoolkit {

namespace {

std::string_view IndentationIn(std::string_view space) {
  const std::string_view line = LastLine(space);
  return line.substr(std::min(line.find_first_not_of("\r\n"), line.size()));
}

// What an element within another is indented by beyond it; nothing if they share a line.
std::optional<std::string> IndentWithin(const SourceTree& tree, std::size_t parent) {
  const std::vector<std::size_t>& children = tree[parent].mChildren;
  if (children.empty()) return std::nullopt;
  const std::string_view space = tree.SpaceBefore(tree[children.front()].mWhole.mBegin);
  const std::string_view outer = IndentationIn(tree.SpaceBefore(tree[parent].mWhole.mBegin));
  const std::string_view inner = IndentationIn(space);
  if (!HoldsLineEnd(space) || !inner.starts_with(outer)) return std::nullopt;
  return std::string(inner.substr(outer.size()));
}

const char* MostFrequentLineEnd(std::string_view text) {
  std::size_t pairs = 0;
  std::size_t lineFeeds = 0;
  for (std::size_t at = 0; (at = text.find('\n', at)) != std::string_view::npos;
       ++at, ++lineFeeds) {
    if (at > 0 && text[at - 1] == '\r') ++pairs;
  }
  if (2 * pairs > lineFeeds) return "\r\n";
  return lineFeeds == 0 && text.find('\r') != std::string_view::npos ? "\r" : "\n";
}

}  // namespace

PatchStyle::PatchStyle(const SourceTree& tree, std::size_t rdf,
                       const std::vector<std::size_t>& descriptions) {
  const std::string_view text = tree.Text();
  mLineEnd = MostFrequentLineEnd(text);
  const auto attributes = tree.Attributes(descriptions.empty() ? rdf : descriptions.back());
  if (!attributes.empty()) mQuote = text[attributes.back().mValue.mEnd];
  FindIndent(tree, rdf);
  FindPropertyForm(tree, descriptions);
  FindStructForm(tree, rdf);
}

void PatchStyle::FindIndent(const SourceTree& tree, std::size_t rdf) {
  for (std::size_t element = rdf; element < tree.Size(); ++element) {
    auto indent = IndentWithin(tree, element);
    if (!indent) continue;
    mIndent = std::move(*indent);
    if (!mIndent.empty()) return;  // else another level may be indented
  }
}

void PatchStyle::FindPropertyForm(const SourceTree& tree,
                                  const std::vector<std::size_t>& descriptions) {
  std::size_t attributes = 0;
  std::size_t elements = 0;
  for (const std::size_t description : descriptions) {
    for (const SourceAttribute& attribute : tree.Attributes(description)) {
      if (IsPropertyAttribute(tree, description, attribute)) ++attributes;
    }
    for (const std::size_t child : tree[description].mChildren) {
      if (tree[child].mChildren.empty()) ++elements;
    }
  }
  mSimpleAreAttributes = attributes > elements;
}

// The first struct shows the form.
void PatchStyle::FindStructForm(const SourceTree& tree, std::size_t rdf) {
  for (std::size_t element = rdf + 1; element < tree.Size(); ++element) {
    const bool isTop = tree[element].mParent == rdf;
    if (isTop) continue;
    if (tree.FindAttribute(element, kRDFNamespace, "parseType") != nullptr) return;
    const bool isDescription = tree.Is(element, kRDFNamespace, "Description");
    const bool isBareStruct = tree[element].mChildren.empty() &&
                              HasPropertyAttributes(tree, element) &&
                              FormOf(tree, element).mKind == SourceKind::kStruct;
    if (!isDescription && !isBareStruct) continue;
    if (isDescription) mStructForm = StructForm::kDescription;
    mFieldsAreAttributes = HasPropertyAttributes(tree, element);
    return;
  }
}

RDFLayout PatchStyle::LayoutAfter(std::string_view space) const {
  RDFLayout layout;
  layout.mQuote = mQuote;
  layout.mStructForm = mStructForm;
  layout.mFieldsAreAttributes = mFieldsAreAttributes;
  layout.mTextNewline = mLineEnd;
  const bool beginsLine = HoldsLineEnd(space);
  layout.mNewline = beginsLine ? mLineEnd : "";
  layout.mIndent = beginsLine ? mIndent : "";
  if (beginsLine) layout.mBaseIndent = IndentationIn(space);
  return layout;
}

}  // namespace xmptoolkit
