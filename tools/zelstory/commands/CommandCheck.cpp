#include <vector>

#include <nlohmann/json.hpp>

#include "commands/Commands.h"
#include "terminal/Batch.h"
#include "terminal/Console.h"
#include "terminal/Input.h"

namespace zelstory {

using zelstoryhost::Error;

namespace {

struct CheckOptions {
  std::vector<std::string> mFiles;
  bool mAsJSON = false;
};

void PrintJSON(const std::string& file, const std::optional<Error>& fault) {
  nlohmann::ordered_json result{{"file", file}, {"ok", !fault}};
  if (fault) {
    result["line"] = nullptr;
    result["column"] = nullptr;
    if (fault->Position()) {
      result["line"] = fault->Position()->mLine;
      result["column"] = fault->Position()->mColumn;
    }
    result["message"] = fault->Reason();
    result["where"] =
        fault->Where().empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(fault->Where());
  }
  PrintJSONLine(result);
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
