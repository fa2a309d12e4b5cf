#include <iostream>

#include <nlohmann/json.hpp>

#include "Commands.h"
#include "SceneSelection.h"
#include "Screenplay.h"
#include "StoryFile.h"
#include "StoryJSON.h"

namespace zelstory {
namespace {

using zelstoryparser::TavroStory;

struct ShowOptions {
  std::string mFile;
  SceneSelection mScene;
  bool mAsJSON = false;
  bool mWithComments = false;
};

void PrintJSON(const nlohmann::ordered_json& json) {
  std::cout << json.dump(2) << '\n';
}

int Show(const ShowOptions& options) {
  const boost::intrusive_ptr<TavroStory> story = LoadStory(options.mFile);
  if (!options.mScene.IsGiven()) {
    options.mAsJSON ? PrintJSON(StoryAsJSON(*story))
                    : PrintScreenplay(*story, options.mWithComments, std::cout);
    return kDone;
  }
  const SelectedScene selected = options.mScene.Find(*story, options.mFile);
  options.mAsJSON ? PrintJSON(SceneAsJSON(*selected.mScene))
                  : PrintScene(*selected.mScene, std::cout);
  return kDone;
}

}  // namespace

void AddShowCommand(CommandLine& tool) {
  Command command = tool.AddCommand("show", "Print a story as a screenplay, or as JSON");
  const auto options = std::make_shared<ShowOptions>();
  command.AddArgument("STORY", options->mFile, "The story file; - is standard input");
  options->mScene.AddOptions(command);
  command.AddFlag("--comments", options->mWithComments, "Print the comment streams, too");
  command.AddFlag("--json", options->mAsJSON, "Print the whole tree, or one scene's, as JSON");
  command.SetFooter("Exit status: 0 done, 1 refused, 2 wrong usage.");
  command.SetAction([options] { return Show(*options); });
}

}  // namespace zelstory
