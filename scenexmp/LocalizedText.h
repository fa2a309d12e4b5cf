#pragma once

#include <zelcore/String.h>
#include <zelcore/config/Localizer.h>

namespace zelstoryparser {

// Returns the host's translation of a key text, "$$$/zelstoryparser/Key=English default".
inline zelcore::UTF16String LocalizedText(const char* keyText) {
  return zelcore::config::Localizer::Get().GetLocalizedString(keyText);
}

}  // namespace zelstoryparser
