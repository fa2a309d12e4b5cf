#pragma once

#include <vector>

#include <zelstoryhost/Export.h>
#include <zelstoryhost/Finding.h>
#include <zelstoryhost/Story.h>
#include <zelstoryparser/HeadingRules.h>
#include <zelstoryparser/StoryTree.h>

namespace zelstoryhost {

// Finds what in a story's body leads to metadata that its author may not expect. All findings are
// warnings: the story is valid. Each has a code and its place: in the story, if it concerns one
// paragraph, and in the script, with the `positions` of StoryResult.
//
// - kUnknownSetting: headings in which `rules` know no setting.
// - kUnknownTime: by the exact rule, headings that end in a text after a hyphen of which even the
//   common rules do not know that it is a time of day. Rules of words know all times that they
//   find. A heading need not have one.
// - kOtherReading: by the exact rule, headings in which the common rules know a setting or a time
//   of day, and the exact rule takes another text for it, or none.
// - kDuplicateSceneNumber, kMissingSceneNumber: scenes that their number does not choose. Scenes
//   without a heading need none, nor do stories without any.
// - kNameSpelling, kExtensionSpelling: spellings that count as one name or extension (Speaker).
// - kDialogueWithoutName, kNameWithoutDialogue: what CollectSceneText drops or joins.
// - kMissingIdentifier: scenes for which GetSceneXMP makes no packet, since their first paragraph
//   has no identifier.
//
// The time is linear in the length of the story. The only error is std::bad_alloc. May be called
// from several threads at once.
ZELSTORYHOST_API std::vector<Finding> CheckStory(const zelstoryparser::TavroStory& story,
                                                 const zelstoryparser::HeadingRules& rules,
                                                 const BodyPositions& positions = {});

}  // namespace zelstoryhost
