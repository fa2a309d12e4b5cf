#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <zelstoryparser/StoryTree.h>

#include "SceneSelection.h"
#include "SidecarName.h"

namespace zelstory {

// A row of a table that tells for each clip which scene it shows.
struct ClipRow {
  std::size_t mLine = 0;  // in the table's file, from 1
  std::string mClip;      // as it stands in the table; empty when it is missing
  std::string mFile;      // the clip or sidecar, from the working directory
  std::string mSidecar;   // the file to be written; empty when there can be none
  SelectedScene mScene;   // without a scene when the row has a fault
  std::string mFault;     // why nothing can be written; empty for a good row
};

// Reads a table (CSV) whose first line names its columns, in any order and letter case: "clip" and
// one or more of "scene" or "number" (as written in the script), "position" (from 1) and "id";
// further columns are ignored, and rows in which every cell is empty. Where a row fills several,
// they must name the same scene. Relative names of clips start from `folder`. Every row is checked:
// that its scene is in the story, that the clip or its sidecar exists, that no other row means the
// same sidecar, except for clips that share one, by `form`, and show the same scene. Throws
// ToolError for a table that cannot be read at all. "-" is standard input.
std::vector<ClipRow> ReadClipTable(const std::string& table, const std::string& folder,
                                   const zelstoryparser::TavroStory& story,
                                   const std::string& storyFile, std::optional<SidecarForm> form);

}  // namespace zelstory
