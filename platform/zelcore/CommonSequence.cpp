#include <algorithm>
#include <unordered_map>

#include <zelcore/CommonSequence.h>

namespace zelcore::utility {

namespace {

using Sequence = std::span<const std::string_view>;
using Pair = std::pair<std::size_t, std::size_t>;
using Pairs = std::vector<Pair>;

// Elements that occur once in each, in the order of the first.
Pairs UniquePairs(Sequence before, Sequence after) {
  struct Places {
    std::size_t mInBefore = 0;
    std::size_t mInAfter = 0;
    std::size_t mAfter = 0;  // the position there
  };
  std::unordered_map<std::string_view, Places> places;
  for (const std::string_view element : before) ++places[element].mInBefore;
  for (std::size_t i = 0; i < after.size(); ++i) {
    const auto found = places.find(after[i]);
    if (found == places.end()) continue;
    ++found->second.mInAfter;
    found->second.mAfter = i;
  }
  Pairs pairs;
  for (std::size_t i = 0; i < before.size(); ++i) {
    const Places& found = places[before[i]];
    if (found.mInBefore == 1 && found.mInAfter == 1) pairs.emplace_back(i, found.mAfter);
  }
  return pairs;
}

// The longest part of the pairs that is in the order of the second sequence, too.
Pairs LongestInOrder(const Pairs& pairs) {
  std::vector<std::size_t> ends;                    // by length - 1: the best last pair
  std::vector<std::size_t> previous(pairs.size());  // of each pair, in its chain
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    const auto place =
        std::lower_bound(ends.begin(), ends.end(), pairs[i].second,
                         [&](std::size_t end, std::size_t at) { return pairs[end].second < at; });
    previous[i] = place == ends.begin() ? i : *(place - 1);
    if (place == ends.end()) {
      ends.push_back(i);
    } else {
      *place = i;
    }
  }
  Pairs chain;
  for (std::size_t length = ends.size(), at = length > 0 ? ends.back() : 0; length > 0; --length) {
    chain.push_back(pairs[at]);
    at = previous[at];
  }
  std::reverse(chain.begin(), chain.end());
  return chain;
}

// Each unique pair splits the sequences, and elements can be unique in the parts that are not so in
// the whole. The depth is limited, for sequences that are made to take long.
class Search {
 public:
  Search(Sequence before, Sequence after) : mBefore(before), mAfter(after) {}

  Pairs Run() {
    Find({0, 0}, {mBefore.size(), mAfter.size()}, 0);
    return std::move(mPairs);
  }

 private:
  void Find(Pair begin, Pair end, int depth) {
    constexpr int kDeepest = 40;
    while (begin.first < end.first && begin.second < end.second &&
           mBefore[begin.first] == mAfter[begin.second]) {
      mPairs.push_back(begin);
      begin = {begin.first + 1, begin.second + 1};
    }
    const Pair whole = end;
    while (begin.first < end.first && begin.second < end.second &&
           mBefore[end.first - 1] == mAfter[end.second - 1]) {
      end = {end.first - 1, end.second - 1};
    }
    if (begin.first < end.first && begin.second < end.second && depth < kDeepest) {
      FindBetween(begin, end, depth);
    }
    for (Pair at = end; at != whole; at = {at.first + 1, at.second + 1}) mPairs.push_back(at);
  }

  void FindBetween(Pair begin, Pair end, int depth) {
    const Pairs unique = UniquePairs(mBefore.subspan(begin.first, end.first - begin.first),
                                     mAfter.subspan(begin.second, end.second - begin.second));
    if (unique.empty()) return;
    Pair from = begin;
    for (const auto& [inBefore, inAfter] : LongestInOrder(unique)) {
      const Pair to = {begin.first + inBefore, begin.second + inAfter};
      Find(from, to, depth + 1);
      mPairs.push_back(to);
      from = {to.first + 1, to.second + 1};
    }
    Find(from, end, depth + 1);
  }

  Sequence mBefore;
  Sequence mAfter;
  Pairs mPairs;
};

}  // namespace

Pairs CommonElements(Sequence before, Sequence after) {
  return Search(before, after).Run();
}

}  // namespace zelcore::utility
