#include <mutex>
#include <utility>

#include <zelcore/config/Localizer.h>

namespace zelcore::config {

Localizer& Localizer::Get() {
  static Localizer localizer;
  return localizer;
}

UTF16String Localizer::GetLocalizedString(std::string_view keyText) const {
  const std::size_t equals = keyText.find('=');
  const std::string_view key = keyText.substr(0, equals);
  {
    const std::shared_lock lock(mMutex);
    const auto translation = mTranslations.find(key);
    if (translation != mTranslations.end()) return translation->second;
  }
  const bool hasDefault = equals != std::string_view::npos;
  return utility::UTF8to16(hasDefault ? keyText.substr(equals + 1) : keyText);
}

void Localizer::InstallTranslation(std::string_view key, UTF16String translation) {
  const std::unique_lock lock(mMutex);
  mTranslations.insert_or_assign(UTF8String(key), std::move(translation));
}

void Localizer::RemoveTranslations() {
  const std::unique_lock lock(mMutex);
  mTranslations.clear();
}

}  // namespace zelcore::config
