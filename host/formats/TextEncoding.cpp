#include "formats/TextEncoding.h"

#include <algorithm>

#include <zelcore/String.h>
#include <zelstoryhost/Error.h>
#include <zelstoryhost/Text.h>

#include "UTF16.h"

namespace zelstoryhost {
namespace {

using zelcore::xml::Position;
using namespace std::string_view_literals;

enum class ByteOrder { kNone, kBig, kLittle };

// The order of the bytes of UTF-16; none for UTF-8.
ByteOrder OrderOf(std::string_view bytes) {
  if (bytes.starts_with("\xFE\xFF"sv)) return ByteOrder::kBig;
  if (bytes.starts_with("\xFF\xFE"sv)) return ByteOrder::kLittle;
  if (bytes.size() < 2 || (bytes[0] == 0) == (bytes[1] == 0)) return ByteOrder::kNone;
  return bytes[0] == 0 ? ByteOrder::kBig : ByteOrder::kLittle;
}

// The place after `text`, which is UTF-8.
Position PlaceAfter(std::string_view text) {
  Position place{1, 1};
  for (std::size_t i = 0; i < text.size();) {
    const bool isLineEnd =
        text[i] == '\n' || (text[i] == '\r' && !text.substr(i + 1).starts_with('\n'));
    place = isLineEnd ? Position{place.mLine + 1, 1} : Position{place.mLine, place.mColumn + 1};
    i += FirstCharacter(text.substr(i)).mLength;
  }
  return place;
}

std::u16string UnitsOf(std::string_view bytes, ByteOrder order) {
  std::u16string units;
  units.reserve(bytes.size() / 2);
  const std::size_t high = order == ByteOrder::kBig ? 0 : 1;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto upper = static_cast<unsigned char>(bytes[i + high]);
    const auto lower = static_cast<unsigned char>(bytes[i + 1 - high]);
    units += static_cast<char16_t>(upper << 8 | lower);
  }
  return units;
}

std::string FromUTF16(std::string_view bytes, ByteOrder order, const std::string& source) {
  std::u16string units = UnitsOf(bytes, order);
  if (units.starts_with(u'\xFEFF')) units.erase(0, 1);
  const std::size_t length = LengthOfWellFormed(units);
  std::string text = ToUTF8(std::u16string_view(units).substr(0, length));
  if (length < units.size() || bytes.size() % 2 != 0) {
    throw Error(source, PlaceAfter(text), "is not UTF-16 text");
  }
  return text;
}

void CheckUTF8(std::string_view text, const std::string& source) {
  for (std::size_t i = 0; i < text.size();) {
    if (static_cast<unsigned char>(text[i]) < 0x80) {
      ++i;
      continue;
    }
    const Character character = FirstCharacter(text.substr(i));
    if (!character.mIsWellFormed) {
      throw Error(source, PlaceAfter(text.substr(0, i)), "is not UTF-8 text");
    }
    i += character.mLength;
  }
}

void NormaliseLineEnds(std::string& text) {
  const std::size_t first = text.find('\r');
  if (first == std::string::npos) return;
  std::size_t end = first;
  for (std::size_t i = first; i < text.size(); ++i) {
    if (text[i] != '\r') {
      text[end++] = text[i];
    } else if (i + 1 == text.size() || text[i + 1] != '\n') {
      text[end++] = '\n';
    }
  }
  text.resize(end);
}

}  // namespace

std::string DecodeText(std::string_view bytes, const std::string& source) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  const ByteOrder order = OrderOf(bytes);
  std::string text =
      order == ByteOrder::kNone ? std::string(bytes) : FromUTF16(bytes, order, source);
  if (order == ByteOrder::kNone) CheckUTF8(text, source);
  if (text.starts_with(kMark)) text.erase(0, kMark.size());
  if (const std::size_t nul = text.find('\0'); nul != std::string::npos) {
    throw Error(source, PlaceAfter(std::string_view(text).substr(0, nul)),
                "is not text: it has a NUL character");
  }
  NormaliseLineEnds(text);
  return text;
}

}  // namespace zelstoryhost
