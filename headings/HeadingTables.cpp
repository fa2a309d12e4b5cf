#include "headings/HeadingTables.h"

namespace zelstoryparser {

HeadingTables::Symbol HeadingTables::Find(std::u32string_view word) const {
  const auto known = mSymbols.find(word);
  return known == mSymbols.end() ? kUnknown : known->second;
}

std::size_t HeadingTables::Next(std::size_t place, Symbol symbol) const {
  const auto next = mNext.find({place, symbol});
  return next == mNext.end() ? kNowhere : next->second;
}

HeadingTables::Symbol HeadingTables::Add(std::u32string_view word) {
  if (const Symbol known = Find(word); known != kUnknown) return known;
  const auto next = static_cast<Symbol>(mSymbols.size() + 1);  // after kSlash
  mSymbols.emplace(word, next);
  return next;
}

void HeadingTables::AddSpelling(const std::vector<Symbol>& symbols, WordClass wordClass,
                                bool needsStop) {
  std::size_t place = kRoot;
  for (const Symbol symbol : symbols) {
    const auto [next, isNew] = mNext.try_emplace({place, symbol}, mPlaces.size());
    if (isNew) mPlaces.emplace_back();
    place = next->second;
  }
  (needsStop ? mPlaces[place].mStopClasses : mPlaces[place].mClasses) |= wordClass;
  mUsedClasses |= wordClass;
}

}  // namespace zelstoryparser
