#include <filesystem>
#include <iostream>
#include <system_error>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Text.h>
#include <zelstoryparser/TraverseStory.h>

#include "commands/Commands.h"
#include "terminal/Escaped.h"
#include "terminal/Input.h"

namespace zelstory {

using zelstoryhost::Error;
using zelstoryhost::ToUTF8;

namespace {

int Dump(const std::string& file) {
  zelstoryparser::UTF16String text;
  const auto story = LoadStory(file);
  try {
    zelstoryparser::TraverseStory(story, text);
  } catch (const std::filesystem::filesystem_error& error) {
    if (error.code() == std::errc::not_enough_memory) throw;
    const std::string place = error.path1().string();
    throw Error(place.empty() ? "temporary folder (TMPDIR)" : place, error.code().message());
  }
  if (!text.empty()) std::cout << Escaped(ToUTF8(text), "\n") << '\n';
  return kDone;
}

}  // namespace

void AddDumpCommand(CommandLine& tool) {
  Command command =
      tool.AddCommand("dump", "Print versions; dump every packet into the temporary folder");
  const auto file = std::make_shared<std::string>();
  command.AddArgument("STORY", *file, "The story file; - is standard input");
  command.SetFooter(
      "The files are mivTestXMPBufferDumpFile_Scene_N_Shot_N.txt; those of comment streams "
      "replace\n"
      "those of the body with the same number. A file that cannot be written is skipped silently.\n"
      "Exit status: 0 done, 1 refused, 2 wrong usage.");
  command.SetAction([file] { return Dump(*file); });
}

}  // namespace zelstory
