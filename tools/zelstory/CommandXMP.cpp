#include <iostream>

#include <nlohmann/json.hpp>

#include "Command.h"
#include "Sidecar.h"
#include "SidecarOptions.h"
#include "XMPOutput.h"

namespace zelstory {

void AddXMPCommand(CLI::App& tool, ChosenCommand& chosen) {
  struct Options {
    std::string mClip;
    std::optional<SidecarForm> mForm;
    bool mAsJSON = false;
  };
  CLI::App* command =
      tool.add_subcommand("xmp", "Print a sidecar's metadata as a tree, or as JSON");
  const auto options = std::make_shared<Options>();
  command
      ->add_option("CLIP", options->mClip,
                   "The sidecar (*.xmp) or the clip it belongs to; - is standard input")
      ->required();
  AddSidecarNameOption(*command, options->mForm);
  command->add_flag("--json", options->mAsJSON, "Print JSON that tells the kind of every value");
  command->footer("Exit status: 0 done, 1 refused, 2 wrong usage.");
  command->callback([options, &chosen] {
    chosen = [options] {
      Sidecar sidecar(FindSidecar(options->mClip, options->mForm, WhenAbsent::kRefuse),
                      WhenAbsent::kRefuse);
      if (options->mAsJSON) {
        std::cout << XMPAsJSON(sidecar.Metadata()).dump(2) << '\n';
      } else {
        PrintXMP(sidecar.Metadata(), std::cout);
      }
      return kDone;
    };
  });
}

}  // namespace zelstory
