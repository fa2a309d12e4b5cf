#include <vector>

#include "commands/Commands.h"
#include "terminal/Batch.h"
#include "terminal/Console.h"
#include "terminal/Input.h"

namespace zelstory {

using zelstoryhost::Error;
using zelstoryhost::JSONWriter;

namespace {

struct CheckOptions {
  std::vector<std::string> mFiles;
  bool mAsJSON = false;
};

void WriteFault(JSONWriter& json, const Error& fault) {
  const auto& position = fault.Position();
  json.Name("line");
  position ? json.Number(position->mLine) : json.Null();
  json.Name("column");
  position ? json.Number(position->mColumn) : json.Null();
  json.Name("message").Text(fault.Reason());
  json.Name("where");
  fault.Where().empty() ? json.Null() : json.Text(fault.Where());
}

void PrintJSON(const std::string& file, const std::optional<Error>& fault) {
  PrintJSONLine([&](JSONWriter& json) {
    json.Name("file").Text(file);
    json.Name("ok").Bool(!fault);
    if (fault) WriteFault(json, *fault);
  });
}

int Check(const CheckOptions& options) {
  bool allGood = true;
  Batch batch(options.mFiles.size());
  for (const std::string& file : options.mFiles) {
    batch.Next();
    const std::optional<Error> fault = ReadStory(file).mFault;
    allGood = allGood && !fault;
    if (options.mAsJSON) {
      PrintJSON(file, fault);
    } else if (fault) {
      PrintLine(fault->what());
    } else {
      PrintResult(file + ": ", Tone::kGood, "ok");
    }
  }
  return allGood ? kDone : kRefused;
}

}  // namespace

void AddCheckCommand(CommandLine& tool) {
  Command command = tool.AddCommand("check", "Validate story files");
  const auto options = std::make_shared<CheckOptions>();
  command.AddArguments("STORY", options->mFiles, "Story files; - is standard input");
  command.AddFlag("--json", options->mAsJSON, "Print one JSON object per file");
  command.SetFooter(
      "Prints FILE: ok, or FILE:LINE:COLUMN: error: MESSAGE (PLACE IN THE STORY), one line per "
      "file.\n"
      "Lines and columns count from 1, columns in characters.\n"
      "Exit status: 0 all are valid, 1 one or more are not, 2 wrong usage.");
  command.SetAction([options] { return Check(*options); });
}

}  // namespace zelstory
