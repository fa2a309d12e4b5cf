#pragma once

#include <string>

#include <zelstoryhost/SceneFinder.h>
#include <zelstoryparser/StoryTree.h>

#include "options/CommandLine.h"

namespace zelstory {

// The options that name one scene of a story's body.
class SceneOptions {
 public:
  // Adds the options --scene, --position and --id, of which one may be given. The object must
  // outlive the parsing.
  void AddTo(Command& command);

  // Whether one of them was given.
  bool IsGiven() const;

  // Returns the scene. Throws UsageError when no option was given, and Error, naming `file`, when
  // no scene or more than one matches.
  zelstoryhost::SelectedScene Find(const zelstoryparser::TavroStory& story,
                                   const std::string& file) const;

 private:
  std::string mNumber;
  int mPosition = 0;  // from 1; 0: not given
  std::string mID;
  Option mNumberOption;
  Option mPositionOption;
  Option mIDOption;
};

// Tells the user that a story's scenes have no numbers, so that numbers mean positions.
void NoteMissingNumbers(const std::string& story);

}  // namespace zelstory
