#pragma once

#include <vector>

#include <xmptoolkit/XMP.h>
#include <zelmetadata/Path.h>

#include "scenexmp/Vocabulary.h"

namespace zelstoryparser {

using ChangedPaths = std::vector<zelmetadata::Path>;  // the caller's; only appended to

// Appends the paths of the three parts of the heading.
void ReportHeading(ChangedPaths& changedPaths);

// Appends the path of the action text.
void ReportAction(ChangedPaths& changedPaths);

// Appends what a change of the dialogue sequence touched, given its numbers of items before and
// after: the sequence itself if it was created, then the leaves of every item that existed or
// exists.
void ReportDialog(XMP_Index countBefore, XMP_Index countAfter, ChangedPaths& changedPaths);

}  // namespace zelstoryparser
