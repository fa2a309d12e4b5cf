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

// Returns the length of the known setting that a heading begins with, without its full stop; 0 if
// it begins with none.
std::size_t LengthOfKnownSetting(const UTF16String& heading);

// Returns whether a text is one of the known times of day, ignoring the case of the letters A to Z.
bool IsKnownTimeOfDay(const UTF16String& text);

// Returns whether `text` ends with `word`, ignoring the case of the letters A to Z. False for an
// empty word.
bool EndsWithIgnoringCase(const UTF16String& text, const UTF16String& word);

}  // namespace zelstoryparser
