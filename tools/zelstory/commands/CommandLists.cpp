#include <iostream>

#include <zelstoryhost/StoryLists.h>
#include <zelstoryhost/Table.h>

#include "commands/Commands.h"
#include "options/HeadingOption.h"
#include "options/ScriptOptions.h"
#include "terminal/Input.h"
#include "terminal/TableColumns.h"

namespace zelstory {

using zelstoryhost::ListCharacters;
using zelstoryhost::ListCounts;
using zelstoryhost::ListScenes;
using zelstoryhost::Table;

namespace {

using zelstoryparser::HeadingRules;
using zelstoryparser::TavroStory;

using Lister = Table (*)(const TavroStory& story, const HeadingRules& rules);

// Lists whose content no heading changes.
template <Table (*kLister)(const TavroStory& story)>
Table WithoutHeadings(const TavroStory& story, const HeadingRules& /*rules*/) {
  return kLister(story);
}

struct ListOptions {
  std::string mStory;
  const zelstoryhost::ScriptFormat* mFormat = nullptr;
  HeadingOption mHeadings;
  bool mAsCSV = false;
  bool mIsRaw = false;
  bool mHasMark = false;
  bool mAsJSON = false;
};

int List(const ListOptions& options, Lister lister) {
  const HeadingRules rules = options.mHeadings.Rules();
  const Table table = lister(*LoadStory(options.mStory, options.mFormat), rules);
  if (options.mAsJSON) {
    WriteJSON(table, std::cout);
  } else if (options.mAsCSV) {
    using zelstoryhost::Formulas;
    if (options.mHasMark) std::cout << "\xEF\xBB\xBF";
    WriteCSV(table, options.mIsRaw ? Formulas::kAsTheyAre : Formulas::kDisarmed, std::cout);
  } else {
    PrintColumns(table, std::cout);
  }
  return kDone;
}

void AddList(CommandLine& tool, const char* name, const char* description,
             const std::string& columns, Lister lister) {
  Command command = tool.AddCommand(name, description);
  const auto options = std::make_shared<ListOptions>();
  AddStoryArgument(command, options->mStory, options->mFormat);
  if (lister == ListScenes) options->mHeadings.AddTo(command);
  const Option csv =
      command.AddFlag("--csv", options->mAsCSV, "Print comma-separated values (RFC 4180)");
  command
      .AddFlag("--raw", options->mIsRaw,
               "With --csv: do not disarm spreadsheet formulas with an apostrophe")
      .Needs(csv);
  command.AddFlag("--bom", options->mHasMark, "With --csv: begin with a byte-order mark, for Excel")
      .Needs(csv);
  command.AddFlag("--json", options->mAsJSON, "Print a JSON array with one object per row")
      .Excludes(csv);
  command.SetFooter(
      columns +
      "\nOn a terminal, cells of more than 60 columns, except lists of scenes, are cut "
      "and end\n"
      "with an ellipsis, unless they are in the last column; other output has them whole.\n"
      "Exit status: 0 done, 1 refused, 2 wrong usage.");
  command.SetAction([options, lister] { return List(*options, lister); });
}

}  // namespace

void AddListCommands(CommandLine& tool) {
  AddList(
      tool, "scenes", "List the scenes of the body",
      "Columns: position (from 1), number, setting, location, time, duration (h:mm:ss), speeches,\n"
      "characters (the number that speak).",
      ListScenes);
  AddList(
      tool, "characters", "List who speaks, how much, and where",
      "Columns: character, speeches, words, first and last scene, all scenes, by their numbers,\n"
      "and the extensions of the name; CSV and JSON have these last.\n"
      "#3 is the scene at position 3, which has no number, or one of more than 60 bytes.\n"
      "ANNA (V.O.), Anna and ANNA ^ are ANNA. ANNA/BEN and ANNA AND BEN are both of them if each\n"
      "also speaks alone.",
      WithoutHeadings<ListCharacters>);
  AddList(tool, "stats", "Count scenes, paragraphs by kind, and words",
          "Columns: what, count, words. The last row counts the characters who speak.",
          WithoutHeadings<ListCounts>);
}

}  // namespace zelstory
