#include "SidecarEdit.h"

#include <set>
#include <utility>

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

nlohmann::ordered_json KnownValue(const TXMPMeta<std::string>& metadata, const Path& path) {
  const std::string schema(path.Steps().front().mNamespaceURI);
  const std::string name = TextOf(path);
  std::string value;
  XMP_OptionBits options = 0;
  if (!metadata.GetProperty(schema.c_str(), name.c_str(), &value, &options)) return nullptr;
  if ((options & kXMP_PropValueIsArray) != 0) {
    return metadata.CountArrayItems(schema.c_str(), name.c_str());
  }
  if ((options & kXMP_PropValueIsStruct) != 0) return nlohmann::ordered_json::object();
  return value;
}

// Metadata of another shape, which the toolkit will not look into for this path, has nothing there.
nlohmann::ordered_json ValueAt(const TXMPMeta<std::string>& metadata, const Path& path) {
  try {
    return KnownValue(metadata, path);
  } catch (const XMP_Error&) {
    return nullptr;
  }
}

std::string DescribeValue(const nlohmann::ordered_json& value) {
  if (value.is_null()) return "(none)";
  if (value.is_object()) return "(struct)";
  if (value.is_number()) return '(' + value.dump() + (value == 1 ? " item)" : " items)");
  return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
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
void Make(const SidecarEdit::Change& change, Sidecar& sidecar, std::vector<Path>& changedPaths) {
  try {
    const zelcore::UTF16String error = change(sidecar.Metadata(), changedPaths);
    if (!error.empty()) throw ToolError(sidecar.File(), ToUTF8(error));
  } catch (const XMP_Error& error) {
    throw ToolError(sidecar.File(), error.GetErrMsg());
  }
}

std::vector<Difference> DifferencesOf(const Sidecar& sidecar, const TXMPMeta<std::string>& after,
                                      const std::vector<Path>& changedPaths) {
  std::vector<Difference> differences;
  for (const Path& path : WithArrays(changedPaths)) {
    Difference difference{TextOf(path), ValueAt(sidecar.MetadataBefore(), path),
                          ValueAt(after, path)};
    if (difference.mBefore != difference.mAfter) differences.push_back(std::move(difference));
  }
  return differences;
}

}  // namespace

std::string Difference::Describe() const {
  return mPath + ": " + DescribeValue(mBefore) + " -> " + DescribeValue(mAfter);
}

void SidecarEdit::AddOptions(CLI::App& command) {
  command.add_flag("--dry-run", mDryRun, "Print old and new values a path; touch nothing");
  command.add_flag("--force", mForce, "Change packets that are marked read-only, too");
  command
      .add_option_function<std::string>(
          "--sidecar-name",
          [this](const std::string& form) {
            mForm = form == "stem" ? SidecarForm::kStem : SidecarForm::kFull;
          },
          "What a clip's new sidecar is called: full (clip.mov.xmp, the default) or stem\n"
          "(clip.xmp)")
      ->type_name("FORM")
      ->check(CLI::IsMember({"full", "stem"}).description(""));
}

SidecarChange SidecarEdit::Apply(const std::string& clipOrSidecar, WhenAbsent whenAbsent,
                                 const Change& change) const {
  const std::string file = FindSidecar(clipOrSidecar, mForm, whenAbsent);
  const DirectoryLock lock(file);
  Sidecar sidecar(file, whenAbsent);
  std::vector<Path> changedPaths;
  Make(change, sidecar, changedPaths);
  SidecarChange result{file, sidecar.IsChanged(), {}, {}};
  if (result.mIsChanged && !mForce) sidecar.RefuseReadOnly();
  if (!mDryRun) sidecar.Save();
  for (const Path& path : changedPaths) result.mTouchedPaths.push_back(TextOf(path));
  if (mDryRun) result.mDifferences = DifferencesOf(sidecar, sidecar.Metadata(), changedPaths);
  return result;
}

void SidecarEdit::Run(const std::string& clipOrSidecar, WhenAbsent whenAbsent,
                      const std::string& label, const Change& change) const {
  const SidecarChange result = Apply(clipOrSidecar, whenAbsent, change);
  if (result.mSidecar == kStandardStream && !mDryRun) return;
  if (!result.mIsChanged) return PrintResult(label, Tone::kFaint, "unchanged");
  for (const Difference& difference : result.mDifferences) PrintLine(label + difference.Describe());
  if (mDryRun) return;
  for (const std::string& path : result.mTouchedPaths) PrintLine(label + path);
}

}  // namespace zelstory
