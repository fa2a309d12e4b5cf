#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include <xmptoolkit/model/Document.h>

namespace xmptoolkit {

// The positions of an item of an array, as it was and as it is now; of one that was removed or
// added, one is missing.
struct ItemPair {
  std::optional<std::size_t> mBefore;
  std::optional<std::size_t> mAfter;
  bool mAreEqual = false;
};

// Pairs the items of an array as it was, in `before`, and as it is, in `after`: equal ones, and
// between these all that can be changed into one another, in order.
std::vector<ItemPair> PairItems(const Document& before, const Node& oldArray, const Document& after,
                                const Node& newArray);

}  // namespace xmptoolkit
