#pragma once

#include <cstddef>
#include <iosfwd>

#include <zelstoryparser/StoryTree.h>

namespace zelstory {

// Prints a story as a screenplay in its customary layout, not divided into pages: numbered headings
// in capitals, action across the page, names, parentheticals and dialogue indented, transitions at
// the right. The header and footer streams stand once, at the top and the end; with `withComments`
// the comment streams follow, each under its author's name. Text is UTF-8; columns count as a
// terminal shows them.
void PrintScreenplay(const zelstoryparser::TavroStory& story, bool withComments,
                     std::ostream& output);

// Prints one scene. `position`, from 1, stands in for a missing scene number.
void PrintScene(const zelstoryparser::Scene& scene, std::size_t position, std::ostream& output);

}  // namespace zelstory
