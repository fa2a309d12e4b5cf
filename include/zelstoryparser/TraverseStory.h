#pragma once

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelcore/String.h>
#include <zelstoryparser/Export.h>
#include <zelstoryparser/StoryTree.h>

namespace zelstoryparser {

// A dump for diagnosis. Replaces `text` by a summary of the story's format versions, and writes the
// shot packet of every scene (GetSceneXMP) to a file in the system's temporary folder, named
//
//   mivTestXMPBufferDumpFile_Scene_<scene>_Shot_<shot>.txt
//
// with the position of the scene in its section and of the shot in its scene, both counted from 1.
// The body is dumped first, then each comment stream, counted from 1 again, so that the files of a
// later section replace those of an earlier one. An existing entry of that name is removed first; a
// link is not followed.
//
// Returns false only for a null story, with a text that says so. A story without a document returns
// true and leaves `text` unchanged. A file that cannot be opened or written is skipped silently,
// unless memory is what was missing. Throws std::bad_alloc, the XMP_Error of GetSceneXMP, and
// std::filesystem::filesystem_error if there is no temporary folder or an entry cannot be removed;
// `text` then keeps what it held at that moment.
//
// Threads: do not run two dumps at the same time; they write the same files.
ZELSTORYPARSER_API bool TraverseStory(boost::intrusive_ptr<TavroStory> story, UTF16String& text);

}  // namespace zelstoryparser
