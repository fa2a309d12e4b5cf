#include "SidecarEdit.h"

#include <set>
#include <utility>

#include <xmptoolkit/XMP.h>
#include <zelmetadata/Path.h>
#include <zelstoryparser/SceneXMP.h>

#include "Console.h"
#include "FileReplacement.h"
#include "Sidecar.h"
#include "SidecarOptions.h"
#include "ToolError.h"

namespace zelstory {
namespace {

using zelmetadata::Path;

std::string TextOf(const Path& path) {
  const zelmetadata::UTF8String text = path.AsString();
  return std::string(text.data(), text.size());
}

MetadataValue KnownValue(const TXMPMeta<std::string>& metadata, const Path& path) {
  const std::string schema(path.Steps().front().mNamespaceURI);
  const std::string name = TextOf(path);
  std::string value;
  XMP_OptionBits options = 0;
  if (!metadata.GetProperty(schema.c_str(), name.c_str(), &value, &options)) return {};
  if ((options & kXMP_PropValueIsArray) != 0) {
    return std::int64_t{metadata.CountArrayItems(schema.c_str(), name.c_str())};
  }
  if ((options & kXMP_PropValueIsStruct) != 0) return StructValue{};
  return value;
}

// Metadata of another shape, which the toolkit will not look into for this path, has nothing there.
MetadataValue ValueAt(const TXMPMeta<std::string>& metadata, const Path& path) {
  try {
    return KnownValue(metadata, path);
  } catch (const XMP_Error&) {
    return {};
  }
}

std::string DescribeValue(const MetadataValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return Quoted(*text);
  if (std::holds_alternative<StructValue>(value)) return "(struct)";
  const auto* items = std::get_if<std::int64_t>(&value);
  if (items == nullptr) return "(none)";
  return '(' + std::to_string(*items) + (*items == 1 ? " item)" : " items)");
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

using Clip = TXMPMeta<std::string>;

// Makes the clip hold this scene alone. Clearing reports its properties whether or not they were
// there; beside what writing reports, only those that were there are of interest.
zelcore::UTF16String WriteInPlaceOfAnother(const boost::intrusive_ptr<zelstoryparser::Scene>& scene,
                                           Clip& clip, std::vector<Path>& changedPaths) {
  const Clip before(clip);
  std::vector<Path> cleared;
  zelcore::UTF16String error = zelstoryparser::ClearSceneMetadataFromXMP(clip, cleared);
  if (!error.empty()) return error;
  error = zelstoryparser::WriteSceneMetadataIntoXMP(scene, clip, changedPaths);
  std::set<Path> reported(changedPaths.begin(), changedPaths.end());
  for (const Path& path : cleared) {
    const bool wasThere = !std::holds_alternative<std::monostate>(ValueAt(before, path));
    if (wasThere && reported.insert(path).second) changedPaths.push_back(path);
  }
  return error;
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

void SidecarEdit::AddOptions(Command& command) {
  command.AddFlag("--dry-run", mDryRun,
                  "Print old and new values, one path per line; touch nothing");
  command.AddFlag("--force", mForce,
                  "Change sidecars without write permission and packets marked read-only, too");
  command.AddFlag("--no-wait", mNoWait, "Refuse while another process changes files of the folder");
  AddSidecarNameOption(command, mForm);
}

void SidecarEdit::AddMergeOption(Command& command) {
  command.AddFlag("--merge", mMerge,
                  "Keep what the clip holds of another scene and this one lacks");
}

template <typename Change>
SidecarChange SidecarEdit::Apply(const std::string& clipOrSidecar, WhenAbsent whenAbsent,
                                 Change make) const {
  SidecarChange result;
  result.mSidecar = FindSidecar(clipOrSidecar, mForm, whenAbsent);
  std::optional<DirectoryLock> lock;
  if (!mDryRun && result.mSidecar != kStandardStream) {
    lock.emplace(result.mSidecar,
                 mNoWait ? DirectoryLock::Waiting::kNever : DirectoryLock::Waiting::kAsLongAsNeeded,
                 PrintNote);
  }
  Sidecar sidecar(result.mSidecar, whenAbsent);
  std::vector<Path> changedPaths;
  try {
    const zelcore::UTF16String error = make(sidecar.Metadata(), changedPaths);
    if (!error.empty()) throw ToolError(sidecar.File(), ToUTF8(error));
  } catch (const XMP_Error& error) {
    throw ToolError(sidecar.File(), error.GetErrMsg());
  }
  result.mIsChanged = sidecar.IsChanged();
  if (result.mIsChanged && !mForce) sidecar.RefuseReadOnly();
  if (!mDryRun) sidecar.Save();
  for (const Path& path : changedPaths) result.mTouchedPaths.push_back(TextOf(path));
  if (mDryRun) result.mDifferences = DifferencesOf(sidecar, sidecar.Metadata(), changedPaths);
  return result;
}

SidecarChange SidecarEdit::Write(const std::string& clipOrSidecar,
                                 const boost::intrusive_ptr<zelstoryparser::Scene>& scene) const {
  bool heldScene = false;
  SidecarChange change =
      Apply(clipOrSidecar, WhenAbsent::kCreate, [&](Clip& clip, std::vector<Path>& changedPaths) {
        if (mMerge) return zelstoryparser::WriteSceneMetadataIntoXMP(scene, clip, changedPaths);
        heldScene = zelstoryparser::HasAnyStoryRelatedMetadata(clip);
        return WriteInPlaceOfAnother(scene, clip, changedPaths);
      });
  change.mClearsFirst = heldScene && change.mIsChanged;
  return change;
}

SidecarChange SidecarEdit::Clear(const std::string& clipOrSidecar, WhenAbsent whenAbsent) const {
  return Apply(clipOrSidecar, whenAbsent, zelstoryparser::ClearSceneMetadataFromXMP);
}

void SidecarEdit::Print(const SidecarChange& change, const std::string& label) const {
  if (change.mSidecar == kStandardStream && !mDryRun) return;
  if (!change.mIsChanged) return PrintResult(label, Tone::kFaint, "unchanged");
  if (!mDryRun) {
    for (const std::string& path : change.mTouchedPaths) PrintLine(label + path);
    return;
  }
  if (change.mClearsFirst) PrintLine(label + kClearsFirst);
  for (const Difference& difference : change.mDifferences) PrintLine(label + difference.Describe());
}

}  // namespace zelstory
