#pragma once

#include <string>

#include <zelstoryhost/Export.h>
#include <zelstoryparser/StoryTree.h>

namespace zelstoryhost {

// Writes a story as a story document: UTF-8, indented, the same bytes for the same tree. A document
// that StoryParser accepts is written back so that it builds an equal tree: every member of every
// node, identifiers and white space included. `name` stands for the document in errors.
//
// Throws Error, with the place in the story, for what no story document can hold: a control
// character or half a surrogate pair in a text, a story version that is not 1.0, a stream whose
// name is not its own, a duration without a scene heading, an unknown kind of paragraph. Null nodes
// are left out. May be called from several threads at once, with a tree each.
ZELSTORYHOST_API std::string WriteStory(const zelstoryparser::TavroStory& story,
                                        const std::string& name);

}  // namespace zelstoryhost
