#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelmetadata/Path.h>
#include <zelstoryhost/Export.h>
#include <zelstoryhost/FolderLock.h>
#include <zelstoryhost/Sidecar.h>
#include <zelstoryhost/SidecarName.h>
#include <zelstoryparser/HeadingRules.h>
#include <zelstoryparser/StoryTree.h>

// Writes scenes into sidecars and clears them, either in memory or in the file. Several threads may
// change different sidecars at once.
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

// What happens to the scene that the clip already holds.
enum class OldScene {
  kClear,  // it is removed: the clip then holds only the new scene
  kMerge,  // properties that the new scene lacks stay
};

// The outcome of a change.
struct SidecarChange {
  std::string mSidecar;  // the file
  bool mIsChanged = false;
  bool mClearsFirst = false;                     // it held a scene, which is removed
  std::vector<zelmetadata::Path> mTouchedPaths;  // in the order in which they were reported
  std::vector<Difference> mDifferences;          // of a dry run
  std::string mDiff;          // of a dry run, if asked for: of the bytes, in the unified format
  std::string mWhyRewritten;  // of a dry run: why the whole packet would be written anew, or empty

  // The touched paths as text.
  ZELSTORYHOST_API std::vector<std::string> PathTexts() const;
};

// Writes a scene, which must not be null, into a sidecar's metadata; `rules` say how its heading is
// read. Throws Error when the toolkit refuses the change. Then discard the sidecar: its metadata is
// undefined, its file unchanged.
ZELSTORYHOST_API SidecarChange WriteScene(
    const boost::intrusive_ptr<zelstoryparser::Scene>& scene, OldScene oldScene, Sidecar& sidecar,
    const zelstoryparser::HeadingRules& rules = zelstoryparser::ExactHeadingRules());

// Removes any scene from a sidecar's metadata. Throws as WriteScene does.
ZELSTORYHOST_API SidecarChange ClearScene(Sidecar& sidecar);

// Adds to a change what a dry run says of it: the differences, whether the packet would be written
// anew, and, if asked for, the unified diff. The diff of a sidecar in UTF-16 or UTF-32 is that of
// its text in UTF-8. Throws Error when the change could not be written.
ZELSTORYHOST_API void Preview(const Sidecar& sidecar, bool wantsDiff, SidecarChange& change);

// What a change did, compared with the sidecar as it was read: the touched paths whose values
// differ, each array before its items.
ZELSTORYHOST_API std::vector<Difference> DifferencesOf(const Sidecar& sidecar,
                                                       const SidecarChange& change);

// How files are changed.
struct EditSettings {
  bool mIsDryRun = false;   // lists the differences and leaves the file alone
  bool mWantsDiff = false;  // of a dry run
  bool mForce = false;      // also changes write-protected files and read-only packets, and parts
                            // files from their other names (hard links)
  Waiting mWaiting;         // for the folder's lock; a dry run takes none
  std::optional<SidecarForm> mForm;          // of the sidecar's name
  std::shared_ptr<SidecarFinder> mFinder;    // of a run over many clips, on one thread; may be null
  zelstoryparser::HeadingRules mHeadings{};  // how a scene's heading is read
};

// Writes a scene, which must not be null, into the sidecar of a clip, creating it if needed. Holds
// the folder's lock from reading the file to replacing it. The file is replaced whole or not at
// all. Throws Error; the file is then unchanged.
ZELSTORYHOST_API SidecarChange WriteSceneToClip(
    const std::string& clipOrSidecar, const boost::intrusive_ptr<zelstoryparser::Scene>& scene,
    OldScene oldScene, const EditSettings& settings);

// Removes any scene from the sidecar of a clip, in the same way.
ZELSTORYHOST_API SidecarChange ClearSceneFromClip(const std::string& clipOrSidecar,
                                                  WhenAbsent whenAbsent,
                                                  const EditSettings& settings);

}  // namespace zelstoryhost
