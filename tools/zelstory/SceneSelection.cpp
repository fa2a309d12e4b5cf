#include "SceneSelection.h"

#include <charconv>
#include <limits>
#include <vector>

#include "Console.h"
#include "StoryFile.h"
#include "ToolError.h"

namespace zelstory {
namespace {

using zelstoryparser::Scene;
using Scenes = std::vector<boost::intrusive_ptr<Scene>>;

template <typename Test>
SelectedScene FindOnly(const Scenes& scenes, const std::string& file, const std::string& what,
                       Test test) {
  SelectedScene found;
  std::string positions;
  std::size_t count = 0;
  for (std::size_t i = 0; i < scenes.size(); ++i) {
    if (!test(*scenes[i])) continue;
    found = {scenes[i], i + 1};
    positions += (++count == 1 ? "" : ", ") + std::to_string(i + 1);
  }
  if (count == 0) {
    throw ToolError(file, "no scene of the body has the " + what + " (zelstory scenes lists them)");
  }
  if (count > 1) {
    throw ToolError(file, std::to_string(count) + " scenes have the " + what +
                              "; choose one by position: " + positions);
  }
  return found;
}

SelectedScene FindByPosition(const Scenes& scenes, const std::string& text,
                             const std::string& file) {
  std::size_t position = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, position);
  if (error == std::errc::invalid_argument || rest != end) {
    throw ToolError(file, '"' + text + "\" is no position: scenes are counted 1, 2, 3 and so on");
  }
  if (error != std::errc() || position == 0 || position > scenes.size()) {
    throw ToolError(
        file, "there is no scene " + text + "; the body has " + std::to_string(scenes.size()));
  }
  return {scenes[position - 1], position};
}

}  // namespace

SelectedScene FindScene(const Scenes& scenes, SceneKey key, const std::string& text,
                        const std::string& file) {
  switch (key) {
    case SceneKey::kPosition:
      return FindByPosition(scenes, text, file);
    case SceneKey::kNumber:
      return FindOnly(scenes, file, "number \"" + text + '"',
                      [&](const Scene& scene) { return ToUTF8(scene.mSceneNumber) == text; });
    case SceneKey::kID:
      return FindOnly(scenes, file, "identifier \"" + text + '"', [&](const Scene& scene) {
        return ToUTF8(scene.mObjectID.AsString()) == text;
      });
  }
  return {};
}

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
  const Scenes scenes = BodyScenes(story);
  if (mNumberOption->count() > 0) return FindScene(scenes, SceneKey::kNumber, mNumber, file);
  if (mIDOption->count() > 0) return FindScene(scenes, SceneKey::kID, mID, file);
  return FindScene(scenes, SceneKey::kPosition, std::to_string(mPosition), file);
}

}  // namespace zelstory
