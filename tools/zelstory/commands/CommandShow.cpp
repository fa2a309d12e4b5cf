#include <iostream>

#include <zelstoryhost/SceneFinder.h>
#include <zelstoryhost/StoryJSON.h>

#include "commands/Commands.h"
#include "options/SceneOptions.h"
#include "options/ScriptOptions.h"
#include "terminal/Input.h"
#include "terminal/Screenplay.h"

namespace zelstory {

using zelstoryhost::SelectedScene;
using zelstoryhost::WriteJSON;

namespace {

using zelstoryparser::TavroStory;

struct ShowOptions {
  std::string mFile;
  const zelstoryhost::ScriptFormat* mFormat = nullptr;
  SceneOptions mScene;
  bool mAsJSON = false;
  bool mWithComments = false;
};

int Show(const ShowOptions& options) {
  const boost::intrusive_ptr<TavroStory> story = LoadStory(options.mFile, options.mFormat);
  if (!options.mScene.IsGiven()) {
    if (options.mAsJSON) {
      WriteJSON(*story, std::cout);
    } else {
      PrintScreenplay(*story, options.mWithComments, std::cout);
    }
    return kDone;
  }
  const SelectedScene selected = options.mScene.Find(*story, options.mFile);
  if (options.mAsJSON) {
    WriteJSON(*selected.mScene, std::cout);
  } else {
    PrintScene(*selected.mScene, std::cout);
  }
  return kDone;
}

}  // namespace

void AddShowCommand(CommandLine& tool) {
  Command command = tool.AddCommand("show", "Print a story as a screenplay, or as JSON");
  const auto options = std::make_shared<ShowOptions>();
  AddStoryArgument(command, options->mFile, options->mFormat);
  options->mScene.AddTo(command);
  command.AddFlag("--comments", options->mWithComments, "Also print the comment streams");
  command.AddFlag("--json", options->mAsJSON, "Print the whole tree, or one scene's, as JSON");
  command.SetFooter("Exit status: 0 done, 1 refused, 2 wrong usage.");
  command.SetAction([options] { return Show(*options); });
}

}  // namespace zelstory
