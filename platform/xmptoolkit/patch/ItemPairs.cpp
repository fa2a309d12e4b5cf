#include <string>
#include <string_view>

#include <xmptoolkit/model/Comparison.h>
#include <xmptoolkit/patch/ItemPairs.h>
#include <zelcore/CommonSequence.h>

namespace xmptoolkit {

namespace {

void AppendPart(std::string_view part, std::string& key) {
  key += std::to_string(part.size());
  key.append(":").append(part);
}

// A text that tells a node from different ones.
void AppendKey(const Document& document, const Node& node, std::string& key) {
  const NamespaceId space = document.mNames.NamespaceOf(node.Name());
  AppendPart(document.mNames.URI(space), key);
  AppendPart(document.mNames.LocalName(node.Name()), key);
  AppendPart(std::to_string(node.Form() & ~(Node::kSpelling | kXMP_PropArrayIsAltText)), key);
  AppendPart(node.Value(), key);
  for (const Node& child : node.Children()) AppendKey(document, child, key);
  key += '?';
  for (const Node& qualifier : node.Qualifiers()) AppendKey(document, qualifier, key);
  key += ';';
}

// Which items of an array to look at: all but those that both arrays begin and end with.
struct Range {
  std::size_t mBegin = 0;
  std::size_t mEnd = 0;
};

class Keys {
 public:
  Keys(const Document& document, const NodeList& items, Range range) {
    for (std::size_t i = range.mBegin; i < range.mEnd; ++i) {
      AppendKey(document, items[i], mTexts.emplace_back());
    }
    mViews.assign(mTexts.begin(), mTexts.end());
  }
  const std::vector<std::string_view>& Views() const { return mViews; }

 private:
  std::vector<std::string> mTexts;
  std::vector<std::string_view> mViews;
};

}  // namespace

std::vector<ItemPair> PairItems(const Document& before, const Node& oldArray, const Document& after,
                                const Node& newArray) {
  const Comparison comparison(before, after, Equality::kMetadata);
  const NodeList& oldItems = oldArray.Children();
  const NodeList& newItems = newArray.Children();
  Range inOld{0, oldItems.Size()};
  Range inNew{0, newItems.Size()};
  std::vector<ItemPair> pairs;
  const auto isLeft = [&] { return inOld.mBegin < inOld.mEnd && inNew.mBegin < inNew.mEnd; };
  while (isLeft() && comparison.AreEqual(oldItems[inOld.mBegin], newItems[inNew.mBegin])) {
    pairs.push_back({inOld.mBegin++, inNew.mBegin++, true});
  }
  while (isLeft() && comparison.AreEqual(oldItems[inOld.mEnd - 1], newItems[inNew.mEnd - 1])) {
    --inOld.mEnd;
    --inNew.mEnd;
  }
  auto equal = zelcore::utility::CommonElements(Keys(before, oldItems, inOld).Views(),
                                                Keys(after, newItems, inNew).Views());
  for (auto& [oldItem, newItem] : equal) {
    oldItem += inOld.mBegin;
    newItem += inNew.mBegin;
  }
  for (std::size_t i = 0; inOld.mEnd + i < oldItems.Size(); ++i) {
    equal.emplace_back(inOld.mEnd + i, inNew.mEnd + i);
  }
  equal.emplace_back(oldItems.Size(), newItems.Size());  // the ends of both
  for (const auto& [oldEnd, newEnd] : equal) {
    while (inOld.mBegin < oldEnd || inNew.mBegin < newEnd) {
      ItemPair& pair = pairs.emplace_back();
      if (inOld.mBegin < oldEnd) pair.mBefore = inOld.mBegin++;
      if (inNew.mBegin < newEnd) pair.mAfter = inNew.mBegin++;
    }
    pairs.push_back({inOld.mBegin++, inNew.mBegin++, true});
  }
  pairs.pop_back();
  return pairs;
}

}  // namespace xmptoolkit
