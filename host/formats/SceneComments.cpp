#include "formats/SceneComments.h"

#include <map>

#include <zelstoryhost/Story.h>

#include "UTF16.h"

namespace zelstoryhost {

using namespace zelstoryparser;

namespace {

class SceneIndex {
 public:
  explicit SceneIndex(const TavroStory& story) {
    std::size_t place = 0;
    for (const auto& scene : BodyScenes(story)) {
      if (scene) Add(*scene, place);
      ++place;
    }
  }

  // The scene that a scene of comments stands for.
  std::optional<std::size_t> Find(const Scene& comments) const {
    const UTF16String id = comments.mObjectID.AsString();
    const auto byID = mByID.find(id.substr(0, id.rfind(u"-comments-")));
    if (byID != mByID.end()) return byID->second;
    const auto byNumber = mByNumber.find(comments.mSceneNumber);
    return byNumber == mByNumber.end() ? std::nullopt : std::optional(byNumber->second);
  }

 private:
  void Add(const Scene& scene, std::size_t place) {
    const UTF16String id = scene.mObjectID.AsString();
    if (!id.empty()) mByID.emplace(id, place);
    if (!scene.mSceneNumber.empty()) mByNumber.emplace(scene.mSceneNumber, place);
  }

  std::map<UTF16String, std::size_t> mByID, mByNumber;
};

}  // namespace

std::vector<SceneComment> CommentsOf(const TavroStory& story) {
  std::vector<SceneComment> comments;
  if (!story.mDocument) return comments;
  const SceneIndex index(story);
  for (const auto& stream : story.mDocument->mCommentStreams) {
    if (!stream || !stream->mSection) continue;
    for (const auto& scene : stream->mSection->mScenes) {
      if (!scene) continue;
      const auto place = index.Find(*scene);
      for (const auto& paragraph : scene->mParagraphs) {
        if (paragraph) comments.push_back({stream.get(), place, JoinedText(*paragraph)});
      }
    }
  }
  return comments;
}

}  // namespace zelstoryhost
