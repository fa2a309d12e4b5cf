#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelstoryparser/StoryTree.h>

namespace zelstory {

// A scene of a story's body, never null, and its position there, from 1.
struct SelectedScene {
  boost::intrusive_ptr<zelstoryparser::Scene> mScene;
  std::size_t mPosition = 0;
};

// The ways to name a scene.
enum class SceneKey { kPosition, kNumber, kID };

// The scene among those of a body that a text names: by its position from 1, in digits, by its own
// number (sceneNumber), or by its identifier (objID). Throws ToolError, naming `file`, when there
// is none or more than one.
SelectedScene FindScene(const std::vector<boost::intrusive_ptr<zelstoryparser::Scene>>& scenes,
                        SceneKey key, const std::string& text, const std::string& file);

// One scene of a story's body, as the command line names it.
class SceneSelection {
 public:
  // Adds the options --scene, --number and --id, of which one may be given. The selection must
  // outlive the parsing.
  void AddOptions(CLI::App& command);

  // Whether one of them was given.
  bool IsGiven() const;

  // The scene. Throws UsageError when none was asked for, and ToolError, naming `file`,
  // when there is no such scene or more than one.
  SelectedScene Find(const zelstoryparser::TavroStory& story, const std::string& file) const;

 private:
  int mPosition = 0;  // from 1; 0: not given
  std::string mNumber;
  std::string mID;
  CLI::Option* mPositionOption = nullptr;
  CLI::Option* mNumberOption = nullptr;
  CLI::Option* mIDOption = nullptr;
};

}  // namespace zelstory
