#pragma once

#include <zelstoryparser/StoryTree.h>

#include "Table.h"

// What can be listed of a story's body.
namespace zelstory {

// A row a scene: position (from 1), number, setting, location, time of day, duration (h:mm:ss, as a
// clip's metadata would have it; nothing known without one), speeches, characters.
Table ListScenes(const zelstoryparser::TavroStory& story);

// A row a person, in order of appearance: name, speeches, words spoken, the first and the last
// scene with a speech, and all of them, as SceneName has them. What stands in brackets behind a
// name says how a person is heard, and makes no other person.
Table ListCharacters(const zelstoryparser::TavroStory& story);

// A row a kind of paragraph with its number and words, after the scenes and before the total.
Table ListCounts(const zelstoryparser::TavroStory& story);

}  // namespace zelstory
