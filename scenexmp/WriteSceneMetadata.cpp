#include <zelstoryparser/SceneXMP.h>

#include "scenexmp/ChangedPaths.h"
#include "scenexmp/DialogSequence.h"
#include "scenexmp/LocalizedText.h"
#include "scenexmp/ParseHeading.h"
#include "scenexmp/SceneProperties.h"
#include "scenexmp/SceneText.h"

namespace zelstoryparser {
namespace {

bool WriteHeading(const UTF16String& heading, const HeadingRules& rules,
                  TXMPMeta<std::string>& xmp) {
  UTF16String setting;
  UTF16String location;
  UTF16String timeOfDay;
  SplitHeading(heading, rules, setting, location, timeOfDay);
  return WriteSceneHeadingProperties(setting, location, timeOfDay, xmp);
}

// Writes the new sequence even if the old one could not be removed.
bool ReplaceDialog(const CharacterDialogPairs& pairs, TXMPMeta<std::string>& xmp) {
  const bool removed = RemoveDialogSequence(xmp);
  const bool written = WriteDialogSequence(pairs, xmp);
  return removed && written;
}

}  // namespace

UTF16String WriteSceneMetadataIntoXMP(boost::intrusive_ptr<Scene> scene, TXMPMeta<std::string>& xmp,
                                      std::vector<zelmetadata::Path>& changedPaths) {
  return WriteSceneMetadataIntoXMP(scene, ExactHeadingRules(), xmp, changedPaths);
}

UTF16String WriteSceneMetadataIntoXMP(boost::intrusive_ptr<Scene> scene, const HeadingRules& rules,
                                      TXMPMeta<std::string>& xmp,
                                      std::vector<zelmetadata::Path>& changedPaths) {
  RegisterStoryNamespaces();
  const SceneText text = GatherParagraphs(*scene);

  if (!text.mHeading.empty()) {
    if (!WriteHeading(text.mHeading, rules, xmp)) {
      return LocalizedText(
          "$$$/zelstoryparser/SceneHeadingError=Error writing scene heading to XMP");
    }
    ReportHeading(changedPaths);
  }

  if (!WriteActionProperty(text.mAction, xmp)) {
    return LocalizedText("$$$/zelstoryparser/ActionTextError=Error writing action text to XMP");
  }
  ReportAction(changedPaths);

  const XMP_Index countBefore = CountDialogItems(xmp);
  if (!ReplaceDialog(text.mPairs, xmp)) {
    return LocalizedText(
        "$$$/zelstoryparser/CharacterDialogError=Error writing character dialogue to XMP");
  }
  ReportDialog(countBefore, CountDialogItems(xmp), changedPaths);
  return {};
}

}  // namespace zelstoryparser
