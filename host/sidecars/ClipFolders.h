#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zelstoryhost {

// Whether a file's extension makes it a sidecar: .xmp, in any letter case.
bool IsSidecarName(const std::filesystem::path& file);

// What the folders of clips hold. Each is listed at most once, and not at all for a lone clip if it
// is enough to look for a few names.
class ClipFolders {
 public:
  // The extensions that sidecars in the clip's folder may have. Always includes .xmp, so that
  // sidecars that are created after the listing are found. Valid as long as this object.
  const std::vector<std::string>& SidecarExtensionsBeside(const std::filesystem::path& clip);

  // Another clip whose name differs only in its extension, the first by name; empty if there is
  // none.
  std::string OtherClipOfStem(const std::filesystem::path& clip);

 private:
  struct Listing {
    explicit Listing(const std::filesystem::path& folder);
    void Add(const std::filesystem::path& file);

    std::vector<std::string> mSidecarExtensions;
    std::map<std::string, std::vector<std::string>> mClips;  // by stem: the first two names
  };
  // By true path, since a folder may have several names. No listing until one is needed.
  using Folders = std::map<std::filesystem::path, std::optional<Listing>>;

  static const Listing& ListingOf(Folders::value_type& folder);

  Folders mFolders;
};

}  // namespace zelstoryhost
