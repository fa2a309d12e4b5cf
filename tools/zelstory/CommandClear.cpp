#include <zelstoryparser/SceneXMP.h>

#include "Command.h"
#include "SidecarEdit.h"

namespace zelstory {

void AddClearCommand(CLI::App& tool, ChosenCommand& chosen) {
  struct Options {
    std::vector<std::string> mClips;
    SidecarEdit mEdit;
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
  command->footer(
      "Prints each touched metadata path on a line, or \"unchanged\"; behind CLIP: for several "
      "clips.\n"
      "Exit status: 0 done, 1 one or more were refused (and are as they were), 2 wrong usage.");
  command->callback([options, &chosen] {
    chosen = [options] {
      return ForEachFile(options->mClips, [&](const std::string& clip, const std::string& label) {
        options->mEdit.Run(clip, WhenAbsent::kRefuse, label,
                           zelstoryparser::ClearSceneMetadataFromXMP);
      });
    };
  });
}

}  // namespace zelstory
