#include <zelstoryparser/SceneXMP.h>

#include "Command.h"
#include "Console.h"
#include "Sidecar.h"

namespace zelstory {
namespace {

int Has(const std::vector<std::string>& clips) {
  bool allHave = true;
  const int status =
      ForEachFile(clips, [&allHave](const std::string& clip, const std::string& label) {
        Sidecar sidecar(FindSidecar(clip, SidecarForm::kFull, WhenAbsent::kRefuse),
                        WhenAbsent::kRefuse);
        const bool has = zelstoryparser::HasAnyStoryRelatedMetadata(sidecar.Metadata());
        allHave = allHave && has;
        PrintResult(label, has ? Tone::kGood : Tone::kPlain, has ? "yes" : "no");
      });
  return allHave ? status : kRefused;
}

}  // namespace

void AddHasCommand(CLI::App& tool, ChosenCommand& chosen) {
  CLI::App* command = tool.add_subcommand("has", "Tell whether sidecars hold a scene's metadata");
  const auto clips = std::make_shared<std::vector<std::string>>();
  command
      ->add_option("CLIP", *clips,
                   "Sidecars (*.xmp) or the clips they belong to; - is standard input")
      ->required();
  command->footer(
      "Prints yes or no a clip; behind CLIP: for several clips.\n"
      "Exit status: 0 all have, 1 one or more have not or were refused, 2 wrong usage.");
  command->callback([clips, &chosen] { chosen = [clips] { return Has(*clips); }; });
}

}  // namespace zelstory
