#include <algorithm>
#include <filesystem>
#include <functional>

#include <zelstoryhost/ClipTable.h>
#include <zelstoryhost/Error.h>
#include <zelstoryhost/SidecarEdit.h>

#include "commands/Commands.h"
#include "options/EditOptions.h"
#include "options/SceneOptions.h"
#include "options/ScriptOptions.h"
#include "terminal/Batch.h"
#include "terminal/Console.h"
#include "terminal/Input.h"
#include "terminal/Memory.h"

namespace zelstory {

using zelstoryhost::ClipRow;
using zelstoryhost::ClipTable;
using zelstoryhost::Difference;
using zelstoryhost::Error;
using zelstoryhost::JSONWriter;
using zelstoryhost::MetadataValue;
using zelstoryhost::ReadClipTable;
using zelstoryhost::SceneFinder;
using zelstoryhost::SidecarChange;
using zelstoryhost::StructValue;

namespace {

struct TagOptions {
  std::string mStory;
  const zelstoryhost::ScriptFormat* mFormat = nullptr;
  std::string mTable;
  std::string mFolder;  // empty: the table's
  EditOptions mEdit;
  bool mKeepsGoing = false;
  bool mAsJSON = false;
};

std::string FolderOf(const TagOptions& options) {
  if (!options.mFolder.empty() || options.mTable == kStandardStream) return options.mFolder;
  return std::filesystem::path(options.mTable).parent_path().string();
}

// Prints the outcome of each clip.
class Outcomes {
 public:
  explicit Outcomes(const TagOptions& options)
      : mTable(options.mTable), mIsDryRun(options.mEdit.IsDryRun()), mAsJSON(options.mAsJSON) {}

  void PrintRefused(const ClipRow& row, const std::string& reason) const {
    if (mAsJSON) {
      return PrintJSON(row, "refused", [&](JSONWriter& json) { json.Name("reason").Text(reason); });
    }
    const std::string line = mTable + ':' + std::to_string(row.mLine);
    PrintResult((row.mClip.empty() ? line : row.mClip) + ": ", Tone::kBad, "refused: " + reason);
  }

  void PrintDone(const ClipRow& row, const SidecarChange& change) const {
    const char* const outcome = !change.mIsChanged ? "unchanged"
                                : mIsDryRun        ? "would be written"
                                                   : "written";
    if (mAsJSON) {
      return PrintJSON(row, outcome, [&](JSONWriter& json) { WriteDetails(json, change); });
    }
    PrintResult(row.mClip + ": ", change.mIsChanged ? Tone::kGood : Tone::kFaint, outcome);
    if (mIsDryRun && change.mClearsFirst) PrintLine(std::string("  ").append(kClearsFirst));
    if (!change.mWhyRewritten.empty()) PrintLine("  " + DescribeRewriting(change));
    if (!change.mDiff.empty()) return PrintDiff(change.mDiff);
    for (const Difference& difference : change.mDifferences) {
      PrintLine("  " + Describe(difference));
    }
  }

 private:
  static void PrintJSON(const ClipRow& row, const char* outcome,
                        const std::function<void(JSONWriter& json)>& writeDetails) {
    PrintJSONLine([&](JSONWriter& json) {
      json.Name("clip").Text(row.mClip);
      json.Name("line").Number(static_cast<std::int64_t>(row.mLine));
      json.Name("outcome").Text(outcome);
      if (row.mScene.mScene) {
        const auto& number = row.mScene.mScene->mSceneNumber;
        json.Name("scene");
        number.empty() ? json.Null() : json.Text(number);
        json.Name("position").Number(static_cast<std::int64_t>(row.mScene.mPosition));
      }
      writeDetails(json);
    });
  }

  void WriteDetails(JSONWriter& json, const SidecarChange& change) const {
    json.Name("sidecar").Text(change.mSidecar);
    if (!change.mIsChanged) return;
    if (mIsDryRun) return WriteChanges(json, change);
    json.Name("paths").BeginArray();
    for (const std::string& path : change.PathTexts()) json.Text(path);
    json.EndArray();
  }

  static void WriteChanges(JSONWriter& json, const SidecarChange& change) {
    json.Name("clearsFirst").Bool(change.mClearsFirst);
    json.Name("rewritten");
    change.mWhyRewritten.empty() ? json.Null() : json.Text(change.mWhyRewritten);
    if (!change.mDiff.empty()) json.Name("diff").Text(change.mDiff);
    json.Name("changes").BeginArray();
    for (const Difference& difference : change.mDifferences) {
      json.BeginObject();
      json.Name("path").Text(difference.mPath);
      WriteValue(json.Name("before"), difference.mBefore);
      WriteValue(json.Name("after"), difference.mAfter);
      json.EndObject();
    }
    json.EndArray();
  }

