#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <zelstoryhost/Export.h>
#include <zelstoryhost/FolderLock.h>
#include <zelstoryhost/Sidecar.h>
#include <zelstoryhost/SidecarName.h>

#include <zelmetadata/Path.h>
#include <zelstoryparser/StoryTree.h>

// Writing scenes into sidecars and clearing them: in memory, or from the file through the change
// back to the file. Several threads may change different sidecars at once.
namespace zelstoryhost {

// The value at a metadata path: nothing, a text, an array of so many items, or a struct.
struct StructValue {
  bool operator==(const StructValue&) const = default;
};
using MetadataValue = std::variant<std::monostate, std::string, std::int64_t, StructValue>;

// A change at a metadata path.
struct Difference {
  std::string mPath;
  MetadataValue mBefore;
  MetadataValue mAfter;
};

// What happens to a scene that the clip holds already.
enum class OldScene {
  kClear,  // it goes, so that the clip holds the new scene and no other
  kMerge,  // what the new scene lacks stays
};

// What became of a sidecar.
struct SidecarChange {
  std::string mSidecar;  // the file
  bool mIsChanged = false;
  bool mClearsFirst = false;                     // it held a scene, which goes
  std::vector<zelmetadata::Path> mTouchedPaths;  // in the order in which they were reported
  std::vector<Difference> mDifferences;          // of a dry run

  // The touched paths as text.
  ZELSTORYHOST_API std::vector<std::string> PathTexts() const;
};

// Writes a scene, which must not be null, into a sidecar's metadata. Throws Error when the toolkit
// refuses; the metadata is then to be discarded, and the file is as it was.
ZELSTORYHOST_API SidecarChange WriteScene(const boost::intrusive_ptr<zelstoryparser::Scene>& scene,
                                          OldScene oldScene, Sidecar& sidecar);

// Removes any scene from a sidecar's metadata. Throws as WriteScene does.
ZELSTORYHOST_API SidecarChange ClearScene(Sidecar& sidecar);

// What a change did, compared with the sidecar as it was read: the touched paths whose values
// differ, each array before its items.
ZELSTORYHOST_API std::vector<Difference> DifferencesOf(const Sidecar& sidecar,
                                                       const SidecarChange& change);

// How files are changed.
struct EditSettings {
  bool mIsDryRun = false;  // lists the differences and leaves the file alone
  bool mForce = false;     // changes write-protected files and read-only packets, too
  FolderLock::Waiting mWaiting = FolderLock::Waiting::kAsLongAsNeeded;
  FolderLock::Note mNote;            // called while waiting for another process; may be empty
  std::optional<SidecarForm> mForm;  // of the sidecar's name
};

// Has the sidecar of a clip, created when absent, hold a scene. The folder is locked from reading
// to replacing the file, which is replaced whole or not at all. Throws Error; the file is then as
// it was.
ZELSTORYHOST_API SidecarChange WriteSceneToClip(
    const std::string& clipOrSidecar, const boost::intrusive_ptr<zelstoryparser::Scene>& scene,
    OldScene oldScene, const EditSettings& settings);

// Removes any scene from the sidecar of a clip; otherwise the same.
ZELSTORYHOST_API SidecarChange ClearSceneFromClip(const std::string& clipOrSidecar,
                                                  WhenAbsent whenAbsent,
                                                  const EditSettings& settings);

}  // namespace zelstoryhost
