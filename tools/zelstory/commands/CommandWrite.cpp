#include <zelstoryhost/SceneFinder.h>

#include "commands/Commands.h"
#include "options/EditOptions.h"
#include "options/SceneOptions.h"
#include "options/ScriptOptions.h"
#include "terminal/Console.h"
#include "terminal/Input.h"
#include "terminal/Memory.h"

namespace zelstory {

using zelstoryhost::SelectedScene;

namespace {

struct WriteOptions {
  std::string mStory;
  const zelstoryhost::ScriptFormat* mFormat = nullptr;
  std::string mSidecar;
  SceneOptions mScene;
  EditOptions mEdit;
};

int Write(WriteOptions& options) {
  if (options.mSidecar == kStandardStream && options.mStory == kStandardStream) {
    throw UsageError("only one of STORY and CLIP can be standard input");
  }
  options.mEdit.ReadHeadingRules();
  const auto story = LoadStory(options.mStory, options.mFormat);
  const SelectedScene selected = options.mScene.Find(*story, options.mStory);
  WorkOn(options.mSidecar);
  options.mEdit.Print(options.mEdit.Write(options.mSidecar, selected.mScene), "");
  return kDone;
}

}  // namespace

void AddWriteCommand(CommandLine& tool) {
  Command command = tool.AddCommand("write", "Write a scene into a sidecar, creating it if needed");
  const auto options = std::make_shared<WriteOptions>();
  AddStoryArgument(command, options->mStory, options->mFormat);
  command.AddArgument("CLIP", options->mSidecar,
                      "The sidecar (*.xmp) or the clip it belongs to; - reads standard input and\n"
                      "writes standard output");
  options->mScene.AddTo(command);
  options->mEdit.AddTo(command);
  options->mEdit.AddWriteOptions(command);
  command.SetFooter(
      "Afterwards the clip holds this scene and no other. Prints each touched metadata path on a\n"
      "line, or \"unchanged\".\n"
      "Exit status: 0 done, 1 refused (the sidecar is as it was) or the output failed, 2 wrong\n"
      "usage.");
  command.SetAction([options] { return Write(*options); });
}

}  // namespace zelstory
