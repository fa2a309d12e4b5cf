#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Files.h>
#include <zelstoryhost/Story.h>
#include <zelstoryhost/Text.h>

#include <xmptoolkit/XMPTree.h>
#include <zelmetadata/Path.h>
#include <zelstoryparser/SceneXMP.h>

#include "commands/Commands.h"
#include "terminal/Batch.h"
#include "terminal/Console.h"
#include "terminal/Input.h"

namespace zelstory {

using zelstoryhost::BodyScenes;
using zelstoryhost::Error;
using zelstoryhost::ReadFile;
using zelstoryhost::ReplaceFile;
using zelstoryhost::ToUTF8;

namespace {

namespace fs = std::filesystem;

// File names come from the position, never from a document's text.
std::string PacketName(std::size_t position) {
  char name[40];
  std::snprintf(name, sizeof name, "scene_%04zu.xmp", position);
  return name;
}

// Returns whether the folder was created.
bool MakeFolder(const fs::path& folder) {
  std::error_code error;
  const bool isNew = fs::create_directories(folder, error);
  if (error || !fs::is_directory(folder)) {
    throw Error(folder.string(), "is not a folder and cannot be created" +
                                     (error ? ": " + error.message() : std::string()));
  }
  return isNew;
}

// Whether a file is a packet that holds a shot's properties and no others, as this command writes.
bool IsShotPacket(const fs::path& file) {
  constexpr const char* kScript = zelmetadata::kScriptSchemaURI;
  constexpr const char* kMedia = zelmetadata::kDynamicMediaSchemaURI;
  static const std::set<std::pair<std::string_view, std::string_view>> kProperties{
      {kScript, "sceneSetting"}, {kMedia, "shotLocation"}, {kScript, "sceneTimeOfDay"},
      {kScript, "action"},       {kMedia, "shotName"},     {kScript, "dialogSequence"},
      {kMedia, "scene"},         {kMedia, "duration"}};
  const std::string bytes = ReadFile(file).value_or("");
  try {
    const TXMPMeta<std::string> packet(bytes.data(), static_cast<XMP_StringLen>(bytes.size()));
    const xmptoolkit::TreeNode root = xmptoolkit::RootOf(packet);
    for (std::size_t i = 0; i < root.ChildCount(); ++i) {
      const xmptoolkit::TreeNode property = root.Child(i);
      if (!kProperties.contains({property.NamespaceURI(), property.LocalName()})) return false;
    }
    return packet.DoesPropertyExist(kMedia, "scene");
  } catch (const XMP_Error&) {
    return false;
  }
}

struct ShotOptions {
  std::vector<std::string> mStories;
  std::string mFolder;
  bool mForce = false;
};

// Writes the shots of one story into a folder.
class Shots {
 public:
  Shots(const std::string& file, fs::path folder) : mFile(file), mFolder(std::move(folder)) {}

  // Checks every file that would be replaced before any is replaced.
  void RefuseForeignFiles() const {
    ForEach([](const fs::path& packet, std::size_t, const auto& shot) {
      if (!fs::exists(packet) || IsShotPacket(packet) || !shot()) return;
      throw Error(packet.string(), "is not a shot's packet; --force replaces it anyway");
    });
  }

  void Write(const std::string& label) const {
    ForEach([&](const fs::path& packet, std::size_t position, const auto& shot) {
      const std::optional<zelstoryparser::ShotXMP> made = shot();
      if (!made) return;
      if (IsStoryItself(mFile, packet)) {
        throw Error(packet.string(), "is the story itself: name another folder after --out");
      }
      ReplaceFile(packet, made->mXMPPacket);
      PrintLine(label + std::to_string(position) + '\t' + ToUTF8(made->mShotID) + '\t' +
                packet.string());
    });
  }

 private:
  // Calls work(file, position, shot) for each scene; shot() makes its packet, if it has one.
  template <typename Work>
  void ForEach(Work work) const {
    std::size_t position = 0;
    for (const auto& scene : BodyScenes(*mStory)) {
      ++position;
      work(mFolder / PacketName(position), position,
           [&]() -> std::optional<zelstoryparser::ShotXMP> {
             std::vector<zelstoryparser::ShotXMP> shots;
             zelstoryparser::GetSceneXMP(mStory, scene, static_cast<std::int32_t>(position), shots);
             if (shots.empty()) return std::nullopt;
             return std::move(shots.front());
           });
    }
  }

  const std::string& mFile;
  const fs::path mFolder;
  const boost::intrusive_ptr<zelstoryparser::TavroStory> mStory = LoadStory(mFile);
};

void WriteShots(const std::string& file, const fs::path& folder, const std::string& label,
                bool force) {
  const Shots shots(file, folder);
  const bool isNew = MakeFolder(folder);
  try {
    if (!force) shots.RefuseForeignFiles();
    shots.Write(label);
  } catch (...) {
    std::error_code isFilled;  // a folder with files in it stays
    if (isNew) fs::remove(folder, isFilled);
    throw;
  }
}

// Several stories get one folder each, named after the story.
std::vector<fs::path> FoldersOf(const std::vector<std::string>& stories, const fs::path& folder) {
  if (stories.size() == 1) return {folder};
  std::vector<fs::path> folders;
  for (const std::string& story : stories) {
    if (story == kStandardStream) {
      throw UsageError("standard input gives no folder name; pass it alone");
    }
    folders.push_back(folder / fs::path(story).stem());
    const auto twin = std::find(folders.begin(), folders.end() - 1, folders.back());
    if (twin == folders.end() - 1) continue;
    throw UsageError(stories[static_cast<std::size_t>(twin - folders.begin())] + " and " + story +
                     " would share the folder " + folders.back().string());
  }
  return folders;
}

int ShotsOfAll(const ShotOptions& options) {
  const std::vector<fs::path> folders = FoldersOf(options.mStories, options.mFolder);
  auto next = folders.begin();
  return ForEachFile(options.mStories, [&](const std::string& story, const std::string& label) {
    WriteShots(story, *next++, label, options.mForce);
  });
}

}  // namespace

void AddShotsCommand(CommandLine& tool) {
  Command command =
      tool.AddCommand("shots", "Write a stand-alone XMP packet for every scene of the body");
  const auto options = std::make_shared<ShotOptions>();
  command.AddArguments("STORY", options->mStories, "Story files; - is standard input");
  command.AddText("--out", options->mFolder, "DIR", "The folder for the packets, created if needed")
      .Required();
  command.AddFlag("--force", options->mForce, "Also replace files that are not a shot's packet");
  command.SetFooter(
      "Writes DIR/scene_0001.xmp and so on, numbered by position. Prints position, shot ID and "
      "file,\n"
      "separated by tabs, one line per scene; scenes that make no shot are left out. Several "
      "stories\n"
      "get one folder each in DIR, named after the story; each line is prefixed with STORY:. A "
      "file\n"
      "that is not such a packet is never replaced without --force.\n"
      "Exit status: 0 done, 1 one or more were refused, 2 wrong usage.");
  command.SetAction([options] { return ShotsOfAll(*options); });
}

}  // namespace zelstory
