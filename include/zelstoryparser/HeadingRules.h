#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <zelcore/String.h>
#include <zelstoryparser/Export.h>

// How scene headings are read. There are two kinds of rules. The exact rule knows seventeen
// settings and splits at the first hyphen; metadata has always been written by it, and it is the
// default of every operation. Rules of words know headings as people write them, in eleven
// languages or in those of a file: docs/headings.md has both side by side.
namespace zelstoryparser {

using zelcore::UTF16String;

class HeadingTables;
struct HeadingRulesFault;

// Rules for headings. A value; copying one is cheap, because copies share their tables, which never
// change. Several threads may use one object at once.
class ZELSTORYPARSER_API HeadingRules {
 public:
  // The exact rule.
  HeadingRules();

  HeadingRules(const HeadingRules& other);
  HeadingRules& operator=(const HeadingRules& other);
  ~HeadingRules();

  bool IsExact() const { return !mTables; }

  // The names of the languages, in UTF-8, as the files have them; empty for the exact rule. They
  // live as long as this object or a copy of it.
  const std::vector<std::string>& Languages() const;

  // The words; null for the exact rule. The type is the library's own.
  const HeadingTables* Tables() const { return mTables.get(); }

 private:
  friend std::optional<HeadingRules> ReadHeadingRules(std::string_view text,
                                                      HeadingRulesFault& fault);
  explicit HeadingRules(std::shared_ptr<const HeadingTables> tables);

  std::shared_ptr<const HeadingTables> mTables;
};

// The exact rule; the same as HeadingRules().
ZELSTORYPARSER_API const HeadingRules& ExactHeadingRules();

// The words of all built-in languages. They are read at the first call; std::bad_alloc passes
// through, and the next call tries again.
ZELSTORYPARSER_API const HeadingRules& CommonHeadingRules();

// A fault in a text of rules.
struct HeadingRulesFault {
  std::size_t mLine = 0;    // from 1
  std::size_t mColumn = 0;  // from 1; counts characters
  std::string mReason;      // UTF-8
};

// Reads rules from a text in UTF-8, as docs/headings.md describes it:
//
//   use: English           # the words of a built-in language; "all" for every one
//   setting: INT, STUDIO
//   time: GOLDEN HOUR
//
// Returns nothing, and sets `fault`, at the first line that is not understood or if the text has no
// settings and no times. `fault` is otherwise left alone.
[[nodiscard]] ZELSTORYPARSER_API std::optional<HeadingRules> ReadHeadingRules(
    std::string_view text, HeadingRulesFault& fault);

enum class HeadingPartKind {
  kSetting,
  kLocation,
  kSubLocation,
  kTimeOfDay,
  kQualifier,
  kSceneNumber,
  kSeparator,  // blanks, dashes and other characters between the parts
};

// A stretch of a heading. Positions and lengths count UTF-16 code units.
struct HeadingPart {
  HeadingPartKind mKind = HeadingPartKind::kSeparator;
  std::size_t mBegin = 0;
  std::size_t mLength = 0;
  bool mIsKnown = false;  // found in a table, not guessed; false for places and separators
};

// The parts of a heading, as written and without blanks around them; a part that the heading does
// not have is empty.
struct ParsedHeading {
  UTF16String mSetting;                  // INT, P.O.V., INT./EXT; without a full stop at its end
  UTF16String mLocation;                 // HOUSE
  UTF16String mSubLocation;              // KITCHEN; several are joined by " - "
  UTF16String mTimeOfDay;                // NIGHT, DAY 2, 10:30
  std::vector<UTF16String> mQualifiers;  // MOVING, (FLASHBACK), in the order of the heading
  std::vector<HeadingPart> mParts;       // in order; each code unit is in exactly one of them
  bool mIsSettingKnown = false;          // found in a table, not guessed; false if empty
  bool mIsTimeOfDayKnown = false;        // likewise
};

// Splits a heading into its parts. Any text is a heading. The time is linear in its length. By the
// exact rule, settings and times of day that it knows are spelled as in its tables, location and
// time are those of CollectSceneText, and there are no other texts; where its location and time
// overlap ("-DAY"), the overlap is in the time's part. The only error is std::bad_alloc. May be
// called from several threads at once.
ZELSTORYPARSER_API ParsedHeading ParseHeading(const UTF16String& heading,
                                              const HeadingRules& rules);

}  // namespace zelstoryparser
