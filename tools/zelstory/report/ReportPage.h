#pragma once

#include <string>

#include <zelstoryparser/HeadingRules.h>
#include <zelstoryparser/StoryTree.h>

namespace zelstory {

// The names at the top of the page.
struct PageNames {
  std::string mTitle;
  std::string mFile;  // shown below the title, unless empty
};

// The text of the first line "Title: TEXT" in the story's metadata, in any letter case; empty
// if there is none.
std::string TitleIn(const zelstoryparser::TavroStory& story);

// A story as one self-contained HTML page, in UTF-8: a chart of who speaks in which scene, one of
// the scenes' lengths, tables of scenes and characters with links into the screenplay, and the
// screenplay. `rules` say how headings are read. Well-formed as XML, too. No text of the story can
// become markup.
std::string MakeReportPage(const zelstoryparser::TavroStory& story, const PageNames& names,
                           const zelstoryparser::HeadingRules& rules);

}  // namespace zelstory
