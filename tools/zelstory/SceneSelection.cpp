#include "SceneSelection.h"

#include <limits>
#include <vector>

#include "Console.h"
#include "StoryFile.h"
#include "ToolError.h"

namespace zelstory {
namespace {

using zelstoryparser::Scene;

template <typename Test>
SelectedScene FindOnly(const std::vector<boost::intrusive_ptr<Scene>>& scenes,
                       const std::string& file, const std::string& what, Test test) {
  SelectedScene found;
  std::string positions;
  std::size_t count = 0;
  for (std::size_t i = 0; i < scenes.size(); ++i) {
    if (!test(*scenes[i])) continue;
    found = {scenes[i], i + 1};
    positions += (++count == 1 ? "" : ", ") + std::to_string(i + 1);
  }
  if (count == 0) throw ToolError(file, "no scene of the body has the " + what);
  if (count > 1) {
    throw ToolError(file, std::to_string(count) + " scenes have the " + what +
                              "; choose one by position with --scene: " + positions);
  }
  return found;
}

}  // namespace

void SceneSelection::AddOptions(CLI::App& command) {
  mPositionOption =
      command.add_option("--scene", mPosition, "The scene's position in the body, from 1")
          ->type_name("N")
          ->check(CLI::Range(1, std::numeric_limits<int>::max()));
  mNumberOption = command.add_option("--number", mNumber, "The scene's own number (sceneNumber)")
                      ->type_name("TEXT")
                      ->excludes(mPositionOption);
  mIDOption = command.add_option("--id", mID, "The scene's identifier (objID)")
                  ->type_name("TEXT")
                  ->excludes(mPositionOption)
                  ->excludes(mNumberOption);
}

bool SceneSelection::IsGiven() const {
  return mPositionOption->count() + mNumberOption->count() + mIDOption->count() > 0;
}

SelectedScene SceneSelection::Find(const zelstoryparser::TavroStory& story,
                                   const std::string& file) const {
  if (!IsGiven()) throw UsageError("choose a scene with --scene, --number or --id");
  const std::vector<boost::intrusive_ptr<Scene>> scenes = BodyScenes(story);
  if (mNumberOption->count() > 0) {
    return FindOnly(scenes, file, "number \"" + mNumber + '"',
                    [this](const Scene& scene) { return ToUTF8(scene.mSceneNumber) == mNumber; });
  }
  if (mIDOption->count() > 0) {
    return FindOnly(scenes, file, "identifier \"" + mID + '"', [this](const Scene& scene) {
      return ToUTF8(scene.mObjectID.AsString()) == mID;
    });
  }
  const auto position = static_cast<std::size_t>(mPosition);
  if (position > scenes.size()) {
    throw ToolError(file, "there is no scene " + std::to_string(position) + "; the body has " +
                              std::to_string(scenes.size()));
  }
  return {scenes[position - 1], position};
}

}  // namespace zelstory
