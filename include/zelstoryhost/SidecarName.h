#pragma once

#include <memory>
#include <optional>
#include <string>

#include <zelstoryhost/Export.h>

namespace zelstoryhost {

// How a clip's sidecar is named. Both forms are in use.
enum class SidecarForm {
  kFull,  // clip.mov.xmp: no two clips can share it
  kStem,  // clip.xmp
};

// What to do for a clip that has no sidecar.
enum class WhenAbsent {
  kRefuse,
  kCreate,
  kReadEmpty,  // take it for one without metadata
};

// The sidecar that a name means: a name that ends in .xmp, in any letter case, is the sidecar
// itself; any other is a clip, whose sidecar is the one that exists, or, to be created, has the
// given form. Of several, the form decides. Without a form a new one is kFull, and one that another
// clip may share is refused; kStem shares it, kFull leaves it to the other clip. Throws Error when
// there is neither clip nor sidecar, when the clip is not a file or has several sidecars, and, with
// kRefuse, when it has none. May be called from several threads at once.
ZELSTORYHOST_API std::string FindSidecar(const std::string& clipOrSidecar,
                                         std::optional<SidecarForm> form, WhenAbsent whenAbsent);

class ClipFolders;

// Finds the sidecars of many clips, as FindSidecar does, but lists each folder at most once. Use
// one for each run: of what is added to a folder later, it sees only sidecars whose names end in
// .xmp in lower case, as all do that are created here. Belongs to one thread at a time.
class ZELSTORYHOST_API SidecarFinder {
 public:
  SidecarFinder();
  ~SidecarFinder();
  SidecarFinder(const SidecarFinder&) = delete;
  SidecarFinder& operator=(const SidecarFinder&) = delete;

  // Throws Error as FindSidecar does.
  std::string Find(const std::string& clipOrSidecar, std::optional<SidecarForm> form,
                   WhenAbsent whenAbsent);

 private:
  std::unique_ptr<ClipFolders> mFolders;
};

}  // namespace zelstoryhost
