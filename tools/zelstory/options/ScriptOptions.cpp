#include "options/ScriptOptions.h"

namespace zelstory {

using zelstoryhost::ScriptFormat;

namespace {

constexpr const char* kHelp =
    "The script's format, as convert --help lists them (default: detected)";

}  // namespace

Option AddFormatOption(Command& command, const char* name, const char* help,
                       const ScriptFormat*& format) {
  std::vector<std::string> names;
  for (const ScriptFormat& known : zelstoryhost::ScriptFormats()) names.emplace_back(known.mName);
  return command.AddChoice(name, names, "NAME", help, [&format](const std::string& choice) {
    format = zelstoryhost::FindFormat(choice);
  });
}

void AddStoryArgument(Command& command, std::string& file, const ScriptFormat*& format) {
  command.AddArgument("STORY", file, "The script: Fountain, FDX, or a story; - is standard input");
  AddFormatOption(command, "--format", kHelp, format);
}

void AddStoryArguments(Command& command, std::vector<std::string>& files,
                       const ScriptFormat*& format) {
  command.AddArguments("STORY", files, "Scripts: Fountain, FDX, or stories; - is standard input");
  AddFormatOption(command, "--format", kHelp, format);
}

}  // namespace zelstory
