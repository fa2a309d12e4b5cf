#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include <zelcore/String.h>
#include <zelstoryparser/StoryTree.h>

namespace zelstoryhost {

// A comment of a story. The pointer is valid as long as the story.
struct SceneComment {
  const zelstoryparser::CommentStream* mStream;
  std::optional<std::size_t> mScene;  // in BodyScenes; none if it belongs to no scene of the body
  zelcore::UTF16String mText;
};

// All comments of a story, each paragraph one, stream by stream. The scene that one belongs to has
// the identifier of the comment's scene, up to "-comments-", or else its number.
std::vector<SceneComment> CommentsOf(const zelstoryparser::TavroStory& story);

}  // namespace zelstoryhost
