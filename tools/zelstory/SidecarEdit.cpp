#include "SidecarEdit.h"

#include <map>
#include <set>
#include <utility>

#include <nlohmann/json.hpp>

#include "Console.h"
#include "FileReplacement.h"
#include "Sidecar.h"
#include "ToolError.h"

namespace zelstory {
namespace {

using zelmetadata::Path;

std::string TextOf(const Path& path) {
  const zelmetadata::UTF8String text = path.AsString();
  return std::string(text.data(), text.size());
}

std::string DescribeKnown(const TXMPMeta<std::string>& metadata, const Path& path) {
  const std::string schema(path.Steps().front().mNamespaceURI);
  const std::string name = TextOf(path);
  std::string value;
  XMP_OptionBits options = 0;
  if (!metadata.GetProperty(schema.c_str(), name.c_str(), &value, &options)) return "(none)";
  if ((options & kXMP_PropValueIsArray) != 0) {
    const XMP_Index count = metadata.CountArrayItems(schema.c_str(), name.c_str());
    return '(' + std::to_string(count) + (count == 1 ? " item)" : " items)");
  }
  if ((options & kXMP_PropValueIsStruct) != 0) return "(struct)";
  return nlohmann::json(value).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

// What stands at a path: a value in quotation marks, a number of items, or that nothing does;
// metadata of another shape, which the toolkit will not look into for this path, has nothing there
// either.
std::string Describe(const TXMPMeta<std::string>& metadata, const Path& path) {
  try {
    return DescribeKnown(metadata, path);
  } catch (const XMP_Error&) {
    return "(none)";
  }
}

// The paths to compare: those that were touched, each array in front of its items.
std::vector<Path> WithArrays(const std::vector<Path>& changedPaths) {
  std::vector<Path> paths;
  std::set<Path> seen;
  for (const Path& path : changedPaths) {
    zelmetadata::PathStep array = path.Steps().front();
    const bool isInArray = std::exchange(array.mItem, 0) > 0;
    const Path whole({array});
    if (isInArray && seen.insert(whole).second) paths.push_back(whole);
    if (seen.insert(path).second) paths.push_back(path);
  }
  return paths;
}

// Changes the metadata; a refusal of the library, or of the toolkit below it, names the file.
void Apply(const SidecarEdit::Change& change, Sidecar& sidecar, std::vector<Path>& changedPaths) {
  try {
    const zelcore::UTF16String error = change(sidecar.Metadata(), changedPaths);
    if (!error.empty()) throw ToolError(sidecar.File(), ToUTF8(error));
  } catch (const XMP_Error& error) {
    throw ToolError(sidecar.File(), error.GetErrMsg());
  }
}

void PrintDifferences(const Sidecar& before, const TXMPMeta<std::string>& after,
                      const std::vector<Path>& changedPaths, const std::string& label) {
  for (const Path& path : WithArrays(changedPaths)) {
    const std::string oldValue = Describe(before.MetadataBefore(), path);
    const std::string newValue = Describe(after, path);
    if (oldValue != newValue) PrintLine(label + TextOf(path) + ": " + oldValue + " -> " + newValue);
  }
}

}  // namespace

void SidecarEdit::AddOptions(CLI::App& command) {
  command.add_flag("--dry-run", mDryRun, "Print old and new values a path; touch nothing");
  command.add_flag("--force", mForce, "Change packets that are marked read-only, too");
  const std::map<std::string, SidecarForm> forms{{"full", SidecarForm::kFull},
                                                 {"stem", SidecarForm::kStem}};
  command
      .add_option("--sidecar-name", mForm,
                  "What a clip's new sidecar is called: full (clip.mov.xmp, the default) or stem\n"
                  "(clip.xmp)")
      ->type_name("FORM")
      ->transform(CLI::CheckedTransformer(forms).description(""));
}

void SidecarEdit::Run(const std::string& clipOrSidecar, WhenAbsent whenAbsent,
                      const std::string& label, const Change& change) const {
  const std::string file = FindSidecar(clipOrSidecar, mForm, whenAbsent);
  const DirectoryLock lock(file);
  Sidecar sidecar(file, whenAbsent);
  std::vector<Path> changedPaths;
  Apply(change, sidecar, changedPaths);
  const bool changed = sidecar.IsChanged();
  if (changed && !mForce) sidecar.RefuseReadOnly();

  if (!mDryRun) sidecar.Save();
  if (file == kStandardStream && !mDryRun) return;
  if (!changed) return PrintLine(label + "unchanged");
  if (mDryRun) return PrintDifferences(sidecar, sidecar.Metadata(), changedPaths, label);
  for (const Path& path : changedPaths) PrintLine(label + TextOf(path));
}

}  // namespace zelstory
