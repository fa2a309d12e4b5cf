#include <iostream>

#include <zelstoryhost/Sidecar.h>
#include <zelstoryhost/SidecarName.h>

#include "commands/Commands.h"
#include "options/SidecarOptions.h"
#include "terminal/Input.h"
#include "terminal/XMPOutput.h"

namespace zelstory {

using zelstoryhost::Sidecar;
using zelstoryhost::SidecarForm;
using zelstoryhost::WhenAbsent;

void AddXMPCommand(CommandLine& tool) {
  struct Options {
    std::string mClip;
    std::optional<SidecarForm> mForm;
    bool mAsJSON = false;
  };
  Command command = tool.AddCommand("xmp", "Print a sidecar's metadata as a tree, or as JSON");
  const auto options = std::make_shared<Options>();
  command.AddArgument("CLIP", options->mClip,
                      "The sidecar (*.xmp) or the clip it belongs to; - is standard input");
  AddSidecarNameOption(command, options->mForm);
  command.AddFlag("--json", options->mAsJSON, "Print JSON with the kind of every value");
  command.SetFooter("Exit status: 0 done, 1 refused, 2 wrong usage.");
  command.SetAction([options] {
    zelstoryhost::SidecarFinder finder;
    const Sidecar sidecar =
        ReadSidecar(options->mClip, options->mForm, WhenAbsent::kRefuse, finder);
    if (options->mAsJSON) {
      PrintXMPAsJSON(sidecar.Metadata(), std::cout);
    } else {
      PrintXMP(sidecar.Metadata(), std::cout);
    }
    return kDone;
  });
}

}  // namespace zelstory
