#pragma once

#include <zelcore/String.h>

namespace zelstoryparser {

using zelcore::UTF16String;

// Splits a scene heading into setting, location and time of day: "INT. HOUSE - NIGHT" gives INT,
// HOUSE, NIGHT. Any text is a heading. An output for which the heading supplies nothing keeps its
// value. Letter case is folded for the letters A to Z alone; blanks are spaces and tabs. Reentrant.
void ParseSceneHeading(const UTF16String& heading, UTF16String& setting, UTF16String& location,
                       UTF16String& timeOfDay);

// Splits what follows the setting, which must not be empty, at its first dash behind the first
// character, or else in front of a time of day at its end. Outputs as above.
void SplitLocationAndTimeOfDay(const UTF16String& text, UTF16String& location,
                               UTF16String& timeOfDay);

// Whether `text` ends with `word`, whatever the case of the letters A to Z. False for an empty
// word.
bool EndsWithIgnoringCase(const UTF16String& text, const UTF16String& word);

}  // namespace zelstoryparser
