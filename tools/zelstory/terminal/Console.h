#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace zelstory {

// How a result is coloured where colours are welcome: on a terminal, unless the environment
// variable NO_COLOR is set and not empty, or TERM is "dumb".
enum class Tone { kPlain, kGood, kBad, kFaint, kStrong };

// Prints one line on standard error, of the form PLACE: error: REASON mostly. Control characters,
// which a file name may hold, become "?".
void PrintError(const std::string& line);

// The same for what the user should know although nothing is refused: PLACE: note: TEXT.
void PrintNote(const std::string& place, const std::string& text);

// Prints a result line on standard output, control characters as above.
void PrintLine(const std::string& line);

// The same, its end coloured: the subject, then the result.
void PrintResult(const std::string& subject, Tone tone, const std::string& result);

// Prints a value as one line of JSON; bytes that are not UTF-8 become U+FFFD.
void PrintJSONLine(const nlohmann::ordered_json& value);

// A text in quotation marks, on one line, escaped as JSON has it.
std::string Quoted(const std::string& text);

// A text in the colour of standard output; the text itself where colours are not welcome.
std::string Coloured(Tone tone, const std::string& text);

// Shows a line on standard error, if that is a terminal, until HideProgress, or until something
// else is printed on the same terminal.
void ShowProgress(const std::string& line);
void HideProgress();

// Flushes standard output. Throws Error when something printed could not be written.
void FlushOutput();

}  // namespace zelstory
