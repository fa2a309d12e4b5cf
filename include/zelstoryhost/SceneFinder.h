#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelstoryhost/Export.h>
#include <zelstoryparser/StoryTree.h>

namespace zelstoryhost {

// A scene of a story's body and its position there, from 1.
struct SelectedScene {
  boost::intrusive_ptr<zelstoryparser::Scene> mScene;  // never null when a finder returned it
  std::size_t mPosition = 0;
};

// The ways to name a scene: by the number that the script gives it (sceneNumber), by its position,
// or by its identifier (objID).
enum class SceneKey { kNumber, kPosition, kID };

// Finds scenes of a story's body by what people call them. Keeps the scenes, not the story; does
// not see later changes of either. Several threads may search one finder at once.
class ZELSTORYHOST_API SceneFinder {
 public:
  // `file` names the story in errors.
  SceneFinder(const zelstoryparser::TavroStory& story, std::string file);

  // Whether any scene has a number. Where none has, kNumber means the position.
  bool HasNumbers() const { return !mNumbers.empty(); }

  // The one scene that `text` (UTF-8) names. Throws Error when it names no scene or more than one,
  // and for a number that the script does not have but that would be a position.
  SelectedScene Find(SceneKey key, const std::string& text) const;

 private:
  using Positions = std::map<std::string, std::vector<std::size_t>>;

  SelectedScene At(std::size_t position) const { return {mScenes[position - 1], position}; }
  SelectedScene FindPosition(const std::string& text) const;
  SelectedScene FindNumber(const std::string& text) const;
  SelectedScene FindOnly(const Positions& known, const char* what, const std::string& text) const;

  std::vector<boost::intrusive_ptr<zelstoryparser::Scene>> mScenes;
  std::string mFile;
  Positions mNumbers;  // the positions of each number, and of each identifier, in order
  Positions mIDs;
};

}  // namespace zelstoryhost
