#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Export.h>
#include <zelstoryhost/SceneFinder.h>
#include <zelstoryhost/SidecarName.h>

namespace zelstoryhost {

// A row of a table that says which scene a clip shows.
struct ClipRow {
  std::size_t mLine = 0;        // in the table's file, from 1
  std::string mClip;            // as the table has it; empty when it is missing
  std::string mFile;            // the clip or sidecar, from the working directory
  std::string mSidecar;         // the file to be written; empty when there can be none
  SelectedScene mScene;         // without a scene when the row has a fault
  std::optional<Error> mFault;  // why nothing can be written; none for a good row
};

struct ClipTable {
  std::vector<ClipRow> mRows;
  bool mAsksForNumbers = false;  // whether a column, and a row, name scenes by number
};

// How a table is read.
struct ClipTableSource {
  std::string mName;    // of the table, in errors
  std::string mFolder;  // where relative names of clips start from; empty: the working directory
  std::optional<SidecarForm> mForm;
};

// Reads a table (CSV, in UTF-8) whose first line names its columns, in any order and letter case:
// "clip" and one or more of "scene" or "number" (as written in the script), "position" (from 1) and
// "id"; further columns are ignored, and rows in which every cell is empty. Where a row fills
// several, they must name the same scene. Every row is checked: that its scene is one of `scenes`,
// that the clip or its sidecar exists, that no other row means the same sidecar, except for clips
// that share one, by mForm, and show the same scene. Write to mSidecar: once sidecars of other rows
// have been created, another search for the clip's may find one of them. Throws Error for a table
// that cannot be read at all. May be called from several threads at once.
ZELSTORYHOST_API ClipTable ReadClipTable(std::string_view text, const ClipTableSource& source,
                                         const SceneFinder& scenes);

}  // namespace zelstoryhost
