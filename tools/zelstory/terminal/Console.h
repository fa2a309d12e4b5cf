#pragma once

#include <functional>
#include <string>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/JSONWriter.h>

namespace zelstory {

// The colour of a result. Colours are used on a terminal, unless the environment variable NO_COLOR
// is set and not empty, or TERM is "dumb".
enum class Tone { kPlain, kGood, kBad, kFaint, kStrong };

// Prints one line on standard error, usually PLACE: error: REASON. Control characters, which a file
// name may contain, become "?".
void PrintError(const std::string& line);

// The same for an error of the host layer, with the option or command that helps.
void PrintError(const zelstoryhost::Error& error);

// A text about an error, with the option or command that helps, if there is one.
std::string WithAdvice(const std::string& text, const zelstoryhost::Error& error);

// The same for information that is not an error: PLACE: note: TEXT.
void PrintNote(const std::string& place, const std::string& text);

// Prints a result on one line of standard output, with control characters as above.
void PrintLine(const std::string& line);

// Prints the subject, then the result in colour, on one line.
void PrintResult(const std::string& subject, Tone tone, const std::string& result);

// Prints an object as one line of JSON; `writeMembers` writes what is in it.
void PrintJSONLine(const std::function<void(zelstoryhost::JSONWriter& json)>& writeMembers);

// A text in quotation marks, on one line, with JSON's escapes.
std::string Quoted(const std::string& text);

// A text in colour for standard output, or unchanged where colours are off.
std::string Coloured(Tone tone, const std::string& text);

// Shows a line on standard error, if that is a terminal, until HideProgress, or until something
// else is printed on the same terminal.
void ShowProgress(const std::string& line);
void HideProgress();

// Flushes standard output. Throws Error when something printed could not be written.
void FlushOutput();

}  // namespace zelstory
