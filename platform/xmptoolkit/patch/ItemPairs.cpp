#include <string>
#include <string_view>
#include <utility>

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

// The pairs of equal items, in order, by their positions.
std::vector<std::pair<std::size_t, std::size_t>> EqualItems(const Document& before,
                                                            const NodeList& oldItems,
                                                            const Document& after,
                                                            const NodeList& newItems) {
  const Comparison comparison(before, after, Equality::kMetadata);
  Range inOld{0, oldItems.Size()};
  Range inNew{0, newItems.Size()};
  std::vector<std::pair<std::size_t, std::size_t>> equal;
  const auto isLeft = [&] { return inOld.mBegin < inOld.mEnd && inNew.mBegin < inNew.mEnd; };
  while (isLeft() && comparison.AreEqual(oldItems[inOld.mBegin], newItems[inNew.mBegin])) {
    equal.emplace_back(inOld.mBegin++, inNew.mBegin++);
  }
  while (isLeft() && comparison.AreEqual(oldItems[inOld.mEnd - 1], newItems[inNew.mEnd - 1])) {
    --inOld.mEnd;
    --inNew.mEnd;
  }
  const Keys oldKeys(before, oldItems, inOld);
  const Keys newKeys(after, newItems, inNew);
  for (const auto& [inKeys, inOthers] :
       zelcore::utility::CommonElements(oldKeys.Views(), newKeys.Views())) {
    equal.emplace_back(inOld.mBegin + inKeys, inNew.mBegin + inOthers);
  }
  for (; inOld.mEnd < oldItems.Size(); ++inOld.mEnd, ++inNew.mEnd) {
    equal.emplace_back(inOld.mEnd, inNew.mEnd);
  }
  return equal;
}

}  // namespace

std::vector<ItemPair> PairItems(const Document& before, const Node& oldArray, const Document& after,
                                const Node& newArray) {
  const NodeList& oldItems = oldArray.Children();
  const NodeList& newItems = newArray.Children();
  auto equal = EqualItems(before, oldItems, after, newItems);
  equal.emplace_back(oldItems.Size(), newItems.Size());  // the ends of both
  std::vector<ItemPair> pairs;
  std::size_t inOld = 0;
  std::size_t inNew = 0;
  for (const auto& [oldEnd, newEnd] : equal) {
    while (inOld < oldEnd || inNew < newEnd) {
      ItemPair& pair = pairs.emplace_back();
      if (inOld < oldEnd) pair.mBefore = inOld++;
      if (inNew < newEnd) pair.mAfter = inNew++;
    }
    pairs.push_back({inOld++, inNew++, true});
  }
  pairs.pop_back();
  return pairs;
}

}  // namespace xmptoolkit
