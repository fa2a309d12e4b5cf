#pragma once

#include <string>
#include <vector>

#include <zelstoryparser/StoryTree.h>

namespace zelstoryhost {

struct SceneComment {
  std::string mStream;
  std::string mAuthor;
  std::string mText;
};

// The comments of a story for each scene of its body. A comment stream's scene stands for the scene
// whose identifier its own begins with, else for the one of the same number, else for the one at
// its position; what then is left belongs to the last. Empty if the body has no scene.
std::vector<std::vector<SceneComment>> CommentsByScene(const zelstoryparser::TavroStory& story);

}  // namespace zelstoryhost
