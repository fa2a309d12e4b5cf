#pragma once

#include <utility>
#include <vector>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelcore/String.h>
#include <zelstoryparser/StoryTree.h>

namespace zelstoryparser {

// A character's name and the dialogue that the character speaks.
using CharacterDialogPair = std::pair<UTF16String, UTF16String>;
using CharacterDialogPairs = std::vector<CharacterDialogPair>;  // in script order

// What a scene says.
struct SceneText {
  UTF16String mHeading;  // of its last heading paragraph
  UTF16String mAction;   // all action paragraphs, joined by two spaces
  CharacterDialogPairs mPairs;
};

// Gathers a scene's text. Null paragraphs are skipped; shots, parentheticals, transitions and
// unknown paragraphs say nothing.
SceneText CollectSceneText(const Scene& scene);

// Appends the text of a paragraph's runs, after two spaces when something stands there already
// (also for a paragraph without runs). The paragraph must not be null; a null run is skipped.
void AppendParagraphText(boost::intrusive_ptr<Paragraph> paragraph, UTF16String& text);

// Moves what was gathered for one character to the list, if there is both a name and dialogue. A
// name without dialogue is dropped; dialogue without a name stays for the name that comes.
void CloseCharacterDialogPair(UTF16String& character, UTF16String& dialog,
                              CharacterDialogPairs& pairs);

}  // namespace zelstoryparser
