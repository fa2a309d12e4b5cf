#include <zelstoryparser/SceneXMP.h>

#include "ChangedPathsOutput.h"
#include "Command.h"
#include "Console.h"
#include "FileReplacement.h"
#include "SceneSelection.h"
#include "Sidecar.h"
#include "StoryFile.h"
#include "ToolError.h"

namespace zelstory {
namespace {

struct WriteOptions {
  std::string mStory;
  std::string mSidecar;
  SceneSelection mScene;
};

int Write(const WriteOptions& options) {
  const bool toStandardOutput = options.mSidecar == kStandardStream;
  if (toStandardOutput && options.mStory == kStandardStream) {
    throw UsageError("only one of STORY and CLIP.xmp can be standard input");
  }
  const auto story = LoadStory(options.mStory);
  const SelectedScene selected = options.mScene.Find(*story, options.mStory);

  const DirectoryLock lock(options.mSidecar);
  Sidecar sidecar(options.mSidecar, Sidecar::WhenAbsent::kCreate);
  std::vector<zelmetadata::Path> changedPaths;
  const auto error =
      zelstoryparser::WriteSceneMetadataIntoXMP(selected.mScene, sidecar.Metadata(), changedPaths);
  if (!error.empty()) throw ToolError(options.mSidecar, ToUTF8(error));
  const bool changed = sidecar.Save();
  if (!toStandardOutput) PrintOutcome("", changed, changedPaths);
  return kDone;
}

}  // namespace

void AddWriteCommand(CLI::App& tool, ChosenCommand& chosen) {
  CLI::App* command =
      tool.add_subcommand("write", "Write a scene's metadata into a sidecar, created when absent");
  const auto options = std::make_shared<WriteOptions>();
  command->add_option("STORY", options->mStory, "The story file; - is standard input")->required();
  command
      ->add_option("CLIP.xmp", options->mSidecar,
                   "The sidecar; - reads standard input and writes standard output")
      ->required();
  options->mScene.AddOptions(*command);
  command->footer(
      "Prints each touched metadata path on a line, or \"unchanged\".\n"
      "Exit status: 0 done, 1 refused (the sidecar is as it was), 2 wrong usage.");
  command->callback([options, &chosen] { chosen = [options] { return Write(*options); }; });
}

}  // namespace zelstory
