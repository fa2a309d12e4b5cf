#include <iostream>

#include "Command.h"
#include "StoryFile.h"
#include "StoryLists.h"

namespace zelstory {
namespace {

using Lister = Table (*)(const zelstoryparser::TavroStory& story);

struct ListOptions {
  std::string mStory;
  bool mAsCSV = false;
  bool mAsJSON = false;
};

int List(const ListOptions& options, Lister lister) {
  const TableForm form = options.mAsCSV    ? TableForm::kCSV
                         : options.mAsJSON ? TableForm::kJSON
                                           : TableForm::kAligned;
  lister(*LoadStory(options.mStory)).Print(form, std::cout);
  return kDone;
}

void AddList(CLI::App& tool, ChosenCommand& chosen, const char* name, const char* description,
             const std::string& columns, Lister lister) {
  CLI::App* command = tool.add_subcommand(name, description);
  const auto options = std::make_shared<ListOptions>();
  command->add_option("STORY", options->mStory, "The story file; - is standard input")->required();
  CLI::Option* csv =
      command->add_flag("--csv", options->mAsCSV, "Print comma-separated values (RFC 4180)");
  command->add_flag("--json", options->mAsJSON, "Print a JSON array with an object a row")
      ->excludes(csv);
  command->footer(columns + "\nExit status: 0 done, 1 refused, 2 wrong usage.");
  command->callback(
      [options, lister, &chosen] { chosen = [=] { return List(*options, lister); }; });
}

}  // namespace

void AddListCommands(CLI::App& tool, ChosenCommand& chosen) {
  AddList(
      tool, chosen, "scenes", "List the scenes of the body",
      "Columns: position (from 1), number, setting, location, time, duration (h:mm:ss), speeches,\n"
      "characters (how many speak).",
      ListScenes);
  AddList(tool, chosen, "characters", "List who speaks, how much, and where",
          "Columns: character, speeches, words, first and last scene by position, all scenes. "
          "Brackets\n"
          "behind a name, as in ANNA (V.O.), make no other character.",
          ListCharacters);
  AddList(tool, chosen, "stats", "Count scenes, paragraphs by kind, and words",
          "Columns: what, count, words.", ListCounts);
}

}  // namespace zelstory
