#include <set>
#include <utility>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/SidecarEdit.h>
#include <zelstoryhost/Text.h>
#include <zelstoryhost/UnifiedDiff.h>
#include <zelstoryparser/SceneXMP.h>

namespace zelstoryhost {
namespace {

using Clip = TXMPMeta<std::string>;
using zelmetadata::Path;
using zelstoryparser::HeadingRules;

std::string PathText(const Path& path) {
  const zelmetadata::UTF8String text = path.AsString();
  return std::string(text.data(), text.size());
}

MetadataValue KnownValue(const Clip& metadata, const Path& path) {
  const std::string schema(path.Steps().front().mNamespaceURI);
  const std::string name = PathText(path);
  std::string value;
  XMP_OptionBits options = 0;
  if (!metadata.GetProperty(schema.c_str(), name.c_str(), &value, &options)) return {};
  if ((options & kXMP_PropValueIsArray) != 0) {
    return std::int64_t{metadata.CountArrayItems(schema.c_str(), name.c_str())};
  }
  if ((options & kXMP_PropValueIsStruct) != 0) return StructValue{};
  return value;
}

// If a property has another shape than the path says, the toolkit refuses the path: nothing is
// there.
MetadataValue ValueAt(const Clip& metadata, const Path& path) {
  try {
    return KnownValue(metadata, path);
  } catch (const XMP_Error&) {
    return {};
  }
}

// The paths to compare: those that were touched, each array before its items.
std::vector<Path> WithArrays(const std::vector<Path>& touchedPaths) {
  std::vector<Path> paths;
  std::set<Path> seen;
  for (const Path& path : touchedPaths) {
    zelmetadata::PathStep array = path.Steps().front();
    const bool isInArray = std::exchange(array.mItem, 0) > 0;
    const Path whole({array});
    if (isInArray && seen.insert(whole).second) paths.push_back(whole);
    if (seen.insert(path).second) paths.push_back(path);
  }
  return paths;
}

// Clearing reports all its properties, even absent ones. Of these, only those that were present are
// added to what writing reports.
zelcore::UTF16String WriteInPlaceOfAnother(const boost::intrusive_ptr<zelstoryparser::Scene>& scene,
                                           const HeadingRules& rules, Clip& clip,
                                           std::vector<Path>& touchedPaths) {
  const Clip before(clip);
  std::vector<Path> cleared;
  zelcore::UTF16String error = zelstoryparser::ClearSceneMetadataFromXMP(clip, cleared);
  if (!error.empty()) return error;
  error = zelstoryparser::WriteSceneMetadataIntoXMP(scene, rules, clip, touchedPaths);
  std::set<Path> reported(touchedPaths.begin(), touchedPaths.end());
  for (const Path& path : cleared) {
    const bool wasThere = !std::holds_alternative<std::monostate>(ValueAt(before, path));
    if (wasThere && reported.insert(path).second) touchedPaths.push_back(path);
  }
  return error;
}

std::string Shown(const std::string& bytes) {
  if (bytes.empty()) return {};
  return xmptoolkit::FileInUTF8(bytes.data(), static_cast<XMP_StringLen>(bytes.size()));
}

// Runs an operation of the library on a sidecar's metadata.
template <typename Operation>
SidecarChange Change(Sidecar& sidecar, Operation operation) {
  SidecarChange change;
  change.mSidecar = sidecar.File();
  try {
    const zelcore::UTF16String error = operation(sidecar.Metadata(), change.mTouchedPaths);
    if (!error.empty()) throw Error(sidecar.File(), ToUTF8(error));
  } catch (const XMP_Error& error) {
    throw Error(sidecar.File(), error.GetErrMsg());
  }
  change.mIsChanged = sidecar.IsChanged();
  return change;
}

// Reads the file, applies a change and writes the file back.
template <typename Make>
SidecarChange Edit(const std::string& clipOrSidecar, WhenAbsent whenAbsent,
                   const EditSettings& settings, Make make) {
  const FileEntry file(settings.mFinder
                           ? settings.mFinder->Find(clipOrSidecar, settings.mForm, whenAbsent)
                           : FindSidecar(clipOrSidecar, settings.mForm, whenAbsent));
  std::optional<FolderLock> lock;
  if (!settings.mIsDryRun) lock.emplace(file, settings.mWaiting);
  Sidecar sidecar(file, whenAbsent);
  SidecarChange change = make(sidecar);
  if (change.mIsChanged && !settings.mForce) sidecar.RefuseProtected();
  if (settings.mIsDryRun) {
    Preview(sidecar, settings.mWantsDiff, change);
  } else {
    sidecar.Save(settings.mForce ? HardLinks::kPart : HardLinks::kRefuse);
  }
  return change;
}

}  // namespace

std::vector<std::string> SidecarChange::PathTexts() const {
  std::vector<std::string> texts;
  for (const Path& path : mTouchedPaths) texts.push_back(PathText(path));
  return texts;
}

SidecarChange WriteScene(const boost::intrusive_ptr<zelstoryparser::Scene>& scene,
                         OldScene oldScene, Sidecar& sidecar, const HeadingRules& rules) {
  bool heldScene = false;
  SidecarChange change = Change(sidecar, [&](Clip& clip, std::vector<Path>& touchedPaths) {
    if (oldScene == OldScene::kMerge) {
      return zelstoryparser::WriteSceneMetadataIntoXMP(scene, rules, clip, touchedPaths);
    }
    heldScene = zelstoryparser::HasAnyStoryRelatedMetadata(clip);
    return WriteInPlaceOfAnother(scene, rules, clip, touchedPaths);
  });
  change.mClearsFirst = heldScene && change.mIsChanged;
  return change;
}

SidecarChange ClearScene(Sidecar& sidecar) {
  return Change(sidecar, zelstoryparser::ClearSceneMetadataFromXMP);
}

std::vector<Difference> DifferencesOf(const Sidecar& sidecar, const SidecarChange& change) {
  std::vector<Difference> differences;
  for (const Path& path : WithArrays(change.mTouchedPaths)) {
    Difference difference{PathText(path), ValueAt(sidecar.MetadataBefore(), path),
                          ValueAt(sidecar.Metadata(), path)};
    if (difference.mBefore != difference.mAfter) differences.push_back(std::move(difference));
  }
  return differences;
}

void Preview(const Sidecar& sidecar, bool wantsDiff, SidecarChange& change) {
  change.mDifferences = DifferencesOf(sidecar, change);
  if (!change.mIsChanged) return;
  xmptoolkit::PacketPatch patch = sidecar.Patch();
  change.mWhyRewritten = std::move(patch.mWhyRewritten);
  if (!wantsDiff) return;
  const std::optional<std::string>& before = sidecar.BytesBefore();
  change.mDiff = UnifiedDiff(Shown(before.value_or("")), Shown(patch.mNewFile),
                             before ? sidecar.File() : "/dev/null", sidecar.File());
}

SidecarChange WriteSceneToClip(const std::string& clipOrSidecar,
                               const boost::intrusive_ptr<zelstoryparser::Scene>& scene,
                               OldScene oldScene, const EditSettings& settings) {
  return Edit(clipOrSidecar, WhenAbsent::kCreate, settings, [&](Sidecar& sidecar) {
    return WriteScene(scene, oldScene, sidecar, settings.mHeadings);
  });
}

SidecarChange ClearSceneFromClip(const std::string& clipOrSidecar, WhenAbsent whenAbsent,
                                 const EditSettings& settings) {
  return Edit(clipOrSidecar, whenAbsent, settings, ClearScene);
}

}  // namespace zelstoryhost
