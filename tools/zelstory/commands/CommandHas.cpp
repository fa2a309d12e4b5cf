#include <zelstoryhost/Sidecar.h>
#include <zelstoryhost/SidecarName.h>
#include <zelstoryparser/SceneXMP.h>

#include "commands/Commands.h"
#include "options/SidecarOptions.h"
#include "terminal/Batch.h"
#include "terminal/Console.h"
#include "terminal/Input.h"

namespace zelstory {

using zelstoryhost::Sidecar;
using zelstoryhost::SidecarForm;
using zelstoryhost::WhenAbsent;

namespace {

struct HasOptions {
  std::vector<std::string> mClips;
  std::optional<SidecarForm> mForm;
  bool mIsStrict = false;
};

int Has(const HasOptions& options) {
  bool allHave = true;
  const WhenAbsent whenAbsent = WhenAbsentFor(options.mIsStrict);
  zelstoryhost::SidecarFinder finder;
  const int status =
      ForEachFile(options.mClips, [&](const std::string& clip, const std::string& label) {
        Sidecar sidecar = ReadSidecar(clip, options.mForm, whenAbsent, finder);
        const bool has = zelstoryparser::HasAnyStoryRelatedMetadata(sidecar.Metadata());
        allHave = allHave && has;
        PrintResult(label, has ? Tone::kGood : Tone::kPlain, has ? "yes" : "no");
      });
  return allHave ? status : kRefused;
}

}  // namespace

void AddHasCommand(CommandLine& tool) {
  Command command = tool.AddCommand("has", "Test whether sidecars hold a scene's metadata");
  const auto options = std::make_shared<HasOptions>();
  command.AddArguments("CLIP", options->mClips,
                       "Sidecars (*.xmp) or the clips they belong to; - is standard input");
  AddSidecarNameOption(command, options->mForm);
  AddStrictFlag(command, options->mIsStrict);
  command.SetFooter(
      "Prints yes or no, no for a clip without a sidecar. For several clips, each line is "
      "prefixed\n"
      "with CLIP:.\n"
      "Exit status: 0 all hold a scene, 1 one or more do not or were refused, 2 wrong usage.");
  command.SetAction([options] { return Has(*options); });
}

}  // namespace zelstory
