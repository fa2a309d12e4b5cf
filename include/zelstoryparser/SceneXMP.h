#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <xmptoolkit/XMP.h>
#include <zelcore/String.h>
#include <zelmetadata/Path.h>
#include <zelstoryparser/Export.h>
#include <zelstoryparser/StoryTree.h>

// What a scene says, in XMP: its heading as xmpScript:sceneSetting, xmpDM:shotLocation and
// xmpScript:sceneTimeOfDay, its action as xmpScript:action, its speeches as
// xmpScript:dialogSequence, an ordered array of structs with the fields xmpScript:character and
// xmpScript:dialog.
//
// The operations keep no state and take no lock: one thread at a time per XMP object and per list.
// Lists are only appended to. Nothing is rolled back when a step fails. Allocation failures and
// exceptions of the host's libraries pass through.
namespace zelstoryparser {

// Writes a scene into a clip's metadata and appends the paths of what it touched to `changedPaths`,
// in three steps:
//
// - Heading: each part that the scene's last heading has; parts that it lacks keep their old value.
//   Appends sceneSetting, shotLocation and sceneTimeOfDay, all three. Without heading text:
//   nothing.
// - Action: the action paragraphs joined by two spaces; without any, the old value stays. Appends
//   action, always.
// - Dialogue: exactly the scene's speeches; an old sequence is removed even when the scene has
//   none. Appends the sequence, if it had no items and has some now; then the leaves of every item
//   there was or is.
//
// A speech is a character's name with the dialogue up to the next name, joined by two spaces. A
// name without dialogue is dropped; dialogue before the first name joins that name's speech;
// dialogue in a scene without names is dropped.
//
// `scene` must not be null and is only read. Returns an empty text, or the localised text of the
// step that the toolkit refused; the steps before it are done and reported, those after it are not
// touched, the refused one may be done in part and is not reported. Throws XMP_Error when the
// namespaces cannot be registered (nothing is written) or the sequence is no array (heading and
// action are written and reported).
[[nodiscard]] ZELSTORYPARSER_API UTF16String
WriteSceneMetadataIntoXMP(boost::intrusive_ptr<Scene> scene, TXMPMeta<std::string>& xmp,
                          std::vector<zelmetadata::Path>& changedPaths);

// Removes all that WriteSceneMetadataIntoXMP may have written, and appends the paths of
// sceneSetting, shotLocation, sceneTimeOfDay and action, whether they were present or not, then the
// leaves of every item that the sequence had.
//
// Returns an empty text, or the localised text of the step that the toolkit refused; the steps
// before it are done and reported. Throws XMP_Error when the namespaces cannot be registered
// (nothing is removed) or the sequence is no array (heading and action are removed and reported).
[[nodiscard]] ZELSTORYPARSER_API UTF16String
ClearSceneMetadataFromXMP(TXMPMeta<std::string>& xmp, std::vector<zelmetadata::Path>& changedPaths);

// Whether any of these properties holds a text: a simple one that is not empty, or an item of the
// sequence with both its fields. `xmp` is only read. Throws XMP_Error when the namespaces cannot be
// registered; any other refusal of the toolkit counts as absence.
ZELSTORYPARSER_API bool HasAnyStoryRelatedMetadata(TXMPMeta<std::string>& xmp);

// One generated shot packet.
struct ShotXMP {
  UTF16String mShotID;     // the identifier of the scene's first paragraph; never empty
  std::string mXMPPacket;  // the complete XMP packet, UTF-8
};

// Builds the stand-alone packet of the shot that a scene makes, and appends it to `shots`: what
// WriteSceneMetadataIntoXMP would write, with xmpDM:shotName (the parts of the heading and the
// scene's number, joined by " - "), xmpDM:scene (the number) and xmpDM:duration (whole seconds;
// omitted when the scene's shot duration is absent or zero). The duration text is
// hours:minutes:seconds, missing fields at the end counting 0; a total beyond 32 bits is written
// exactly.
//
// A scene makes one shot, or none when its first paragraph has no identifier or when it has neither
// heading, action nor speech. `story` is held for the call and may be null; `scene` must not be
// null; `sceneOrdinal`, counted from 1 by convention, stands in for a missing scene number, with at
// least three digits. Returns true. Throws XMP_Error when the namespaces cannot be registered or
// the packet cannot be made; nothing is appended then. A property that the toolkit refuses is left
// out.
ZELSTORYPARSER_API bool GetSceneXMP(boost::intrusive_ptr<TavroStory> story,
                                    boost::intrusive_ptr<Scene> scene, std::int32_t sceneOrdinal,
                                    std::vector<ShotXMP>& shots);

}  // namespace zelstoryparser
