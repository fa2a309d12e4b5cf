#include <algorithm>
#include <iterator>
#include <vector>

#include <zelstoryhost/StoryCheck.h>

#include "commands/Commands.h"
#include "options/HeadingOption.h"
#include "options/ScriptOptions.h"
#include "terminal/Batch.h"
#include "terminal/Console.h"
#include "terminal/Input.h"

namespace zelstory {

using zelstoryhost::Error;
using zelstoryhost::Finding;
using zelstoryhost::JSONWriter;
using zelstoryhost::Severity;
using zelstoryhost::StoryResult;

namespace {

struct CheckOptions {
  std::vector<std::string> mFiles;
  const zelstoryhost::ScriptFormat* mFormat = nullptr;
  HeadingOption mHeadings;
  bool mAsJSON = false;
  bool mIsStrict = false;
};

void WritePosition(JSONWriter& json, const std::optional<zelcore::xml::Position>& position) {
  json.Name("line");
  position ? json.Number(position->mLine) : json.Null();
  json.Name("column");
  position ? json.Number(position->mColumn) : json.Null();
}

void WriteFault(JSONWriter& json, const Error& fault) {
  WritePosition(json, fault.Position());
  json.Name("message").Text(fault.Reason());
  json.Name("where");
  fault.Where().empty() ? json.Null() : json.Text(fault.Where());
}

void WriteFindings(JSONWriter& json, const std::vector<Finding>& findings) {
  json.Name("findings").BeginArray();
  for (const Finding& finding : findings) {
    json.BeginObject();
    json.Name("severity").Text(finding.mSeverity == Severity::kNote ? "note" : "warning");
    WritePosition(json, finding.mPosition);
    json.Name("message").Text(finding.mText);
    json.Name("where");
    finding.mWhere.empty() ? json.Null() : json.Text(finding.mWhere);
    json.Name("code").Text(NameOf(finding.mCode));
    json.EndObject();
  }
  json.EndArray();
}

void PrintJSON(const std::string& file, const StoryResult& result) {
  PrintJSONLine([&](JSONWriter& json) {
    json.Name("file").Text(file);
    json.Name("ok").Bool(!result.mFault);
    if (result.mFault) WriteFault(json, *result.mFault);
    if (!result.mFindings.empty()) WriteFindings(json, result.mFindings);
  });
}

void Print(const std::string& file, const StoryResult& result) {
  for (const Finding& finding : result.mFindings) PrintLine(Describe(file, finding));
  if (result.mFault) return PrintLine(result.mFault->what());
  PrintResult(file + ": ", Tone::kGood, "ok");
}

// Reads a script, and adds what a valid one deserves a second look for.
StoryResult ReadAndCheck(const std::string& file, const zelstoryhost::ScriptFormat* format,
                         const zelstoryparser::HeadingRules& rules) {
  StoryResult result = ReadStory(file, format);
  if (!result) return result;
  std::vector<Finding> found = zelstoryhost::CheckStory(*result.mStory, rules, result.mPositions);
  std::ranges::move(found, std::back_inserter(result.mFindings));
  return result;
}

bool HasWarning(const StoryResult& result) {
  return std::ranges::find(result.mFindings, Severity::kWarning, &Finding::mSeverity) !=
         result.mFindings.end();
}

int Check(const CheckOptions& options) {
  const zelstoryparser::HeadingRules rules = options.mHeadings.Rules();
  bool allGood = true;
  Batch batch(options.mFiles.size());
  for (const std::string& file : options.mFiles) {
    batch.Next();
    const StoryResult result = ReadAndCheck(file, options.mFormat, rules);
    allGood = allGood && result && !(options.mIsStrict && HasWarning(result));
    options.mAsJSON ? PrintJSON(file, result) : Print(file, result);
  }
  return allGood ? kDone : kRefused;
}

}  // namespace

void AddCheckCommand(CommandLine& tool) {
  Command command = tool.AddCommand("check", "Validate scripts");
  const auto options = std::make_shared<CheckOptions>();
  AddStoryArguments(command, options->mFiles, options->mFormat);
  command.AddFlag("--json", options->mAsJSON, "Print one JSON object per file");
  options->mHeadings.AddTo(command);
  command.AddFlag("--strict", options->mIsStrict, "Exit with status 1 also after warnings");
  command.SetFooter(
      "Prints FILE: ok, or FILE:LINE:COLUMN: error: MESSAGE (PLACE IN THE STORY), one line per "
      "file.\n"
      "What a script says and a story has no place for comes before, as \"note\" or \"warning\",\n"
      "and so does what leads to metadata that you may not expect: headings with unknown words,\n"
      "scene numbers, spellings of names, dialogue without a name, missing identifiers.\n"
      "Lines and columns count from 1, columns in characters.\n"
      "Exit status: 0 all are valid, 1 one or more are not, or have warnings with --strict, 2 "
      "wrong\n"
      "usage.");
  command.SetAction([options] { return Check(*options); });
}

}  // namespace zelstory
