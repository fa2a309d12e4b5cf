#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <xmptoolkit/XMP.h>
#include <zelcore/String.h>

#include "scenexmp/Vocabulary.h"

namespace zelstoryparser {

// The properties that only shot packets have. Errors as in SceneProperties.h.

// Writes the number even if it is empty.
bool WriteSceneNumberProperty(const UTF16String& sceneNumber, TXMPMeta<std::string>& xmp);

// Writes nothing if the name is empty.
bool WriteShotNameProperty(const UTF16String& shotName, TXMPMeta<std::string>& xmp);

// Returns the seconds of a duration, which is hours:minutes:seconds. Fields that are missing at the
// end or do not begin with a 32-bit number count as 0; anything after the third field is ignored.
// Returns nothing if all three fields are 0.
std::optional<std::int64_t> ReadShotDuration(const UTF16String& duration);

// Writes nothing if ReadShotDuration returns nothing.
bool WriteShotDurationProperty(const UTF16String& duration, TXMPMeta<std::string>& xmp);

}  // namespace zelstoryparser
