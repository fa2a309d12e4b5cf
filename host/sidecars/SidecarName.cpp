#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <vector>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/SidecarName.h>

#include "LowerCase.h"
#include "files/FileTarget.h"

namespace zelstoryhost {
namespace {

namespace fs = std::filesystem;

// The extensions of clips: files that commonly have sidecars.
constexpr std::array<std::string_view, 34> kClipExtensions{
    ".3gp", ".aif", ".aiff", ".ari",  ".avi",  ".braw", ".bwf",  ".cr2", ".dng",
    ".dpx", ".exr", ".flac", ".heic", ".jpeg", ".jpg",  ".m2ts", ".m4a", ".m4v",
    ".mkv", ".mov", ".mp3",  ".mp4",  ".mpeg", ".mpg",  ".mts",  ".mxf", ".nef",
    ".png", ".r3d", ".tif",  ".tiff", ".wav",  ".webm", ".wmv"};

std::string ExtensionOf(const fs::path& file) {
  return LowerCase(file.extension().string());
}

bool Exists(const fs::path& file) {
  std::error_code error;
  return fs::exists(fs::symlink_status(file, error));
}

// Another clip whose name differs only in its extension; empty if there is none.
std::string OtherClipOfStem(const fs::path& clip) {
  std::error_code error;
  std::string other;  // the first by name, so that the message is always the same
  for (const auto& entry : fs::directory_iterator(FolderOf(clip), error)) {
    const fs::path& file = entry.path();
    if (file.stem() != clip.stem() || file.filename() == clip.filename()) continue;
    const bool isClip = std::binary_search(kClipExtensions.begin(), kClipExtensions.end(),
                                           std::string_view(ExtensionOf(file)));
    const std::string name = file.filename().string();
    if (isClip && (other.empty() || name < other)) other = name;
  }
  return other;
}

// The extension .xmp in every letter case, as some cameras and systems write it.
std::array<std::string, 8> SidecarExtensions() {
  std::array<std::string, 8> extensions;
  for (std::size_t cases = 0; cases < extensions.size(); ++cases) {
    std::string& extension = extensions[cases] = ".xmp";
    for (std::size_t i = 0; i < 3; ++i) {
      if ((cases >> i & 1) != 0) extension[i + 1] = static_cast<char>(extension[i + 1] - 'a' + 'A');
    }
  }
  return extensions;
}

// Adds the sidecars BASE.xmp. On file systems that ignore case, several names mean one file.
void AddSidecarsOf(const std::string& base, std::vector<std::string>& found) {
  static const auto kExtensions = SidecarExtensions();
  for (const std::string& extension : kExtensions) {
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
                          std::optional<SidecarForm> form) {
  const std::string other = OtherClipOfStem(clip);
  if (other.empty() || form == SidecarForm::kStem) return stem;
  if (form == SidecarForm::kFull) return FullName(clip);
  throw Error(clip.string(), "would share the sidecar " + stem + " with " + other,
              ErrorKind::kSharedSidecar);
}

std::string SidecarOfClip(const fs::path& clip, std::optional<SidecarForm> form,
                          WhenAbsent whenAbsent) {
  std::vector<std::string> found;
  AddSidecarsOf(clip.string(), found);
  const std::size_t full = found.size();
  AddSidecarsOf(fs::path(clip).replace_extension().string(), found);
  const std::size_t stem = found.size() - full;
  if (form == SidecarForm::kFull && full == 1) return found.front();
  if (form == SidecarForm::kStem && stem == 1) return found.back();
  if (found.size() > 1) {
    throw Error(clip.string(), "has several sidecars: " + Joined(found),
                ErrorKind::kSeveralSidecars);
  }
  if (full == 1) return found.front();
  return found.empty() ? NewSidecar(clip, form, whenAbsent)
                       : SharedSidecar(clip, found.front(), form);
}

}  // namespace

std::string FindSidecar(const std::string& clipOrSidecar, std::optional<SidecarForm> form,
                        WhenAbsent whenAbsent) {
  if (ExtensionOf(clipOrSidecar) == ".xmp") {
    if (whenAbsent == WhenAbsent::kCreate || Exists(clipOrSidecar)) return clipOrSidecar;
    throw Error(clipOrSidecar, "No such file or directory");
  }
  RefuseUnlessFile(clipOrSidecar);
  return SidecarOfClip(clipOrSidecar, form, whenAbsent);
}

}  // namespace zelstoryhost
