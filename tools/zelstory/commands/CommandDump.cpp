#include <filesystem>
#include <iostream>
#include <system_error>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Text.h>
#include <zelstoryparser/TraverseStory.h>

#include "commands/Commands.h"
#include "options/ScriptOptions.h"
#include "terminal/Escaped.h"
#include "terminal/Input.h"

namespace zelstory {

using zelstoryhost::Error;
using zelstoryhost::ToUTF8;

namespace {

struct DumpOptions {
  std::string mFile;
  const zelstoryhost::ScriptFormat* mFormat = nullptr;
};

int Dump(const DumpOptions& options) {
  zelstoryparser::UTF16String text;
  const auto story = LoadStory(options.mFile, options.mFormat);
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
  const auto options = std::make_shared<DumpOptions>();
  AddStoryArgument(command, options->mFile, options->mFormat);
  command.SetFooter(
      "The files are mivTestXMPBufferDumpFile_Scene_N_Shot_N.txt; those of comment streams "
      "replace\n"
      "those of the body with the same number. A file that cannot be written is skipped silently.\n"
      "Exit status: 0 done, 1 refused, 2 wrong usage.");
  command.SetAction([options] { return Dump(*options); });
}

}  // namespace zelstory
