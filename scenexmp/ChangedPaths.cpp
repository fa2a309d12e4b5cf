#include "scenexmp/ChangedPaths.h"

#include <algorithm>
#include <set>

namespace zelstoryparser {
namespace {

using zelmetadata::Path;

Path PathOf(const StoryProperty& property) {
  return zelmetadata::PathForSchemaNameAndPropertyName(property.mNamespaceURI, property.mName);
}

std::set<Path> LeavesBelow(const Path& path) {
  std::set<Path> leaves;
  auto [candidate, end] = zelmetadata::DescendantLeafPaths(path);
  for (; candidate != end; ++candidate) {
    const auto [firstChild, lastChild] = zelmetadata::ChildPaths(*candidate);
    if (firstChild == lastChild) leaves.insert(*candidate);
  }
  return leaves;
}

}  // namespace

void ReportHeading(ChangedPaths& changedPaths) {
  changedPaths.push_back(PathOf(kSceneSetting));
  changedPaths.push_back(PathOf(kShotLocation));
  changedPaths.push_back(PathOf(kSceneTimeOfDay));
}

void ReportAction(ChangedPaths& changedPaths) {
  changedPaths.push_back(PathOf(kActionText));
}

void ReportDialog(XMP_Index countBefore, XMP_Index countAfter, ChangedPaths& changedPaths) {
  const Path sequence = PathOf(kDialogSequence);
  if (countBefore == 0 && countAfter > 0) changedPaths.push_back(sequence);
  for (XMP_Index index = 1; index <= std::max(countBefore, countAfter); ++index) {
    const std::set<Path> leaves =
        LeavesBelow(zelmetadata::CreatePathFromArrayItem(sequence, index));
    changedPaths.insert(changedPaths.end(), leaves.begin(), leaves.end());
  }
}

}  // namespace zelstoryparser
