#include <zelstoryparser/SceneXMP.h>

#include "scenexmp/DialogSequence.h"
#include "scenexmp/SceneProperties.h"

namespace zelstoryparser {
namespace {

using PropertyReader = bool (*)(const TXMPMeta<std::string>&, XMP_OptionBits&, std::string&);

bool HasText(PropertyReader read, const TXMPMeta<std::string>& xmp) {
  XMP_OptionBits options = 0;
  std::string value;
  return read(xmp, options, value) && !value.empty();
}

bool HasDialog(const TXMPMeta<std::string>& xmp) {
  XMP_OptionBits options = 0;
  CharacterDialogPairs pairs;
  return ReadDialogSequence(xmp, options, pairs) && !pairs.empty();
}

}  // namespace

bool HasAnyStoryRelatedMetadata(TXMPMeta<std::string>& xmp) {
  return HasText(ReadSceneSettingProperty, xmp) || HasText(ReadShotLocationProperty, xmp) ||
         HasText(ReadSceneTimeOfDayProperty, xmp) || HasText(ReadActionProperty, xmp) ||
         HasDialog(xmp);
}

}  // namespace zelstoryparser
