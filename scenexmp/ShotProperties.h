#pragma once

#include <string>

#include <xmptoolkit/XMP.h>
#include <zelcore/String.h>

#include "scenexmp/Vocabulary.h"

namespace zelstoryparser {

// The properties that only shot packets have. Errors as in SceneProperties.h.

// Written also when empty.
bool WriteSceneNumberProperty(const UTF16String& sceneNumber, TXMPMeta<std::string>& xmp);

// Not written when empty.
bool WriteShotNameProperty(const UTF16String& shotName, TXMPMeta<std::string>& xmp);

// `duration` is hours:minutes:seconds; fields missing at the end, and fields that are no 32-bit
// number, count 0, and what follows the third is ignored. Not written when all three are 0.
bool WriteShotDurationProperty(const UTF16String& duration, TXMPMeta<std::string>& xmp);

}  // namespace zelstoryparser
