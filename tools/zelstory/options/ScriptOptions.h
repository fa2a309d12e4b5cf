#pragma once

#include <string>
#include <vector>

#include <zelstoryhost/ScriptFormats.h>

#include "options/CommandLine.h"

namespace zelstory {

// Adds the argument STORY of a command that reads one script, or several, and --format. `format`
// stays null, and the script's content tells its format, unless the option names one.
void AddStoryArgument(Command& command, std::string& file,
                      const zelstoryhost::ScriptFormat*& format);
void AddStoryArguments(Command& command, std::vector<std::string>& files,
                       const zelstoryhost::ScriptFormat*& format);

// Adds an option that names a format.
Option AddFormatOption(Command& command, const char* name, const char* help,
                       const zelstoryhost::ScriptFormat*& format);

}  // namespace zelstory
