#pragma once

#include <iosfwd>

#include <zelstoryhost/Export.h>
#include <zelstoryparser/StoryTree.h>

// A tree as JSON. All functions may be called from several threads at once.
namespace zelstoryhost {

// Writes the members of each node in their order, under their names without the m (mObjectID is
// "objectID"). A paragraph has the name of its kind beside the code, null for an unknown kind;
// links that lead nowhere are null. UTF-8, indented, with a line end after it. A failure of
// `output` is left in its state, as with any stream. After std::bad_alloc, what was written so far
// is incomplete.
ZELSTORYHOST_API void WriteJSON(const zelstoryparser::TavroStory& story, std::ostream& output);

// The same for one scene.
ZELSTORYHOST_API void WriteJSON(const zelstoryparser::Scene& scene, std::ostream& output);

}  // namespace zelstoryhost
