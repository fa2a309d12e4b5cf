#pragma once

#include <string>
#include <string_view>

#include <zelcore/String.h>

namespace zelstory {

// The name that stands for standard input or output.
inline constexpr std::string_view kStandardStream = "-";

// Prints one line on standard error. Control characters, which a file name may hold, become "?".
void PrintError(const std::string& line);

// Prints a result line on standard output, control characters as above.
void PrintLine(const std::string& line);

// Story text as UTF-8.
std::string ToUTF8(const zelcore::UTF16String& text);

// Flushes standard output. Throws ToolError when something printed could not be written.
void FlushOutput();

}  // namespace zelstory
