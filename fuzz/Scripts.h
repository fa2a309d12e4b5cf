#pragma once

#include <string>

#include <zelstoryhost/ScriptFormats.h>

#include "Support.h"
#include "support/TreeGenerator.h"

namespace fuzzing {

// Reads a script; what was read is written and read again.
inline void TestScript(const zelstoryhost::ScriptFormat& format, std::string_view bytes) {
  const zelstoryhost::StoryResult result = format.mRead(bytes, "script");
  if (!result) {
    Require(!result.mFault->Reason().empty(), "a fault has a reason");
    return;
  }
  const std::string written = format.mWrite(*result.mStory, "script").mBytes;
  const zelstoryhost::StoryResult again = format.mRead(written, "script");
  Require(static_cast<bool>(again), "what was written is read");
  Require(Outline(*again.mStory) == Outline(*result.mStory), "scenes and texts come back");
  Require(CommentOutline(*again.mStory) == CommentOutline(*result.mStory), "comments come back");
  Require(again.mStory->mMetaData == result.mStory->mMetaData, "the metadata comes back");
  Require(format.mWrite(*again.mStory, "script").mBytes == written, "bytes are the same again");
}

}  // namespace fuzzing
