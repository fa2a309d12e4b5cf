#include <vector>

#include <nlohmann/json.hpp>

#include "Batch.h"
#include "Commands.h"
#include "Console.h"
#include "StoryFile.h"

namespace zelstory {
namespace {

struct CheckOptions {
  std::vector<std::string> mFiles;
  bool mAsJSON = false;
};

void PrintJSON(const std::string& file, const std::optional<StoryFault>& fault) {
  nlohmann::ordered_json result{{"file", file}, {"ok", !fault}};
  if (fault) {
    result["line"] = nullptr;
    result["column"] = nullptr;
    if (fault->mPosition) {
      result["line"] = fault->mPosition->mLine;
      result["column"] = fault->mPosition->mColumn;
    }
    result["message"] = fault->mMessage;
    result["where"] =
        fault->mWhere.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(fault->mWhere);
  }
  PrintJSONLine(result);
}

int Check(const CheckOptions& options) {
  bool allGood = true;
  Batch batch(options.mFiles.size());
  for (const std::string& file : options.mFiles) {
    batch.Next();
    boost::intrusive_ptr<zelstoryparser::TavroStory> story;
    const std::optional<StoryFault> fault = ReadStory(file, story);
    allGood = allGood && !fault;
    if (options.mAsJSON) {
      PrintJSON(file, fault);
    } else if (fault) {
      PrintLine(fault->Describe(file));
    } else {
      PrintResult(file + ": ", Tone::kGood, "ok");
    }
  }
  return allGood ? kDone : kRefused;
}

}  // namespace

void AddCheckCommand(CommandLine& tool) {
  Command command = tool.AddCommand("check", "Test whether files are well-formed stories");
  const auto options = std::make_shared<CheckOptions>();
  command.AddArguments("STORY", options->mFiles, "Story files; - is standard input");
  command.AddFlag("--json", options->mAsJSON, "Print one JSON object a file");
  command.SetFooter(
      "Prints FILE: ok, or FILE:LINE:COLUMN: error: MESSAGE (PLACE IN THE STORY), a line each.\n"
      "Lines and columns count from 1, columns in characters.\n"
      "Exit status: 0 all are stories, 1 one or more are not, 2 wrong usage.");
  command.SetAction([options] { return Check(*options); });
}

}  // namespace zelstory
