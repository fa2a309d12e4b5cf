#pragma once

#include <map>
#include <shared_mutex>
#include <string_view>

#include <zelcore/Export.h>
#include <zelcore/String.h>

namespace zelcore::config {

// The texts of the process in the user's language. A text is looked up by its whole key text,
// "$$$/product/Name=English default", so every call has its own fallback.
//
// There is one localiser in a process. All operations may be called from any thread.
class ZELPLATFORM_API Localizer {
 public:
  Localizer(const Localizer&) = delete;
  Localizer& operator=(const Localizer&) = delete;

  // The process's localiser; lives until the process ends.
  static Localizer& Get();

  // Returns the translation installed for the key, or the text after the first equals sign, or,
  // for a key text without one, the key text itself. `keyText` is UTF-8.
  UTF16String GetLocalizedString(std::string_view keyText) const;

  // Installs, or replaces, the translation of a key; `key` is the part before the equals sign.
  void InstallTranslation(std::string_view key, UTF16String translation);

  // Removes all translations.
  void RemoveTranslations();

 private:
  Localizer() = default;
  ~Localizer() = default;

  mutable std::shared_mutex mMutex;
  std::map<UTF8String, UTF16String, std::less<>> mTranslations;
};

}  // namespace zelcore::config
