#pragma once

#include <iosfwd>

#include <zelstoryparser/StoryTree.h>

namespace zelstory {

// Prints a story as a screenplay in its customary layout, not divided into pages: headings in
// capitals with the scenes' numbers on both sides, action across the page, names, parentheticals
// and dialogue indented, transitions at the right. The header and footer streams appear once, at
// the top and the end; with `withComments` the comment streams follow, each under its author's
// name. Text is UTF-8; columns count as a terminal shows them.
void PrintScreenplay(const zelstoryparser::TavroStory& story, bool withComments,
                     std::ostream& output);

// Prints one scene.
void PrintScene(const zelstoryparser::Scene& scene, std::ostream& output);

}  // namespace zelstory
