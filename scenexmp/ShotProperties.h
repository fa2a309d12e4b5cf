#pragma once

#include <cstdint>
#include <optional>
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

// The seconds of a duration, which is hours:minutes:seconds; fields missing at the end, and fields
// that are not a 32-bit number, count 0, and what follows the third is ignored. Nothing when all
// three are 0.
std::optional<std::int64_t> ReadShotDuration(const UTF16String& duration);

// Not written where that is nothing.
bool WriteShotDurationProperty(const UTF16String& duration, TXMPMeta<std::string>& xmp);

}  // namespace zelstoryparser
