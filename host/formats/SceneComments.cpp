#include "formats/SceneComments.h"

#include <algorithm>
#include <map>

#include <zelstoryhost/Story.h>
#include <zelstoryhost/Text.h>

namespace zelstoryhost {
namespace {

using namespace zelstoryparser;

class SceneIndex {
 public:
  explicit SceneIndex(const std::vector<boost::intrusive_ptr<Scene>>& scenes)
      : mCount(scenes.size()) {
    for (std::size_t i = 0; i < scenes.size(); ++i) {
      if (!scenes[i]) continue;
      if (!scenes[i]->mSceneNumber.empty()) mByNumber.try_emplace(scenes[i]->mSceneNumber, i);
      mByID.try_emplace(scenes[i]->mObjectID.AsString(), i);
    }
  }

  std::size_t SubjectOf(const Scene& comments, std::size_t position) const {
    const UTF16String id = comments.mObjectID.AsString();
    const auto byID = mByID.find(id.substr(0, id.rfind(u"-comments-")));
    if (byID != mByID.end() && !id.empty()) return byID->second;
    const auto byNumber = mByNumber.find(comments.mSceneNumber);
    return byNumber == mByNumber.end() ? std::min(position, mCount - 1) : byNumber->second;
  }

 private:
  std::size_t mCount;
  std::map<UTF16String, std::size_t> mByNumber;
  std::map<UTF16String, std::size_t> mByID;
};

}  // namespace

std::vector<std::vector<SceneComment>> CommentsByScene(const TavroStory& story) {
  const auto scenes = BodyScenes(story);
  std::vector<std::vector<SceneComment>> comments(scenes.size());
  if (scenes.empty()) return comments;
  const SceneIndex index(scenes);
  for (const auto& stream : story.mDocument->mCommentStreams) {
    if (!stream || !stream->mSection) continue;
    std::size_t position = 0;
    for (const auto& scene : stream->mSection->mScenes) {
      if (!scene) continue;
      auto& subject = comments[index.SubjectOf(*scene, position++)];
      for (const auto& paragraph : scene->mParagraphs) {
        if (!paragraph) continue;
        subject.push_back(
            {ToUTF8(stream->mName), ToUTF8(stream->mCommentAuthor), TextOf(*paragraph)});
      }
    }
  }
  return comments;
}

}  // namespace zelstoryhost
