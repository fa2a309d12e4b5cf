#include <zelstoryparser/SceneXMP.h>

#include "scenexmp/ChangedPaths.h"
#include "scenexmp/DialogSequence.h"
#include "scenexmp/LocalizedText.h"
#include "scenexmp/SceneProperties.h"

namespace zelstoryparser {
UTF16String ClearSceneMetadataFromXMP(TXMPMeta<std::string>& xmp,
                                      std::vector<zelmetadata::Path>& changedPaths) {
  RegisterStoryNamespaces();

  if (!RemoveSceneHeadingProperties(xmp)) {
    return LocalizedText(
        "$$$/zelstoryparser/DeleteSceneHeadingError=Error deleting scene heading from XMP");
  }
  ReportHeading(changedPaths);

  if (!RemoveActionProperty(xmp)) {
    return LocalizedText(
        "$$$/zelstoryparser/DeleteActionTextError=Error deleting action text from XMP");
  }
  ReportAction(changedPaths);

  // Counted before the items are removed, so that they can be reported.
  const XMP_Index countBefore = CountDialogItems(xmp);
  if (!RemoveDialogSequence(xmp)) {
    return LocalizedText(
        "$$$/zelstoryparser/DeleteCharacterDialogError=Error deleting character dialogue from XMP");
  }
  ReportDialog(countBefore, 0, changedPaths);
  return {};
}

}  // namespace zelstoryparser
