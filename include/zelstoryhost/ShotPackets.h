#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelstoryhost/Export.h>
#include <zelstoryparser/HeadingRules.h>
#include <zelstoryparser/StoryTree.h>

namespace zelstoryhost {

// A stand-alone packet that was written for a scene of the body.
struct ShotPacket {
  std::size_t mPosition = 0;  // of the scene, from 1
  std::string mShotID;        // UTF-8
  std::filesystem::path mFile;
};

// How packets are written.
struct ShotSettings {
  bool mForce = false;  // also replaces links, files with other names, and what is not a packet
  std::function<bool(const std::filesystem::path&)> mIsStory;  // such a file is never replaced
  std::function<void(const ShotPacket&)> mReport;  // called after each packet; both may be empty
  zelstoryparser::HeadingRules mHeadings{};        // how headings are read
};

// Writes a packet for every scene of the body that makes a shot into a folder, which is created if
// needed: scene_0001.xmp and so on, numbered by position. Nothing is written outside the folder: a
// link in it is refused, or replaced with mForce, but never followed. Throws Error; packets
// reported before stay, and so do files in the way, but a new folder without files is removed
// again. Several threads may write into different folders at once.
ZELSTORYHOST_API void WriteShotPackets(
    const boost::intrusive_ptr<zelstoryparser::TavroStory>& story,
    const std::filesystem::path& folder, const ShotSettings& settings);

}  // namespace zelstoryhost
