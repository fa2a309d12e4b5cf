#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory_resource>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zelstoryparser {

// What a spelling stands for. A spelling may stand for several things.
enum WordClass : unsigned {
  kSettingWord = 1u << 0,
  kTimeWord = 1u << 1,       // DAY: makes a time of day
  kTimeModifier = 1u << 2,   // EARLY: part of a time, but makes none
  kClockWord = 1u << 3,      // AM: makes a time of day with a number
  kQualifierWord = 1u << 4,  // FLASHBACK
  kSceneWord = 1u << 5,      // SCENE: announces a scene number
};

// The spellings of all languages, and the separators besides dashes. A spelling is a row of
// symbols: its words, without case and accents, and slashes. Built once, then only read.
//
// What the maps hold comes from few blocks of memory, because every run of a program that reads
// headings builds these tables.
class HeadingTables {
 public:
  HeadingTables() = default;
  HeadingTables(const HeadingTables&) = delete;
  HeadingTables& operator=(const HeadingTables&) = delete;

  using Symbol = std::int32_t;
  static constexpr Symbol kUnknown = -1;
  static constexpr Symbol kSlash = 0;

  // A place in the tree of spellings.
  struct Place {
    unsigned mClasses = 0;      // of the spelling that ends here
    unsigned mStopClasses = 0;  // likewise, if a full stop or a slash follows
  };
  static constexpr std::size_t kRoot = 0;
  static constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

  // The symbol of a folded word; kUnknown if no spelling has it.
  Symbol Find(std::u32string_view word) const;

  // The place behind a symbol; kNowhere if no spelling goes on so.
  std::size_t Next(std::size_t place, Symbol symbol) const;
  const Place& At(std::size_t place) const { return mPlaces[place]; }

  bool IsSeparator(char32_t character) const { return mSeparators.contains(character); }
  const std::vector<std::string>& Languages() const { return mLanguages; }

  // The symbol of a word, which is new if need be.
  Symbol Add(std::u32string_view word);
  void AddSpelling(const std::vector<Symbol>& symbols, WordClass wordClass, bool needsStop);
  void AddSeparator(char32_t character) { mSeparators.insert(character); }
  void AddLanguage(std::string name) { mLanguages.push_back(std::move(name)); }
  bool HasSpellings(unsigned classes) const { return (mUsedClasses & classes) != 0; }

 private:
  std::pmr::monotonic_buffer_resource mMemory{std::size_t{64} << 10};
  std::pmr::map<std::pmr::u32string, Symbol, std::less<>> mSymbols{&mMemory};
  std::pmr::map<std::pair<std::size_t, Symbol>, std::size_t> mNext{&mMemory};
  std::vector<Place> mPlaces = {Place()};
  std::set<char32_t> mSeparators;
  std::vector<std::string> mLanguages;
  unsigned mUsedClasses = 0;
};

}  // namespace zelstoryparser
