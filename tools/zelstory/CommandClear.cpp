#include <zelstoryparser/SceneXMP.h>

#include "ChangedPathsOutput.h"
#include "Command.h"
#include "Console.h"
#include "FileReplacement.h"
#include "Sidecar.h"
#include "ToolError.h"

namespace zelstory {
namespace {

void ClearOne(const std::string& file, const std::string& label) {
  const DirectoryLock lock(file);
  Sidecar sidecar(file, Sidecar::WhenAbsent::kRefuse);
  std::vector<zelmetadata::Path> changedPaths;
  const auto error = zelstoryparser::ClearSceneMetadataFromXMP(sidecar.Metadata(), changedPaths);
  if (!error.empty()) throw ToolError(file, ToUTF8(error));
  const bool changed = sidecar.Save();
  if (file != kStandardStream) PrintOutcome(label, changed, changedPaths);
}

}  // namespace

void AddClearCommand(CLI::App& tool, ChosenCommand& chosen) {
  CLI::App* command = tool.add_subcommand("clear", "Remove a scene's metadata from sidecars");
  const auto files = std::make_shared<std::vector<std::string>>();
  command
      ->add_option("CLIP.xmp", *files,
                   "Sidecars; - reads standard input and writes standard output")
      ->required();
  command->footer(
      "Prints each touched metadata path on a line, or \"unchanged\"; behind FILE: for several "
      "files.\n"
      "Exit status: 0 done, 1 one or more were refused (and are as they were), 2 wrong usage.");
  command->callback(
      [files, &chosen] { chosen = [files] { return ForEachFile(*files, ClearOne); }; });
}

}  // namespace zelstory
