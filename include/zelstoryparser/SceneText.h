#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include <zelcore/String.h>
#include <zelstoryparser/Export.h>
#include <zelstoryparser/HeadingRules.h>
#include <zelstoryparser/StoryTree.h>

// What a scene says, as plain text. The operations in SceneXMP.h write the same texts.
namespace zelstoryparser {

// A character's name, and what the character says.
using CharacterDialogPair = std::pair<UTF16String, UTF16String>;
using CharacterDialogPairs = std::vector<CharacterDialogPair>;  // in script order

// A text that the scene does not have is empty.
struct SceneText {
  UTF16String mHeading;  // of the scene's last heading paragraph
  UTF16String mSetting;  // the heading's parts: "INT. HOUSE - NIGHT" gives INT, HOUSE, NIGHT
  UTF16String mLocation;
  UTF16String mTimeOfDay;
  UTF16String mAction;                    // all action paragraphs, joined by two spaces
  CharacterDialogPairs mPairs;            // each has both a name and dialogue
  std::optional<std::int64_t> mDuration;  // in seconds; empty if GetSceneXMP would write none
};

// Gathers a scene's text. Null paragraphs are skipped, and so are shots, parentheticals,
// transitions and unknown paragraphs. A name without dialogue is dropped. Dialogue before the first
// name is added to that name's; dialogue in a scene without names is dropped. The only error is
// std::bad_alloc. The scene is only read: any number of threads may call this at once for the same
// scene.
ZELSTORYPARSER_API SceneText CollectSceneText(const Scene& scene);

// Likewise, with the heading's parts by `rules`. By rules of words, the location is followed by the
// sub-location, if there is one, after " - "; qualifiers and scene numbers are left out.
ZELSTORYPARSER_API SceneText CollectSceneText(const Scene& scene, const HeadingRules& rules);

}  // namespace zelstoryparser
