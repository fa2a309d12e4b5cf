#pragma once

#include <zelstoryhost/Export.h>
#include <zelstoryhost/Table.h>
#include <zelstoryparser/HeadingRules.h>
#include <zelstoryparser/StoryTree.h>

// Lists of what a story's body holds. All functions may be called from several threads at once.
namespace zelstoryhost {

// One row per scene: position (from 1), number, setting, location, time of day, duration (h:mm:ss,
// as a clip's metadata would have it; unknown without one), speeches, characters who speak. `rules`
// say how headings are read.
ZELSTORYHOST_API Table
ListScenes(const zelstoryparser::TavroStory& story,
           const zelstoryparser::HeadingRules& rules = zelstoryparser::ExactHeadingRules());

// One row per character, in order of appearance: name, speeches, words spoken, the first and the
// last scene with a speech, all of them, as SceneName has them, and the extensions of the name. Who
// is one character, and what an extension is, says Speaker.
ZELSTORYHOST_API Table ListCharacters(const zelstoryparser::TavroStory& story);

// One row per kind of paragraph with its number and words, after the scenes and before the total;
// at the end the number of characters who speak.
ZELSTORYHOST_API Table ListCounts(const zelstoryparser::TavroStory& story);

}  // namespace zelstoryhost
