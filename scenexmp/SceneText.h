#pragma once

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelcore/String.h>
#include <zelstoryparser/SceneText.h>
#include <zelstoryparser/StoryTree.h>

namespace zelstoryparser {

// As CollectSceneText, but without the heading's parts and the duration.
SceneText GatherParagraphs(const Scene& scene);

// Appends the text of a paragraph's runs, after two spaces if `text` is not empty (even for a
// paragraph without runs). The paragraph must not be null; null runs are skipped.
void AppendParagraphText(boost::intrusive_ptr<Paragraph> paragraph, UTF16String& text);

// Moves one character's name and dialogue to the list if there are both. A name without dialogue is
// dropped; dialogue without a name stays for the next name.
void CloseCharacterDialogPair(UTF16String& character, UTF16String& dialog,
                              CharacterDialogPairs& pairs);

}  // namespace zelstoryparser
