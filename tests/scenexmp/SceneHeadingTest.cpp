#include <gtest/gtest.h>

#include "scenexmp/SceneHeading.h"
#include "support/Table.h"
#include "support/Text.h"

namespace zelstoryparser {
namespace {

// setting|location|time of day, of outputs that held `initial` before.
std::string Parts(const std::string& heading, const std::string& initial = "") {
  UTF16String setting = Utf16(initial), location = setting, timeOfDay = setting;
  ParseSceneHeading(Utf16(heading), setting, location, timeOfDay);
  return Utf8(setting) + "|" + Utf8(location) + "|" + Utf8(timeOfDay);
}

TEST(SceneHeading, IsSplit) {
  for (const Row& row : Rows(R"(
      INT. HOUSE - DAY => INT|HOUSE|DAY ;; EXT. CITY STREET - NIGHT => EXT|CITY STREET|NIGHT
      int. kitchen night => INT|kitchen|Night ;; INT. BARN LATE NIGHT => INT|BARN|Late Night
      INT/EXT. CAR - MOVING - DAY => INT/EXT|CAR|MOVING - DAY
      P.O.V. JOHN - CONTINUOUS => P.O.V.|JOHN|CONTINUOUS ;; SUBJEKTIVE. WALD - TAG => SUBJEKTIVE|WALD|TAG
      INT.HOUSE-DAY => INT|HOUSE|DAY ;; EXT BEACH => EXT|BEACH| ;; EXT. HOUSE -\s\s\s => EXT|HOUSE|
      INT. HOUSE  NIGHT => INT|HOUSE |Night ;; INT. NIGHT => INT|NIGHT|Night ;; INT. HOLIDAY => INT|HOL|Day
      EXTERIOR GARDEN - DAY => EXT|ERIOR GARDEN|DAY ;; INT.. HOUSE => INT|. HOUSE| ;; INT. => INT||
      INT. DAY ROOM => INT|DAY ROOM| ;; INT. -DAY => INT|-DAY|Day ;; KITCHEN. LATER => KITCHEN|LATER|
      HOUSE... GARDEN => HOUSE|GARDEN| ;; MR. SMITH'S OFFICE - DAY => MR|SMITH'S OFFICE|DAY
      \sINT. HOUSE - DAY => INT|HOUSE|DAY ;; ... => || ;; => || ;; \s\t\s => ||
      A HOUSE IN THE WOODS - LATE NIGHT => |A HOUSE IN THE WOODS|LATE NIGHT
      ext. street - day => EXT|street|day ;; INT. SOUTH-WEST WING - DAY => INT|SOUTH|WEST WING - DAY
      INT.\t \tHOUSE \t-\t DAY\s => INT|HOUSE|DAY\s ;; INT.\xC2\xA0HOUSE -\nDAY => INT|\xC2\xA0HOUSE|\nDAY
      INT. - DAY => INT|-|Day ;; INT. -- => INT|-| ;; INT. - - => INT|-| ;; INT. A - - DAY => INT|A|- DAY
      INT. HOUSE NIGHT - => INT|HOUSE NIGHT| ;; INT. A - NIGHT -\s => INT|A|NIGHT -\s
      INT. XNIGHT => INT|XNIGHT|Night ;; INT HOUSE–NIGHT => INT|HOUSE|Night ;; INT. 𝄞NIGHT => INT|�|Night
      EXT. DORF MORNING => EXT|DORF|Morning ;; EXT. DORF eVeNiNg => EXT|DORF|Evening ;; ÄUSS. X => ÄUSS|X|
      INNENHOF => INN|ENHOF| ;; INN/AUSS HOF => INN/AUSS|HOF| ;; auss/inn. HOF => AUSS/INN|HOF|
      AUSS. HOF => AUSS|HOF| ;; I/E CAR => I/E|CAR| ;; E/I. CAR => E/I|CAR| ;; I/A CAR => I/A|CAR|
      A/I CAR => A/I|CAR| ;; EXT/INT. CAR => EXT/INT|CAR| ;; INT/EST. CAR => INT/EST|CAR|
      P.D.V.. CAR => P.D.V.|CAR| ;; p.o.v CAR => p|o.v CAR| ;; ESTABLISHING => EST|ABLISHING|
      IN. THE  HOUSE. NIGHT => IN|THE  HOUSE.|Night ;; A . B => A |B| ;; .HOUSE => |HOUSE|
      HOUSE => |HOUSE| ;; DAY => |DAY|Day ;; LATE NIGHT => |LATE NIGHT|Late Night
      PLATE NIGHT => |PLATE NIGHT|Late Night)")) {
    EXPECT_EQ(Parts(row[0]), row[1]) << row[0];
  }
}

TEST(SceneHeading, KeepsWhatTheHeadingDoesNotSay) {
  for (const Row& row : Rows(R"(=> ?|?|? ;; HOUSE => ?|?|? ;; INT. => INT|?|? ;; ... => |?|?
      A - B => ?|A|B ;; INT. -\s\s => INT|?|? ;; INT. A -\s => INT|A| ;; A. => A|?|?)")) {
    EXPECT_EQ(Parts(row[0], "?"), row[1]) << row[0];
  }
}

TEST(SceneHeading, EndsAreComparedInASCII) {
  for (const Row& row : Rows(R"(LATE NIGHT => Night => yes ;; night => NIGHT => yes ;; nigh => Night
      => => ;; a => ;; NIGHT\s => Night ;; É => é ;; xé => é => yes ;; [ => { ;; @ => `)")) {
    EXPECT_EQ(EndsWithIgnoringCase(Utf16(row[0]), Utf16(row[1])), row[2] == "yes") << row[0];
  }
}

}  // namespace
}  // namespace zelstoryparser
