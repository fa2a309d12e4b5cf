#include "Command.h"
#include "SidecarEdit.h"
#include "SidecarOptions.h"

namespace zelstory {

void AddClearCommand(CLI::App& tool, ChosenCommand& chosen) {
  struct Options {
    std::vector<std::string> mClips;
    SidecarEdit mEdit;
    bool mIsStrict = false;
  };
  CLI::App* command = tool.add_subcommand("clear", "Remove a scene's metadata from sidecars");
  const auto options = std::make_shared<Options>();
  command
      ->add_option(
          "CLIP", options->mClips,
          "Sidecars (*.xmp) or the clips they belong to; - reads standard input and writes\n"
          "standard output")
      ->required();
  options->mEdit.AddOptions(*command);
  AddStrictFlag(*command, options->mIsStrict);
  command->footer(
      "Prints each touched metadata path on a line, or \"unchanged\", as for a clip without "
      "sidecar;\n"
      "with CLIP: in front for several clips.\n"
      "Exit status: 0 done, 1 one or more were refused (and are as they were), 2 wrong usage.");
  command->callback([options, &chosen] {
    chosen = [options] {
      const WhenAbsent whenAbsent = WhenAbsentFor(options->mIsStrict);
      return ForEachFile(options->mClips, [&](const std::string& clip, const std::string& label) {
        options->mEdit.Print(options->mEdit.Clear(clip, whenAbsent), label);
      });
    };
  });
}

}  // namespace zelstory
