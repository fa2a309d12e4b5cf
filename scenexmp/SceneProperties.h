#pragma once

#include <string>

#include <xmptoolkit/XMP.h>
#include <zelcore/String.h>

#include "scenexmp/Vocabulary.h"

namespace zelstoryparser {

// The simple properties of a scene, written, removed and read. The namespaces must be registered.
//
// Writers and removers return false at the first call that the toolkit refuses; what was done
// before it stays done, what comes after it is not attempted. An empty text is never written: the
// property keeps the value it has. Removing what is absent is no error.

bool WriteSceneHeadingProperties(const UTF16String& setting, const UTF16String& location,
                                 const UTF16String& timeOfDay, TXMPMeta<std::string>& xmp);
bool WriteActionProperty(const UTF16String& action, TXMPMeta<std::string>& xmp);

bool RemoveSceneHeadingProperties(TXMPMeta<std::string>& xmp);
bool RemoveActionProperty(TXMPMeta<std::string>& xmp);

// Each returns whether the property was found, with its option bits and UTF-8 value; false, too,
// when the toolkit refuses.
bool ReadSceneSettingProperty(const TXMPMeta<std::string>& xmp, XMP_OptionBits& options,
                              std::string& value);
bool ReadShotLocationProperty(const TXMPMeta<std::string>& xmp, XMP_OptionBits& options,
                              std::string& value);
bool ReadSceneTimeOfDayProperty(const TXMPMeta<std::string>& xmp, XMP_OptionBits& options,
                                std::string& value);
bool ReadActionProperty(const TXMPMeta<std::string>& xmp, XMP_OptionBits& options,
                        std::string& value);

// The steps that the routines of all properties share. They throw XMP_Error.
void SetUnlessEmpty(const StoryProperty& property, const UTF16String& text,
                    TXMPMeta<std::string>& xmp);
void DeleteIfPresent(const StoryProperty& property, TXMPMeta<std::string>& xmp);

}  // namespace zelstoryparser
