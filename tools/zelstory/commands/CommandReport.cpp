#include <filesystem>
#include <iostream>
#include <utility>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Files.h>
#include <zelstoryhost/Text.h>

#include "commands/Commands.h"
#include "options/HeadingOption.h"
#include "options/ScriptOptions.h"
#include "report/ReportPage.h"
#include "terminal/Console.h"
#include "terminal/Input.h"

namespace zelstory {

using zelstoryhost::CountWords;
using zelstoryhost::Error;
using zelstoryhost::ReplaceFile;

namespace {

struct ReportOptions {
  std::string mStory;
  const zelstoryhost::ScriptFormat* mFormat = nullptr;
  std::string mPage;
  std::string mTitle;
  HeadingOption mHeadings;
};

// The title: the one given, else the story's own, else the file's name.
PageNames NamesOf(const ReportOptions& options, const zelstoryparser::TavroStory& story) {
  PageNames names{options.mTitle, ""};
  if (options.mStory != kStandardStream) {
    names.mFile = std::filesystem::path(options.mStory).filename().string();
  }
  if (CountWords(names.mTitle) == 0) names.mTitle = TitleIn(story);
  if (names.mTitle.empty()) std::swap(names.mTitle, names.mFile);
  if (names.mTitle.empty()) names.mTitle = "Screenplay";
  return names;
}

int Report(const ReportOptions& options) {
  // A typing error must not replace the story with its page.
  if (options.mPage != kStandardStream && IsStoryItself(options.mStory, options.mPage)) {
    throw Error(options.mPage, "is the story itself: name another file after --html");
  }
  const auto story = LoadStory(options.mStory, options.mFormat);
  const std::string page =
      MakeReportPage(*story, NamesOf(options, *story), options.mHeadings.Rules());
  if (options.mPage == kStandardStream) {
    std::cout << page;
  } else {
    ReplaceFile(options.mPage, page);
    CountWrittenFile();
  }
  return kDone;
}

}  // namespace

void AddReportCommand(CommandLine& tool) {
  Command command = tool.AddCommand("report", "Make a page to read and print, with charts");
  const auto options = std::make_shared<ReportOptions>();
  AddStoryArgument(command, options->mStory, options->mFormat);
  command.AddText("--html", options->mPage, "FILE", "The page to write; - is standard output")
      .Required();
  command.AddText("--title", options->mTitle, "TEXT", "The page's title");
  options->mHeadings.AddTo(command);
  command.SetFooter(
      "The page needs no other file: charts of who speaks in which scene and of scene lengths,\n"
      "tables of scenes and characters, and the screenplay. It suits screens, phones and print.\n"
      "Scenes without a duration are estimated from their words. Without --title, the title is\n"
      "what follows \"Title:\" in the story's metadata, or else the file's name. For example:\n"
      "  zelstory report harbour.quor --html harbour.html --title \"Harbour Lights\"\n"
      "Exit status: 0 done, 1 refused (FILE is as it was), 2 wrong usage.");
  command.SetAction([options] { return Report(*options); });
}

}  // namespace zelstory
