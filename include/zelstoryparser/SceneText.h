#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include <zelcore/String.h>
#include <zelstoryparser/Export.h>
#include <zelstoryparser/StoryTree.h>

// What a scene says, as plain text: the texts that the operations of SceneXMP.h write.
namespace zelstoryparser {

// A character's name and the dialogue that the character speaks.
using CharacterDialogPair = std::pair<UTF16String, UTF16String>;
using CharacterDialogPairs = std::vector<CharacterDialogPair>;  // in script order

// Texts are empty where the scene has none.
struct SceneText {
  UTF16String mHeading;  // of the scene's last heading paragraph
  UTF16String mSetting;  // its parts: "INT. HOUSE - NIGHT" gives INT, HOUSE and NIGHT
  UTF16String mLocation;
  UTF16String mTimeOfDay;
  UTF16String mAction;                    // all action paragraphs, joined by two spaces
  CharacterDialogPairs mPairs;            // none without both a name and dialogue
  std::optional<std::int64_t> mDuration;  // in seconds; as GetSceneXMP writes it, or nothing
};

// Gathers a scene's text. Null paragraphs are skipped; shots, parentheticals, transitions and
// unknown paragraphs say nothing. A name without dialogue is dropped; dialogue before the first
// name joins that name's; dialogue in a scene without names is dropped. The only error is
// std::bad_alloc. The scene is only read: any number of threads may do so at once.
ZELSTORYPARSER_API SceneText CollectSceneText(const Scene& scene);

}  // namespace zelstoryparser
