#pragma once

#include <string>

#include <xmptoolkit/XMP.h>
#include <zelcore/String.h>

#include "scenexmp/Vocabulary.h"

namespace zelstoryparser {

// Writes, removes and reads the simple properties of a scene. The namespaces must be registered.
//
// Writers and removers return false at the first call that the toolkit refuses. What was done
// before stays done; what follows is not attempted. An empty text is never written: the property
// keeps its value. Removing an absent property is not an error.

bool WriteSceneHeadingProperties(const UTF16String& setting, const UTF16String& location,
                                 const UTF16String& timeOfDay, TXMPMeta<std::string>& xmp);
bool WriteActionProperty(const UTF16String& action, TXMPMeta<std::string>& xmp);

bool RemoveSceneHeadingProperties(TXMPMeta<std::string>& xmp);
bool RemoveActionProperty(TXMPMeta<std::string>& xmp);

// Each returns whether the property was found, with its option bits and UTF-8 value. Also returns
// false if the toolkit refuses.
bool ReadSceneSettingProperty(const TXMPMeta<std::string>& xmp, XMP_OptionBits& options,
                              std::string& value);
bool ReadShotLocationProperty(const TXMPMeta<std::string>& xmp, XMP_OptionBits& options,
                              std::string& value);
bool ReadSceneTimeOfDayProperty(const TXMPMeta<std::string>& xmp, XMP_OptionBits& options,
                                std::string& value);
bool ReadActionProperty(const TXMPMeta<std::string>& xmp, XMP_OptionBits& options,
                        std::string& value);

// Steps that all property routines share. They throw XMP_Error.
void SetUnlessEmpty(const StoryProperty& property, const UTF16String& text,
                    TXMPMeta<std::string>& xmp);
void DeleteIfPresent(const StoryProperty& property, TXMPMeta<std::string>& xmp);

}  // namespace zelstoryparser
