#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <vector>

#include <zelstoryparser/SceneXMP.h>

#include "Command.h"
#include "Console.h"
#include "FileReplacement.h"
#include "StoryFile.h"
#include "ToolError.h"

namespace zelstory {
namespace {

namespace fs = std::filesystem;

// Numbered by position alone: no name is ever made from a document's text.
std::string PacketName(std::size_t position) {
  char name[40];
  std::snprintf(name, sizeof name, "scene_%04zu.xmp", position);
  return name;
}

// Returns whether there was none.
bool MakeFolder(const fs::path& folder) {
  std::error_code error;
  const bool isNew = fs::create_directories(folder, error);
  if (error || !fs::is_directory(folder)) {
    throw ToolError(folder.string(), "is no folder and cannot be made one" +
                                         (error ? ": " + error.message() : std::string()));
  }
  return isNew;
}

void WritePackets(const std::string& file,
                  const boost::intrusive_ptr<zelstoryparser::TavroStory>& story,
                  const fs::path& folder, const std::string& label) {
  std::size_t position = 0;
  for (const auto& scene : BodyScenes(*story)) {
    ++position;
    std::vector<zelstoryparser::ShotXMP> shots;
    zelstoryparser::GetSceneXMP(story, scene, static_cast<std::int32_t>(position), shots);
    for (const zelstoryparser::ShotXMP& shot : shots) {
      const fs::path packet = folder / PacketName(position);
      if (IsStoryItself(file, packet)) {
        throw ToolError(packet.string(), "is the story itself: name another folder after --out");
      }
      ReplaceFile(packet, shot.mXMPPacket);
      PrintLine(label + std::to_string(position) + '\t' + ToUTF8(shot.mShotID) + '\t' +
                packet.string());
    }
  }
}

void Shots(const std::string& file, const fs::path& folder, const std::string& label) {
  const auto story = LoadStory(file);
  const bool isNew = MakeFolder(folder);
  try {
    WritePackets(file, story, folder, label);
  } catch (...) {
    std::error_code isFilled;  // then it stays
    if (isNew) fs::remove(folder, isFilled);
    throw;
  }
}

// Several stories get a folder each, under the story's name.
std::vector<fs::path> FoldersOf(const std::vector<std::string>& stories, const fs::path& folder) {
  if (stories.size() == 1) return {folder};
  std::vector<fs::path> folders;
  for (const std::string& story : stories) {
    if (story == kStandardStream) {
      throw UsageError("standard input has no name for a folder; give it alone");
    }
    folders.push_back(folder / fs::path(story).stem());
    const auto twin = std::find(folders.begin(), folders.end() - 1, folders.back());
    if (twin == folders.end() - 1) continue;
    throw UsageError(stories[static_cast<std::size_t>(twin - folders.begin())] + " and " + story +
                     " would share the folder " + folders.back().string());
  }
  return folders;
}

int ShotsOfAll(const std::vector<std::string>& stories, const fs::path& folder) {
  const std::vector<fs::path> folders = FoldersOf(stories, folder);
  auto next = folders.begin();
  return ForEachFile(stories, [&next](const std::string& story, const std::string& label) {
    Shots(story, *next++, label);
  });
}

}  // namespace

void AddShotsCommand(CLI::App& tool, ChosenCommand& chosen) {
  struct Options {
    std::vector<std::string> mStories;
    std::string mFolder;
  };
  CLI::App* command =
      tool.add_subcommand("shots", "Write a stand-alone XMP packet for every scene of the body");
  const auto options = std::make_shared<Options>();
  command->add_option("STORY", options->mStories, "Story files; - is standard input")->required();
  command->add_option("--out", options->mFolder, "The folder for the packets, created when absent")
      ->type_name("DIR")
      ->required();
  command->footer(
      "Writes DIR/scene_0001.xmp and so on, numbered by position. Prints position, shot ID and "
      "file,\n"
      "separated by tabs, a line a scene; scenes that make no shot are left out. Several stories "
      "get\n"
      "a folder each in DIR, called as the story without its extension, and lines behind STORY:.\n"
      "Exit status: 0 done, 1 one or more were refused, 2 wrong usage.");
  command->callback([options, &chosen] {
    chosen = [options] { return ShotsOfAll(options->mStories, options->mFolder); };
  });
}

}  // namespace zelstory
