#pragma once

#include <string>

#include <zelstoryhost/Export.h>

#include <zelstoryparser/StoryTree.h>

// A tree as JSON. All functions may be called from several threads at once.
namespace zelstoryhost {

// The members of each node in their order, under their names without the m (mObjectID is
// "objectID"). A paragraph has the name of its kind beside the code, null for an unknown kind;
// links that lead nowhere are null. UTF-8, indented, without a line end after it.
ZELSTORYHOST_API std::string StoryAsJSON(const zelstoryparser::TavroStory& story);

// The same for one scene.
ZELSTORYHOST_API std::string SceneAsJSON(const zelstoryparser::Scene& scene);

}  // namespace zelstoryhost
