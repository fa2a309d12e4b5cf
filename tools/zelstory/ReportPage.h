#pragma once

#include <string>

#include <zelstoryparser/StoryTree.h>

namespace zelstory {

// A story as one self-contained HTML page, in UTF-8: its scenes as a table with links into the
// screenplay, a chart of who speaks in which scene, one of the scenes' lengths, and the screenplay.
// Well-formed as XML, too. No text of the story can become markup. `name` is the page's title.
std::string MakeReportPage(const zelstoryparser::TavroStory& story, const std::string& name);

}  // namespace zelstory
