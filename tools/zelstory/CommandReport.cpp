#include <filesystem>
#include <iostream>

#include "Commands.h"
#include "Console.h"
#include "FileReplacement.h"
#include "ReportPage.h"
#include "StoryFile.h"
#include "ToolError.h"

namespace zelstory {
namespace {

struct ReportOptions {
  std::string mStory;
  std::string mPage;
};

int Report(const ReportOptions& options) {
  // A slip of the hand must not replace the story by its page.
  if (options.mPage != kStandardStream && IsStoryItself(options.mStory, options.mPage)) {
    throw ToolError(options.mPage, "is the story itself: name another file after --html");
  }
  const std::string name = options.mStory == kStandardStream
                               ? "Screenplay"
                               : std::filesystem::path(options.mStory).filename().string();
  const std::string page = MakeReportPage(*LoadStory(options.mStory), name);
  if (options.mPage == kStandardStream) {
    std::cout << page;
  } else {
    ReplaceFile(options.mPage, page);
  }
  return kDone;
}

}  // namespace

void AddReportCommand(CommandLine& tool) {
  Command command = tool.AddCommand("report", "Make a page to read and print, with charts");
  const auto options = std::make_shared<ReportOptions>();
  command.AddArgument("STORY", options->mStory, "The story file; - is standard input");
  command.AddText("--html", options->mPage, "FILE", "The page to write; - is standard output")
      .Required();
  command.SetFooter(
      "The page stands alone: the scenes as a table, charts of who speaks in which scene and of\n"
      "the scenes' lengths, and the screenplay. Any browser shows it, on a phone and in print,\n"
      "too. For example:\n"
      "  zelstory report harbour.quor --html harbour.html\n"
      "Exit status: 0 done, 1 refused (FILE is as it was), 2 wrong usage.");
  command.SetAction([options] { return Report(*options); });
}

}  // namespace zelstory
