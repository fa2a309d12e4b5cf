#include <zelstoryhost/SidecarName.h>

#include "commands/Commands.h"
#include "options/EditOptions.h"
#include "options/SidecarOptions.h"
#include "terminal/Batch.h"
#include "terminal/Memory.h"

namespace zelstory {

using zelstoryhost::WhenAbsent;

void AddClearCommand(CommandLine& tool) {
  struct Options {
    std::vector<std::string> mClips;
    EditOptions mEdit;
    bool mIsStrict = false;
  };
  Command command = tool.AddCommand("clear", "Remove a scene's metadata from sidecars");
  const auto options = std::make_shared<Options>();
  command.AddArguments(
      "CLIP", options->mClips,
      "Sidecars (*.xmp) or the clips they belong to; - reads standard input and writes\n"
      "standard output");
  options->mEdit.AddTo(command);
  AddStrictFlag(command, options->mIsStrict);
  command.SetFooter(
      "Prints each touched metadata path on a line, or \"unchanged\", as for a clip without a\n"
      "sidecar. For several clips, each line is prefixed with CLIP:.\n"
      "Exit status: 0 done, 1 one or more were refused (and are as they were) or the\n"
      "output failed, 2 wrong usage.");
  command.SetAction([options] {
    const WhenAbsent whenAbsent = WhenAbsentFor(options->mIsStrict);
    return ForEachFile(options->mClips, [&](const std::string& clip, const std::string& label) {
      WorkOn(clip);
      options->mEdit.Print(options->mEdit.Clear(clip, whenAbsent), label);
    });
  });
}

}  // namespace zelstory
