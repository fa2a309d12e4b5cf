#include <string>
#include <string_view>

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

class Keys {
 public:
  Keys(const Document& document, const Node& array) {
    for (const Node& item : array.Children()) AppendKey(document, item, mTexts.emplace_back());
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
  const Keys oldKeys(before, oldArray);
  const Keys newKeys(after, newArray);
  auto equal = zelcore::utility::CommonElements(oldKeys.Views(), newKeys.Views());
  equal.emplace_back(oldArray.Children().Size(), newArray.Children().Size());
  std::vector<ItemPair> pairs;
  std::size_t inOld = 0;
  std::size_t inNew = 0;
  for (const auto& [oldEnd, newEnd] : equal) {
    while (inOld < oldEnd || inNew < newEnd) {
      ItemPair& pair = pairs.emplace_back();
      if (inOld < oldEnd) pair.mBefore = inOld++;
      if (inNew < newEnd) pair.mAfter = inNew++;
    }
    pairs.push_back({inOld++, inNew++});
  }
  pairs.pop_back();  // the ends of both
  return pairs;
}

}  // namespace xmptoolkit
