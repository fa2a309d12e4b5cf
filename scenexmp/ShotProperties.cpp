#include "scenexmp/ShotProperties.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "scenexmp/SceneProperties.h"
#include "scenexmp/ToolkitGuard.h"
#include "text/StringTokenizer.h"

namespace zelstoryparser {
namespace {

using DurationFields = std::array<std::int32_t, 3>;  // hours, minutes, seconds

std::int32_t ReadNumber(UTF16String text) {
  std::int32_t number = 0;
  zelcore::iUTF16StringStream stream(std::move(text));
  return stream >> number ? number : 0;
}

DurationFields ReadFields(const UTF16String& text) {
  DurationFields fields{};
  StringTokenizer pieces(text, u":", false);
  for (std::int32_t& field : fields) {
    if (pieces.IsExhausted()) break;
    field = ReadNumber(pieces.NextToken());
  }
  return fields;
}

void SetDurationField(const StoryProperty& field, const std::string& value,
                      TXMPMeta<std::string>& xmp) {
  xmp.SetStructField(kDuration.mNamespaceURI, kDuration.mName, field.mNamespaceURI, field.mName,
                     value, 0);
}

}  // namespace

bool WriteSceneNumberProperty(const UTF16String& sceneNumber, TXMPMeta<std::string>& xmp) {
  return ToolkitAccepts([&] {
    xmp.SetProperty(kSceneNumber.mNamespaceURI, kSceneNumber.mName, ToolkitValue(sceneNumber), 0);
  });
}

bool WriteShotNameProperty(const UTF16String& shotName, TXMPMeta<std::string>& xmp) {
  return ToolkitAccepts([&] { SetUnlessEmpty(kShotName, shotName, xmp); });
}

std::optional<std::int64_t> ReadShotDuration(const UTF16String& duration) {
  if (duration.empty()) return std::nullopt;
  const DurationFields fields = ReadFields(duration);
  if (std::all_of(fields.begin(), fields.end(), [](std::int32_t field) { return field == 0; })) {
    return std::nullopt;
  }
  // Three 32-bit fields cannot overflow 64 bits.
  return (std::int64_t{fields[0]} * 60 + fields[1]) * 60 + fields[2];
}

bool WriteShotDurationProperty(const UTF16String& duration, TXMPMeta<std::string>& xmp) {
  const std::optional<std::int64_t> seconds = ReadShotDuration(duration);
  if (!seconds) return true;
  return ToolkitAccepts([&] {
    SetDurationField(kScaleField, "1/1", xmp);
    SetDurationField(kValueField, std::to_string(*seconds), xmp);
  });
}

}  // namespace zelstoryparser
