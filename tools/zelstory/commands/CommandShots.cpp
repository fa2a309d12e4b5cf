#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <zelstoryhost/ShotPackets.h>

#include "commands/Commands.h"
#include "options/HeadingOption.h"
#include "options/ScriptOptions.h"
#include "terminal/Batch.h"
#include "terminal/Console.h"
#include "terminal/Input.h"

namespace zelstory {
namespace {

namespace fs = std::filesystem;

struct ShotOptions {
  std::vector<std::string> mStories;
  const zelstoryhost::ScriptFormat* mFormat = nullptr;
  std::string mFolder;
  HeadingOption mHeadings;
  bool mForce = false;
};

void WriteShots(const std::string& story, const fs::path& folder, const std::string& label,
                const zelstoryparser::HeadingRules& rules, const ShotOptions& options) {
  const auto isStory = [&story](const fs::path& file) { return IsStoryItself(story, file); };
  const auto print = [&label](const zelstoryhost::ShotPacket& packet) {
    CountWrittenFile();
    PrintFields({label + std::to_string(packet.mPosition), packet.mShotID, packet.mFile.string()});
  };
  zelstoryhost::WriteShotPackets(LoadStory(story, options.mFormat), folder,
                                 {options.mForce, isStory, print, rules});
}

// Several stories get one folder each, named after the story.
std::vector<fs::path> FoldersOf(const std::vector<std::string>& stories, const fs::path& folder) {
  if (stories.size() == 1) return {folder};
  std::vector<fs::path> folders;
  std::map<fs::path, std::string> owners;
  for (const std::string& story : stories) {
    if (story == kStandardStream) {
      throw UsageError("standard input gives no folder name; pass it alone");
    }
    folders.push_back(folder / fs::path(story).stem());
    const auto [owner, isNew] = owners.emplace(folders.back(), story);
    if (isNew) continue;
    throw UsageError(owner->second + " and " + story + " would share the folder " +
                     folders.back().string());
  }
  return folders;
}

int ShotsOfAll(const ShotOptions& options) {
  const std::vector<fs::path> folders = FoldersOf(options.mStories, options.mFolder);
  const zelstoryparser::HeadingRules rules = options.mHeadings.Rules();
  auto next = folders.begin();
  return ForEachFile(options.mStories, [&](const std::string& story, const std::string& label) {
    WriteShots(story, *next++, label, rules, options);
  });
}

}  // namespace

void AddShotsCommand(CommandLine& tool) {
  Command command =
      tool.AddCommand("shots", "Write a stand-alone XMP packet for every scene of the body");
  const auto options = std::make_shared<ShotOptions>();
  AddStoryArguments(command, options->mStories, options->mFormat);
  command.AddText("--out", options->mFolder, "DIR", "The folder for the packets, created if needed")
      .Required();
  options->mHeadings.AddTo(command);
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
