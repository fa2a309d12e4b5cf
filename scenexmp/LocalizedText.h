#pragma once

#include <zelcore/String.h>
#include <zelcore/config/Localizer.h>

namespace zelstoryparser {

// The host's text for a whole key text, "$$$/zelstoryparser/Key=English default".
inline zelcore::UTF16String LocalizedText(const char* keyText) {
  return zelcore::config::Localizer::Get().GetLocalizedString(keyText);
}

}  // namespace zelstoryparser
