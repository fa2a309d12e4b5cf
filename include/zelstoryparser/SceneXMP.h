#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <xmptoolkit/XMP.h>
#include <zelcore/String.h>
#include <zelmetadata/Path.h>
#include <zelstoryparser/Export.h>
#include <zelstoryparser/HeadingRules.h>
#include <zelstoryparser/StoryTree.h>

// Scenes in XMP. A scene's heading becomes xmpScript:sceneSetting, xmpDM:shotLocation and
// xmpScript:sceneTimeOfDay; its action becomes xmpScript:action; its speeches become
// xmpScript:dialogSequence, an ordered array of structs with the fields xmpScript:character and
// xmpScript:dialog.
//
// The operations keep no state and take no lock: use an XMP object or a list on one thread at a
// time. Lists are only appended to. If a step fails, nothing is rolled back. std::bad_alloc and
// exceptions of the host's libraries pass through.
namespace zelstoryparser {

// Writes a scene into a clip's metadata, and appends the paths that it touched to `changedPaths`.
// It takes three steps:
//
// - Heading: writes each part that the scene's last heading has; the other parts keep their old
//   values. Appends sceneSetting, shotLocation and sceneTimeOfDay, always all three. Does nothing
//   if the scene has no heading text.
// - Action: writes the action paragraphs, joined by two spaces; if there are none, the old value
//   stays. Always appends action.
// - Dialogue: replaces the sequence by the scene's speeches; the old sequence is removed even if
//   the scene has none. Appends the sequence if it had no items and now has some, then the leaves
//   of every item that existed before or exists now.
//
// A speech is a character's name with the dialogue up to the next name, joined by two spaces. A
// name without dialogue is dropped. Dialogue before the first name is added to that name's speech;
// dialogue in a scene without names is dropped.
//
// `scene` must not be null; it is only read. Returns an empty text on success, otherwise the
// localised text of the step that the toolkit refused. The steps before it are done and reported;
// those after it are not started; the refused step may be partly done and is not reported. Throws
// XMP_Error if the namespaces cannot be registered (nothing is written) or if the sequence is not
// an array (heading and action are written and reported).
[[nodiscard]] ZELSTORYPARSER_API UTF16String
WriteSceneMetadataIntoXMP(boost::intrusive_ptr<Scene> scene, TXMPMeta<std::string>& xmp,
                          std::vector<zelmetadata::Path>& changedPaths);

// Likewise, with the heading's parts by `rules`, as CollectSceneText has them.
[[nodiscard]] ZELSTORYPARSER_API UTF16String
WriteSceneMetadataIntoXMP(boost::intrusive_ptr<Scene> scene, const HeadingRules& rules,
                          TXMPMeta<std::string>& xmp, std::vector<zelmetadata::Path>& changedPaths);

// Removes everything that WriteSceneMetadataIntoXMP may have written. Appends to `changedPaths` the
// paths of sceneSetting, shotLocation, sceneTimeOfDay and action, whether they were present or not,
// then the leaves of every item that the sequence had.
//
// Returns an empty text on success, otherwise the localised text of the step that the toolkit
// refused; the steps before it are done and reported. Throws XMP_Error if the namespaces cannot be
// registered (nothing is removed) or if the sequence is not an array (heading and action are
// removed and reported).
[[nodiscard]] ZELSTORYPARSER_API UTF16String
ClearSceneMetadataFromXMP(TXMPMeta<std::string>& xmp, std::vector<zelmetadata::Path>& changedPaths);

// Returns whether `xmp` holds any of these properties: a simple one that is not empty, or an item
// of the sequence whose two fields are not empty. `xmp` is only read. Throws XMP_Error if the
// namespaces cannot be registered; a property that the toolkit refuses to read counts as absent.
ZELSTORYPARSER_API bool HasAnyStoryRelatedMetadata(TXMPMeta<std::string>& xmp);

// The packet of one shot.
struct ShotXMP {
  UTF16String mShotID;     // the identifier of the scene's first paragraph; never empty
  std::string mXMPPacket;  // the complete XMP packet, UTF-8
};

// Builds the stand-alone packet of a scene's shot and appends it to `shots`. The packet holds what
// WriteSceneMetadataIntoXMP would write, and xmpDM:shotName (the parts of the heading and the
// scene's number, joined by " - "), xmpDM:scene (the number) and xmpDM:duration (whole seconds;
// omitted if the scene's shot duration is absent or zero). The shot duration is
// hours:minutes:seconds; missing fields at the end count as 0, and a total beyond 32 bits is
// written exactly.
//
// A scene makes one shot. It makes none if its first paragraph has no identifier, or if it has
// neither heading, action nor speech.
//
// `story` is not used and may be null, and the result is always true: the signature is the one that
// hosts expect. `scene` must not be null; it is only read. `sceneOrdinal`, by convention counted
// from 1, replaces a missing scene number, with at least three digits. A property that the toolkit
// refuses is left out. Throws XMP_Error if the namespaces cannot be registered or the packet cannot
// be built; nothing is appended then.
ZELSTORYPARSER_API bool GetSceneXMP(boost::intrusive_ptr<TavroStory> story,
                                    boost::intrusive_ptr<Scene> scene, std::int32_t sceneOrdinal,
                                    std::vector<ShotXMP>& shots);

// Likewise, with the heading's parts by `rules`, as CollectSceneText has them.
ZELSTORYPARSER_API bool GetSceneXMP(boost::intrusive_ptr<TavroStory> story,
                                    boost::intrusive_ptr<Scene> scene, std::int32_t sceneOrdinal,
                                    const HeadingRules& rules, std::vector<ShotXMP>& shots);

}  // namespace zelstoryparser
