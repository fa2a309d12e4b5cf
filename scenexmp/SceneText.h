#pragma once

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelcore/String.h>
#include <zelstoryparser/SceneText.h>
#include <zelstoryparser/StoryTree.h>

namespace zelstoryparser {

// CollectSceneText without the heading's parts and the duration.
SceneText GatherParagraphs(const Scene& scene);

// Appends the text of a paragraph's runs, after two spaces when something stands there already
// (also for a paragraph without runs). The paragraph must not be null; a null run is skipped.
void AppendParagraphText(boost::intrusive_ptr<Paragraph> paragraph, UTF16String& text);

// Moves what was gathered for one character to the list, if there is both a name and dialogue. A
// name without dialogue is dropped; dialogue without a name stays for the name that comes.
void CloseCharacterDialogPair(UTF16String& character, UTF16String& dialog,
                              CharacterDialogPairs& pairs);

}  // namespace zelstoryparser
