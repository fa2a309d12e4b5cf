#include "SidecarName.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

#include "Console.h"
#include "FileReplacement.h"
#include "ToolError.h"

namespace zelstory {
namespace {

namespace fs = std::filesystem;

// What counts as another clip beside one: the files that people keep sidecars for.
constexpr std::array<std::string_view, 34> kClipExtensions{
    ".3gp", ".aif", ".aiff", ".ari",  ".avi",  ".braw", ".bwf",  ".cr2", ".dng",
    ".dpx", ".exr", ".flac", ".heic", ".jpeg", ".jpg",  ".m2ts", ".m4a", ".m4v",
    ".mkv", ".mov", ".mp3",  ".mp4",  ".mpeg", ".mpg",  ".mts",  ".mxf", ".nef",
    ".png", ".r3d", ".tif",  ".tiff", ".wav",  ".webm", ".wmv"};

std::string ExtensionOf(const fs::path& file) {
  std::string extension = file.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return extension;
}

bool IsSidecarName(const std::string& file) {
  return file == kStandardStream || ExtensionOf(file) == ".xmp";
}

bool Exists(const fs::path& file) {
  std::error_code error;
  return fs::exists(fs::symlink_status(file, error));
}

// The name of another clip that has the same name but for its extension; empty when there is none.
std::string OtherClipOfStem(const fs::path& clip) {
  const fs::path folder = clip.has_parent_path() ? clip.parent_path() : fs::path(".");
  std::error_code error;
  std::string other;  // the first by name, so that the message is the same each time
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    const fs::path& file = entry.path();
    if (file.stem() != clip.stem() || file.filename() == clip.filename()) continue;
    const bool isClip = std::binary_search(kClipExtensions.begin(), kClipExtensions.end(),
                                           std::string_view(ExtensionOf(file)));
    const std::string name = file.filename().string();
    if (isClip && (other.empty() || name < other)) other = name;
  }
  return other;
}

}  // namespace

std::string FindSidecar(const std::string& clipOrSidecar, SidecarForm form, WhenAbsent whenAbsent) {
  if (IsSidecarName(clipOrSidecar)) return clipOrSidecar;
  const fs::path clip(clipOrSidecar);
  RefuseUnlessFile(clip);
  std::string full = clipOrSidecar + ".xmp";
  std::string stem = fs::path(clip).replace_extension(".xmp").string();
  const bool hasFull = Exists(full);
  const bool hasStem = full != stem && Exists(stem);
  if (hasFull && hasStem) {
    throw ToolError(clipOrSidecar,
                    "has two sidecars, " + full + " and " + stem + "; name one of them");
  }
  if (!hasFull && !hasStem && whenAbsent == WhenAbsent::kRefuse) {
    throw ToolError(clipOrSidecar, "has no sidecar: neither " + full + " nor " + stem + " exists");
  }
  if (!hasFull && !hasStem && !Exists(clip)) {
    throw ToolError(clipOrSidecar, "No such clip (a sidecar's name ends in .xmp)");
  }
  const bool takesStem = hasStem || (!hasFull && form == SidecarForm::kStem);
  if (!takesStem) return full;
  const std::string other = OtherClipOfStem(clip);
  if (!other.empty()) {
    throw ToolError(clipOrSidecar, "would share the sidecar " + stem + " with " + other);
  }
  return stem;
}

}  // namespace zelstory
