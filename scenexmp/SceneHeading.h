#pragma once

#include <zelcore/String.h>

namespace zelstoryparser {

using zelcore::UTF16String;

// Splits a scene heading into setting, location and time of day: "INT. HOUSE - NIGHT" gives INT,
// HOUSE, NIGHT. Any text is a heading. An output that the heading does not have keeps its value.
// Case is ignored for the letters A to Z only; blanks are spaces and tabs. Reentrant.
void ParseSceneHeading(const UTF16String& heading, UTF16String& setting, UTF16String& location,
                       UTF16String& timeOfDay);

// Splits the part after the setting, which must not be empty, at the first dash after its first
// character, or else before a time of day at its end. Outputs as above.
void SplitLocationAndTimeOfDay(const UTF16String& text, UTF16String& location,
                               UTF16String& timeOfDay);

// Returns whether `text` ends with `word`, ignoring the case of the letters A to Z. False for an
// empty word.
bool EndsWithIgnoringCase(const UTF16String& text, const UTF16String& word);

}  // namespace zelstoryparser
