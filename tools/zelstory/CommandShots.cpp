#include <cstdio>
#include <filesystem>

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

void WritePackets(const boost::intrusive_ptr<zelstoryparser::TavroStory>& story,
                  const fs::path& folder) {
  std::size_t position = 0;
  for (const auto& scene : BodyScenes(*story)) {
    ++position;
    std::vector<zelstoryparser::ShotXMP> shots;
    zelstoryparser::GetSceneXMP(story, scene, static_cast<std::int32_t>(position), shots);
    for (const zelstoryparser::ShotXMP& shot : shots) {
      const fs::path packet = folder / PacketName(position);
      ReplaceFile(packet, shot.mXMPPacket);
      PrintLine(std::to_string(position) + '\t' + ToUTF8(shot.mShotID) + '\t' + packet.string());
    }
  }
}

int Shots(const std::string& file, const fs::path& folder) {
  const auto story = LoadStory(file);
  const bool isNew = MakeFolder(folder);
  try {
    WritePackets(story, folder);
  } catch (...) {
    std::error_code isFilled;  // then it stays
    if (isNew) fs::remove(folder, isFilled);
    throw;
  }
  return kDone;
}

}  // namespace

void AddShotsCommand(CLI::App& tool, ChosenCommand& chosen) {
  struct Options {
    std::string mStory;
    std::string mFolder;
  };
  CLI::App* command =
      tool.add_subcommand("shots", "Write a stand-alone XMP packet for every scene of the body");
  const auto options = std::make_shared<Options>();
  command->add_option("STORY", options->mStory, "The story file; - is standard input")->required();
  command->add_option("--out", options->mFolder, "The folder for the packets, created when absent")
      ->type_name("DIR")
      ->required();
  command->footer(
      "Writes DIR/scene_0001.xmp and so on, numbered by position. Prints position, shot ID and "
      "file,\n"
      "separated by tabs, a line a scene; scenes that make no shot are left out.\n"
      "Exit status: 0 done, 1 refused, 2 wrong usage.");
  command->callback([options, &chosen] {
    chosen = [options] { return Shots(options->mStory, options->mFolder); };
  });
}

}  // namespace zelstory
