#pragma once

#include <functional>
#include <string>
#include <vector>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Finding.h>
#include <zelstoryhost/JSONWriter.h>

namespace zelstory {

// The colour of a result. Colours are used on a terminal, unless the environment variable NO_COLOR
// is set and not empty, or TERM is "dumb".
enum class Tone { kPlain, kGood, kBad, kFaint, kStrong };

// Prints one line on standard error, usually PLACE: error: REASON, escaped (terminal/Escaped.h), as
// everything is that the functions below print for people.
void PrintError(const std::string& line);

// The same for an error of the host layer, with the option or command that helps.
void PrintError(const zelstoryhost::Error& error);

// A text about an error, with the option or command that helps, if there is one.
std::string WithAdvice(const std::string& text, const zelstoryhost::Error& error);

// The same for information that is not an error: PLACE: note: TEXT.
void PrintNote(const std::string& place, const std::string& text);

// A finding as a line: FILE:LINE:COLUMN: note: TEXT (PLACE IN THE STORY), or "warning".
std::string Describe(const std::string& file, const zelstoryhost::Finding& finding);

// Prints findings on standard error, a line each.
void PrintFindings(const std::string& file, const std::vector<zelstoryhost::Finding>& findings);

// Prints a result on one line of standard output.
void PrintLine(const std::string& line);

// Prints fields on one line, separated by tabs.
void PrintFields(const std::vector<std::string>& fields);

// Prints a unified diff: coloured and escaped on a terminal, else byte for byte.
void PrintDiff(const std::string& diff);

// Prints the subject, then the result in colour, on one line.
void PrintResult(const std::string& subject, Tone tone, const std::string& result);

// Prints an object as one line of JSON; `writeMembers` writes what is in it.
void PrintJSONLine(const std::function<void(zelstoryhost::JSONWriter& json)>& writeMembers);

// A text in colour for standard output, or unchanged where colours are off.
std::string Coloured(Tone tone, const std::string& text);

// Shows a line on standard error, if that is a terminal, until HideProgress, or until something
// else is printed on the same terminal.
void ShowProgress(const std::string& line);
void HideProgress();

// Whether standard output is a terminal.
bool OutputIsTerminal();

// Counts a file that was replaced, so that what ends the command later cannot deny it.
void CountWrittenFile();

// "" or "; 2 files were written before", to be added to what ended the command. Valid until the
// next call; takes no memory.
const char* WrittenBefore();

// Flushes standard output. Throws Error when something printed could not be written.
void FlushOutput();

}  // namespace zelstory
