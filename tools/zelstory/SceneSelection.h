#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelstoryparser/StoryTree.h>

#include "CommandLine.h"

namespace zelstory {

// A scene of a story's body, never null, and its position there, from 1.
struct SelectedScene {
  boost::intrusive_ptr<zelstoryparser::Scene> mScene;
  std::size_t mPosition = 0;
};

// The ways to name a scene: by the number that the script gives it (sceneNumber), by its position,
// or by its identifier (objID).
enum class SceneKey { kNumber, kPosition, kID };

// Finds scenes of a story's body by what people call them.
class SceneFinder {
 public:
  // `file` names the story in errors.
  SceneFinder(const zelstoryparser::TavroStory& story, std::string file);

  // Whether any scene has a number. Where none has, kNumber means the position.
  bool HasNumbers() const { return !mNumbers.empty(); }

  // Throws ToolError when no scene or more than one is meant, and for a number that the script does
  // not have but that would be a position.
  SelectedScene Find(SceneKey key, const std::string& text) const;

  // Says on standard error that numbers are positions here.
  void NoteMissingNumbers() const;

 private:
  using Positions = std::unordered_map<std::string, std::vector<std::size_t>>;

  SelectedScene At(std::size_t position) const { return {mScenes[position - 1], position}; }
  SelectedScene FindPosition(const std::string& text) const;
  SelectedScene FindNumber(const std::string& text) const;
  SelectedScene FindOnly(const Positions& known, const char* what, const std::string& text) const;

  std::vector<boost::intrusive_ptr<zelstoryparser::Scene>> mScenes;
  std::string mFile;
  Positions mNumbers;  // the positions of each number, and of each identifier, in order
  Positions mIDs;
};

// One scene of a story's body, as the command line names it.
class SceneSelection {
 public:
  // Adds the options --scene, --position and --id, of which one may be given. The selection must
  // outlive the parsing.
  void AddOptions(Command& command);

  // Whether one of them was given.
  bool IsGiven() const;

  // The scene. Throws UsageError when none was asked for, and ToolError, naming `file`, when there
  // is no such scene or more than one.
  SelectedScene Find(const zelstoryparser::TavroStory& story, const std::string& file) const;

 private:
  std::string mNumber;
  int mPosition = 0;  // from 1; 0: not given
  std::string mID;
  Option mNumberOption;
  Option mPositionOption;
  Option mIDOption;
};

}  // namespace zelstory
