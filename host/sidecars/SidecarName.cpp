#include <algorithm>
#include <filesystem>
#include <vector>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/SidecarName.h>

#include "files/FileTarget.h"
#include "sidecars/ClipFolders.h"

namespace zelstoryhost {
namespace {

namespace fs = std::filesystem;

bool Exists(const fs::path& file) {
  std::error_code error;
  return fs::exists(fs::symlink_status(file, error));
}

// Adds the sidecars BASE.xmp. On file systems that ignore case, several names mean one file.
void AddSidecarsOf(const std::string& base, const std::vector<std::string>& extensions,
                   std::vector<std::string>& found) {
  for (const std::string& extension : extensions) {
    const std::string name = base + extension;
    std::error_code error;
    const auto isName = [&](const std::string& other) {
      return other == name || fs::equivalent(other, name, error);
    };
    if (Exists(name) && std::none_of(found.begin(), found.end(), isName)) found.push_back(name);
  }
}

std::string Joined(const std::vector<std::string>& names) {
  std::string text = names.front();
  for (auto name = names.begin() + 1; name != names.end(); ++name) text += " and " + *name;
  return text;
}

std::string FullName(const fs::path& clip) {
  return clip.string() + ".xmp";
}

std::string StemName(const fs::path& clip) {
  return fs::path(clip).replace_extension(".xmp").string();
}

// The sidecar to create.
std::string NewSidecar(const fs::path& clip, std::optional<SidecarForm> form,
                       WhenAbsent whenAbsent) {
  const std::string full = FullName(clip);
  const std::string stem = StemName(clip);
  if (!Exists(clip)) throw Error(clip.string(), "No such clip (a sidecar's name ends in .xmp)");
  if (whenAbsent == WhenAbsent::kRefuse) {
    const std::string missing =
        stem == full ? full + " does not exist" : "neither " + full + " nor " + stem + " exists";
    throw Error(clip.string(), "has no sidecar: " + missing);
  }
  return form == SidecarForm::kStem ? stem : full;
}

// `stem` is a sidecar that other clips of the same stem could mean as well.
std::string SharedSidecar(const fs::path& clip, const std::string& stem,
                          std::optional<SidecarForm> form, ClipFolders& folders) {
  if (form == SidecarForm::kStem) return stem;
  const std::string other = folders.OtherClipOfStem(clip);
  if (other.empty()) return stem;
  if (form == SidecarForm::kFull) return FullName(clip);
  throw Error(clip.string(), "would share the sidecar " + stem + " with " + other,
              ErrorKind::kSharedSidecar);
}

std::string SidecarOfClip(const fs::path& clip, std::optional<SidecarForm> form,
                          WhenAbsent whenAbsent, ClipFolders& folders) {
  const std::vector<std::string>& extensions = folders.SidecarExtensionsBeside(clip);
  std::vector<std::string> found;
  AddSidecarsOf(clip.string(), extensions, found);
  const std::size_t full = found.size();
  AddSidecarsOf(fs::path(clip).replace_extension().string(), extensions, found);
  const std::size_t stem = found.size() - full;
  if (form == SidecarForm::kFull && full == 1) return found.front();
  if (form == SidecarForm::kStem && stem == 1) return found.back();
  if (found.size() > 1) {
    throw Error(clip.string(), "has several sidecars: " + Joined(found),
                ErrorKind::kSeveralSidecars);
  }
  if (full == 1) return found.front();
  return found.empty() ? NewSidecar(clip, form, whenAbsent)
                       : SharedSidecar(clip, found.front(), form, folders);
}

}  // namespace

std::string FindSidecar(const std::string& clipOrSidecar, std::optional<SidecarForm> form,
                        WhenAbsent whenAbsent) {
  return SidecarFinder().Find(clipOrSidecar, form, whenAbsent);
}

SidecarFinder::SidecarFinder() : mFolders(std::make_unique<ClipFolders>()) {}
SidecarFinder::~SidecarFinder() = default;

std::string SidecarFinder::Find(const std::string& clipOrSidecar, std::optional<SidecarForm> form,
                                WhenAbsent whenAbsent) {
  if (IsSidecarName(clipOrSidecar)) {
    if (whenAbsent == WhenAbsent::kCreate || Exists(clipOrSidecar)) return clipOrSidecar;
    throw Error(clipOrSidecar, "No such file or directory");
  }
  RefuseUnlessFile(clipOrSidecar);
  return SidecarOfClip(clipOrSidecar, form, whenAbsent, *mFolders);
}

}  // namespace zelstoryhost
