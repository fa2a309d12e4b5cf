#pragma once

#include <zelcore/String.h>

namespace zelcore::config {

// This host supports English only: it returns the text after the key.
class Localizer {
 public:
  static Localizer& Get() {
    static Localizer localizer;
    return localizer;
  }
  UTF16String GetLocalizedString(std::string_view keyText) const {
    return utility::UTF8to16(keyText.substr(keyText.find('=') + 1));
  }
};

}  // namespace zelcore::config
