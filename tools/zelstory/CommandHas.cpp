#include <zelstoryparser/SceneXMP.h>

#include "Command.h"
#include "Console.h"
#include "Sidecar.h"
#include "ToolError.h"

namespace zelstory {
namespace {

int Has(const std::vector<std::string>& files) {
  bool allHave = true;
  const int status =
      ForEachFile(files, [&allHave](const std::string& file, const std::string& label) {
        Sidecar sidecar(file, Sidecar::WhenAbsent::kRefuse);
        const bool has = zelstoryparser::HasAnyStoryRelatedMetadata(sidecar.Metadata());
        allHave = allHave && has;
        PrintLine(label + (has ? "yes" : "no"));
      });
  return allHave ? status : kRefused;
}

}  // namespace

void AddHasCommand(CLI::App& tool, ChosenCommand& chosen) {
  CLI::App* command = tool.add_subcommand("has", "Tell whether sidecars hold a scene's metadata");
  const auto files = std::make_shared<std::vector<std::string>>();
  command->add_option("CLIP.xmp", *files, "Sidecars; - is standard input")->required();
  command->footer(
      "Prints yes or no a file; behind FILE: for several files.\n"
      "Exit status: 0 all have, 1 one or more have not or were refused, 2 wrong usage.");
  command->callback([files, &chosen] { chosen = [files] { return Has(*files); }; });
}

}  // namespace zelstory
