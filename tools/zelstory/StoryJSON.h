#pragma once

#include <nlohmann/json_fwd.hpp>

#include <zelstoryparser/StoryTree.h>

namespace zelstory {

// A tree as JSON: the members of each node in their order, under their names without the m
// (mObjectID is "objectID"). A paragraph has the name of its kind beside the code, null for an
// unknown kind; links that lead nowhere are null.
nlohmann::ordered_json StoryAsJSON(const zelstoryparser::TavroStory& story);
nlohmann::ordered_json SceneAsJSON(const zelstoryparser::Scene& scene);

}  // namespace zelstory
