#include "sidecars/ClipFolders.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>

#include "LowerCase.h"
#include "files/FileTarget.h"

namespace zelstoryhost {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kSidecarExtension = ".xmp";

// The extensions of clips: files that commonly have sidecars.
constexpr std::array<std::string_view, 34> kClipExtensions{
    ".3gp", ".aif", ".aiff", ".ari",  ".avi",  ".braw", ".bwf",  ".cr2", ".dng",
    ".dpx", ".exr", ".flac", ".heic", ".jpeg", ".jpg",  ".m2ts", ".m4a", ".m4v",
    ".mkv", ".mov", ".mp3",  ".mp4",  ".mpeg", ".mpg",  ".mts",  ".mxf", ".nef",
    ".png", ".r3d", ".tif",  ".tiff", ".wav",  ".webm", ".wmv"};

// The extension .xmp in every letter case, as some cameras and systems write it.
std::vector<std::string> EverySidecarExtension() {
  std::vector<std::string> extensions(8, std::string(kSidecarExtension));
  for (std::size_t cases = 0; cases < extensions.size(); ++cases) {
    std::string& extension = extensions[cases];
    for (std::size_t i = 0; i < 3; ++i) {
      if ((cases >> i & 1) != 0) extension[i + 1] = static_cast<char>(extension[i + 1] - 'a' + 'A');
    }
  }
  return extensions;
}

fs::path TrueFolderOf(const fs::path& clip) {
  const fs::path folder = FolderOf(clip);
  std::error_code error;
  const fs::path path = fs::canonical(folder, error);
  return error ? folder : path;
}

}  // namespace

bool IsSidecarName(const fs::path& file) {
  return LowerCase(file.extension().string()) == kSidecarExtension;
}

// The files of a folder that cannot be listed may still be readable.
ClipFolders::Listing::Listing(const fs::path& folder)
    : mSidecarExtensions{std::string(kSidecarExtension)} {
  std::error_code error;
  fs::directory_iterator entry(folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) Add(entry->path());
  if (error) mSidecarExtensions = EverySidecarExtension();
}

void ClipFolders::Listing::Add(const fs::path& file) {
  const std::string extension = file.extension().string();
  const std::string lowerCase = LowerCase(extension);
  if (lowerCase == kSidecarExtension) {
    const auto end = mSidecarExtensions.end();
    if (std::find(mSidecarExtensions.begin(), end, extension) == end) {
      mSidecarExtensions.push_back(extension);
    }
  } else if (std::binary_search(kClipExtensions.begin(), kClipExtensions.end(), lowerCase)) {
    std::vector<std::string>& names = mClips[file.stem().string()];
    names.push_back(file.filename().string());
    std::sort(names.begin(), names.end());
    if (names.size() > 2) names.pop_back();
  }
}

const ClipFolders::Listing& ClipFolders::ListingOf(Folders::value_type& folder) {
  auto& [path, listing] = folder;
  if (!listing) listing.emplace(path);
  return *listing;
}

const std::vector<std::string>& ClipFolders::SidecarExtensionsBeside(const fs::path& clip) {
  static const std::vector<std::string> kEvery = EverySidecarExtension();
  const auto [folder, isNew] = mFolders.try_emplace(TrueFolderOf(clip));
  return isNew ? kEvery : ListingOf(*folder).mSidecarExtensions;
}

std::string ClipFolders::OtherClipOfStem(const fs::path& clip) {
  const auto& clips = ListingOf(*mFolders.try_emplace(TrueFolderOf(clip)).first).mClips;
  const auto sameStem = clips.find(clip.stem().string());
  if (sameStem == clips.end()) return "";
  for (const std::string& name : sameStem->second) {
    if (name != clip.filename()) return name;
  }
  return "";
}

}  // namespace zelstoryhost
