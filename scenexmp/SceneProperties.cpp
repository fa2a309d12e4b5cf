#include "scenexmp/SceneProperties.h"

#include "scenexmp/ToolkitGuard.h"

namespace zelstoryparser {
namespace {

bool ReadProperty(const StoryProperty& property, const TXMPMeta<std::string>& xmp,
                  XMP_OptionBits& options, std::string& value) {
  bool found = false;
  const bool accepted = ToolkitAccepts(
      [&] { found = xmp.GetProperty(property.mNamespaceURI, property.mName, &value, &options); });
  return accepted && found;
}

}  // namespace

void SetUnlessEmpty(const StoryProperty& property, const UTF16String& text,
                    TXMPMeta<std::string>& xmp) {
  if (text.empty()) return;
  xmp.SetProperty(property.mNamespaceURI, property.mName, ToolkitValue(text), 0);
}

void DeleteIfPresent(const StoryProperty& property, TXMPMeta<std::string>& xmp) {
  if (!xmp.DoesPropertyExist(property.mNamespaceURI, property.mName)) return;
  xmp.DeleteProperty(property.mNamespaceURI, property.mName);
}

bool WriteSceneHeadingProperties(const UTF16String& setting, const UTF16String& location,
                                 const UTF16String& timeOfDay, TXMPMeta<std::string>& xmp) {
  return ToolkitAccepts([&] {
    SetUnlessEmpty(kSceneSetting, setting, xmp);
    SetUnlessEmpty(kShotLocation, location, xmp);
    SetUnlessEmpty(kSceneTimeOfDay, timeOfDay, xmp);
  });
}

bool WriteActionProperty(const UTF16String& action, TXMPMeta<std::string>& xmp) {
  return ToolkitAccepts([&] { SetUnlessEmpty(kActionText, action, xmp); });
}

bool RemoveSceneHeadingProperties(TXMPMeta<std::string>& xmp) {
  return ToolkitAccepts([&] {
    DeleteIfPresent(kSceneSetting, xmp);
    DeleteIfPresent(kShotLocation, xmp);
    DeleteIfPresent(kSceneTimeOfDay, xmp);
  });
}

bool RemoveActionProperty(TXMPMeta<std::string>& xmp) {
  return ToolkitAccepts([&] { DeleteIfPresent(kActionText, xmp); });
}

bool ReadSceneSettingProperty(const TXMPMeta<std::string>& xmp, XMP_OptionBits& options,
                              std::string& value) {
  return ReadProperty(kSceneSetting, xmp, options, value);
}

bool ReadShotLocationProperty(const TXMPMeta<std::string>& xmp, XMP_OptionBits& options,
                              std::string& value) {
  return ReadProperty(kShotLocation, xmp, options, value);
}

bool ReadSceneTimeOfDayProperty(const TXMPMeta<std::string>& xmp, XMP_OptionBits& options,
                                std::string& value) {
  return ReadProperty(kSceneTimeOfDay, xmp, options, value);
}

bool ReadActionProperty(const TXMPMeta<std::string>& xmp, XMP_OptionBits& options,
                        std::string& value) {
  return ReadProperty(kActionText, xmp, options, value);
}

}  // namespace zelstoryparser
