#pragma once

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelcore/String.h>
#include <zelstoryparser/Export.h>
#include <zelstoryparser/StoryTree.h>

namespace zelstoryparser {

// For inspection by hand: replaces `text` by a summary of the story's format versions, and writes
// the shot packet of every scene (GetSceneXMP) to a file in the system's temporary folder, named
//
//   mivTestXMPBufferDumpFile_Scene_<scene>_Shot_<shot>.txt
//
// with the scene's position in its section and the shot's within its scene, both counted from 1.
// The body is dumped first, then each comment stream, numbered from 1 again, so that a later
// section's files replace an earlier one's. An entry of that name is removed first (a link is not
// followed).
//
// Returns false, with a text that says so, only for a null story; a story without a document leaves
// `text` as it was. A file that cannot be opened or written is skipped silently. XMP_Error of the
// generator and std::filesystem::filesystem_error (no temporary folder, an entry that cannot be
// removed) leave the call, `text` holding what it held at that moment.
//
// Threads: two dumps at the same time write the same files.
ZELSTORYPARSER_API bool TraverseStory(boost::intrusive_ptr<TavroStory> story, UTF16String& text);

}  // namespace zelstoryparser
