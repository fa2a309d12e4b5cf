#include "options/SceneOptions.h"

#include "terminal/Console.h"

namespace zelstory {

using zelstoryhost::SceneFinder;
using zelstoryhost::SceneKey;
using zelstoryhost::SelectedScene;

void SceneOptions::AddTo(Command& command) {
  mNumberOption = command.AddText(
      "--scene", mNumber, "NUMBER",
      "The scene's number as written in the script; its position where\nno scene has a number");
  mPositionOption =
      command.AddCount("--position", mPosition, "N", "The scene's position in the body, from 1")
          .Excludes(mNumberOption);
  mIDOption = command.AddText("--id", mID, "TEXT", "The scene's identifier (objID)")
                  .Excludes(mNumberOption)
                  .Excludes(mPositionOption);
}

bool SceneOptions::IsGiven() const {
  return mNumberOption.IsGiven() || mPositionOption.IsGiven() || mIDOption.IsGiven();
}

SelectedScene SceneOptions::Find(const zelstoryparser::TavroStory& story,
                                 const std::string& file) const {
  if (!IsGiven()) throw UsageError("choose a scene with --scene, --position or --id");
  const SceneFinder finder(story, file);
  if (mPositionOption.IsGiven()) {
    return finder.Find(SceneKey::kPosition, std::to_string(mPosition));
  }
  if (mIDOption.IsGiven()) return finder.Find(SceneKey::kID, mID);
  SelectedScene scene = finder.Find(SceneKey::kNumber, mNumber);
  if (!finder.HasNumbers()) NoteMissingNumbers(file);
  return scene;
}

void NoteMissingNumbers(const std::string& story) {
  PrintNote(story, "no scene has a number, so scenes are chosen by position");
}

}  // namespace zelstory
