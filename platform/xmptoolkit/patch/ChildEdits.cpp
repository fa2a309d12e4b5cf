#include <xmptoolkit/patch/ChildEdits.h>

namespace xmptoolkit {

namespace {

bool BeginsLine(const SourceTree& tree, std::size_t element) {
  return HoldsLineEnd(tree.SpaceBefore(tree[element].mWhole.mBegin));
}

}  // namespace

void AppendChildren(const SourceTree& tree, std::size_t element, const std::string& indent,
                    const Addition& addition, Edits& edits) {
  const SourceElement& holder = tree[element];
  if (!holder.mChildren.empty()) {
    const Span last = tree[holder.mChildren.back()].mWhole;
    return edits.Insert(last.mEnd, addition(tree.SpaceBefore(last.mBegin)));
  }
  const bool beginsLine = BeginsLine(tree, element);
  if (!holder.mIsEmptyTag) {
    return edits.Insert(holder.mContent.mBegin, addition(beginsLine ? "" : " "));
  }
  std::string xml = ">";
  if (beginsLine) {
    const std::string space(LastLine(tree.SpaceBefore(holder.mWhole.mBegin)));
    xml.append(addition(space + indent)).append(space);
  } else {
    xml += addition("");
  }
  xml.append("</").append(holder.mName).append(">");
  edits.Replace(holder.mContent, std::move(xml));
}

void RemoveChildren(const SourceTree& tree, std::size_t element,
                    const std::vector<std::size_t>& removed, bool mayBecomeEmpty, Edits& edits) {
  const SourceElement& holder = tree[element];
  const bool becomesEmpty = mayBecomeEmpty && !removed.empty() &&
                            removed.size() == holder.mChildren.size() && !holder.mHasMarkup;
  if (becomesEmpty) {
    const bool hasSpace = !tree.SpaceBefore(tree[holder.mChildren.front()].mWhole.mBegin).empty();
    const std::size_t tagEnd = holder.mContent.mBegin - 1;
    if (hasSpace == BeginsLine(tree, element)) {
      return edits.Replace({tagEnd, holder.mWhole.mEnd}, "/>");
    }
  }
  for (const std::size_t child : removed) {
    edits.Erase(tree.WithSpaceBefore(tree[child].mWhole));
  }
}

void RemoveAttribute(const SourceTree& tree, const SourceAttribute& attribute, Edits& edits) {
  edits.Erase(tree.WithSpaceBefore(attribute.mWhole));
}

}  // namespace xmptoolkit
