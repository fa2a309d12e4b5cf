#include <xmptoolkit/model/Text.h>
#include <xmptoolkit/packet/Encoding.h>
#include <zelcore/UTF8.h>

namespace xmptoolkit {

namespace {

void AppendUnit(char32_t unit, Encoding encoding, std::string& bytes) {
  const std::size_t size = UnitSize(encoding);
  for (std::size_t i = 0; i < size; ++i) {
    const std::size_t shift = 8 * (IsBigEndian(encoding) ? size - 1 - i : i);
    bytes += static_cast<char>(static_cast<unsigned char>(unit >> shift));
  }
}

bool IsSurrogate(char32_t unit, char32_t first) {
  return unit >= first && unit < first + 0x400;
}

// Reads the character at `position` and moves `position` past it; kMalformed leaves it alone.
char32_t DecodeCharacter(std::string_view bytes, std::size_t& position, Encoding encoding) {
  const char32_t unit = UnitAt(bytes, position, encoding);
  if (unit > 0x10FFFF || IsSurrogate(unit, 0xDC00)) return kMalformed;
  const std::size_t size = UnitSize(encoding);
  if (!IsSurrogate(unit, 0xD800)) {
    position += size;
    return unit;
  }
  const char32_t low = size == 2 ? UnitAt(bytes, position + 2, encoding) : kNoUnit;
  if (!IsSurrogate(low, 0xDC00)) return kMalformed;
  position += 4;
  return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
}

}  // namespace

Encoding EncodingOf(XMP_OptionBits options) {
  switch (options & kXMP_EncodingMask) {
    case kXMP_EncodeUTF8:
      return Encoding::kUTF8;
    case kXMP_EncodeUTF16Big:
      return Encoding::kUTF16Big;
    case kXMP_EncodeUTF16Little:
      return Encoding::kUTF16Little;
    case kXMP_EncodeUTF32Big:
      return Encoding::kUTF32Big;
    case kXMP_EncodeUTF32Little:
      return Encoding::kUTF32Little;
    default:
      throw XMP_Error(kXMPErr_BadOptions, "the options do not name an encoding of packets");
  }
}

XMP_OptionBits OptionsOf(Encoding encoding) {
  switch (encoding) {
    case Encoding::kUTF8:
      return kXMP_EncodeUTF8;
    case Encoding::kUTF16Big:
      return kXMP_EncodeUTF16Big;
    case Encoding::kUTF16Little:
      return kXMP_EncodeUTF16Little;
    case Encoding::kUTF32Big:
      return kXMP_EncodeUTF32Big;
    case Encoding::kUTF32Little:
      return kXMP_EncodeUTF32Little;
  }
  return kXMP_EncodeUTF8;
}

char32_t UnitAt(std::string_view bytes, std::size_t position, Encoding encoding) {
  const std::size_t size = UnitSize(encoding);
  if (bytes.size() - position < size) return kNoUnit;
  char32_t unit = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const std::size_t at = position + (IsBigEndian(encoding) ? i : size - 1 - i);
    unit = (unit << 8) | static_cast<unsigned char>(bytes[at]);
  }
  return unit;
}

std::string Encode(std::string text, Encoding encoding) {
  if (encoding == Encoding::kUTF8) return text;
  std::string bytes;
  bytes.reserve(text.size() * UnitSize(encoding));
  for (std::size_t position = 0; position < text.size();) {
    const char32_t character = NextCharacter(text, position);
    if (UnitSize(encoding) == 4 || character < 0x10000) {
      AppendUnit(character, encoding, bytes);
    } else {
      AppendUnit(0xD800 + ((character - 0x10000) >> 10), encoding, bytes);
      AppendUnit(0xDC00 + ((character - 0x10000) & 0x3FF), encoding, bytes);
    }
  }
  return bytes;
}

std::string Decode(std::string_view bytes, Encoding encoding, std::size_t& malformedAt) {
  if (encoding == Encoding::kUTF8) {
    malformedAt = FindMalformed(bytes);
    return std::string(bytes.substr(0, malformedAt));
  }
  std::string text;
  malformedAt = std::string_view::npos;
  for (std::size_t position = 0; position < bytes.size();) {
    const char32_t character = DecodeCharacter(bytes, position, encoding);
    if (character == kMalformed) {
      malformedAt = position;
      break;
    }
    zelcore::utility::AppendUTF8(character, text);
  }
  return text;
}

}  // namespace xmptoolkit