  // An array becomes the number of its items, a struct an empty object.
  static void WriteValue(JSONWriter& json, const MetadataValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return json.Text(*text);
    if (const auto* items = std::get_if<std::int64_t>(&value)) return json.Number(*items);
    if (!std::holds_alternative<StructValue>(value)) return json.Null();
    json.BeginObject();
    json.EndObject();
  }

  const std::string& mTable;
  const bool mIsDryRun;
  const bool mAsJSON;
};

std::string ReasonOf(const Error& error, const ClipRow& row) {
  const std::string place = error.Place();
  const bool isKnown = place.empty() || place == row.mFile;
  return WithAdvice(isKnown ? error.Reason() : place + ": " + error.Reason(), error);
}

// A fault in one row suggests that the others are wrong, too, so nothing is written.
int RefuseTable(const TagOptions& options, const std::vector<ClipRow>& rows, std::size_t faults) {
  const Outcomes outcomes(options);
  for (const ClipRow& row : rows) {
    outcomes.PrintRefused(
        row, row.mFault ? WithAdvice(row.mFault->Reason(), *row.mFault) : "other rows have faults");
  }
  PrintError(options.mTable + ": error: " + std::to_string(faults) + " of " +
             std::to_string(rows.size()) +
             " rows have faults, so nothing was written (--keep-going writes the others)");
  return kRefused;
}

std::vector<ClipRow> ReadRows(const TagOptions& options, const zelstoryparser::TavroStory& story) {
  const SceneFinder scenes(story, options.mStory);
  const ClipTable table = ReadClipTable(
      ReadText(options.mTable), {options.mTable, FolderOf(options), options.mEdit.Form()}, scenes);
  if (table.mAsksForNumbers && !scenes.HasNumbers()) NoteMissingNumbers(options.mStory);
  return table.mRows;
}

int Tag(TagOptions& options) {
  if (options.mStory == kStandardStream && options.mTable == kStandardStream) {
    throw UsageError("only one of STORY and the table can be standard input");
  }
  options.mEdit.ReadHeadingRules();
  const auto story = LoadStory(options.mStory, options.mFormat);
  const std::vector<ClipRow> rows = ReadRows(options, *story);
  const auto faults = static_cast<std::size_t>(std::count_if(
      rows.begin(), rows.end(), [](const ClipRow& row) { return row.mFault.has_value(); }));
  if (rows.empty()) PrintNote(options.mTable, "the table has no rows, so there is nothing to do");
  if (faults > 0 && !options.mKeepsGoing) return RefuseTable(options, rows, faults);

  const Outcomes outcomes(options);
  int status = faults > 0 ? kRefused : kDone;
  Batch batch(rows.size());
  for (const ClipRow& row : rows) {
    batch.Next();
    WorkOn(row.mFile);
    try {
      if (row.mFault) throw Error("", row.mFault->Reason(), row.mFault->Kind());
      // The file that the table's check found, whatever earlier rows have created since.
      outcomes.PrintDone(row, options.mEdit.Write(row.mSidecar, row.mScene.mScene));
    } catch (const Error& error) {
      outcomes.PrintRefused(row, ReasonOf(error, row));
      status = kRefused;
    }
  }
  return status;
}

}  // namespace

void AddTagCommand(CommandLine& tool) {
  Command command =
      tool.AddCommand("tag", "Write scenes into the sidecars of many clips, from a table");
  const auto options = std::make_shared<TagOptions>();
  AddStoryArgument(command, options->mStory, options->mFormat);
  command
      .AddText("--table", options->mTable, "FILE",
               "A CSV table of clips and their scenes; - is standard input")
      .Required();
  command.AddText("--clips", options->mFolder, "DIR",
                  "The folder of relative clip names (default: the table's folder)");
  options->mEdit.AddTo(command);
  options->mEdit.AddWriteOptions(command);
  command.AddFlag("--keep-going", options->mKeepsGoing,
                  "Write the other clips even if rows of the table have faults");
  command.AddFlag("--json", options->mAsJSON, "Print one JSON object per clip, one per line");
  command.SetFooter(
      "The table's first line names its columns: clip, and one or more of scene (the number in\n"
      "the script), position (from 1) and id (objID); others are ignored. For example:\n"
      "  clip,scene\n"
      "  A001_C003.mov,1\n"
      "  A001_C004.mov,2\n"
      "All rows are checked before anything is written. Afterwards each clip holds its scene and\n"
      "no other. Prints CLIP: written, CLIP: unchanged or CLIP: refused: REASON, one line per\n"
      "clip; a clip that is refused does not stop the others.\n"
      "Exit status: 0 done, 1 one or more were refused (and are as they were) or the output\n"
      "failed, 2 wrong usage.");
  command.SetAction([options] { return Tag(*options); });
}

}  // namespace zelstory
