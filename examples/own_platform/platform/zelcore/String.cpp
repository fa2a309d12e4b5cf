#include <charconv>
#include <cstdlib>

#include <zelcore/String.h>

namespace zelcore {
namespace {

constexpr char16_t kReplacement = 0xFFFD;

bool IsSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xE000;
}

void AppendUTF8(char32_t c, std::string& bytes) {
  const auto push = [&bytes](char32_t byte) { bytes += static_cast<char>(byte); };
  if (c < 0x80) return push(c);
  if (c >= 0x10000) push(0xF0 | (c >> 18));
  if (c >= 0x10000) push(0x80 | ((c >> 12) & 0x3F));
  if (c >= 0x800 && c < 0x10000) push(0xE0 | (c >> 12));
  push(c >= 0x800 ? 0x80 | ((c >> 6) & 0x3F) : 0xC0 | (c >> 6));
  push(0x80 | (c & 0x3F));
}

// Removes the first character from `bytes` and returns it; an ill-formed one becomes U+FFFD.
char32_t TakeCharacter(std::string_view& bytes) {
  const auto lead = static_cast<unsigned char>(bytes.front());
  bytes.remove_prefix(1);
  if (lead < 0x80) return lead;
  const std::size_t more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  if (lead < 0xC2 || lead > 0xF4) return kReplacement;
  char32_t character = lead & (0x3Fu >> more);
  for (std::size_t i = 0; i < more; ++i) {
    if (bytes.empty() || (static_cast<unsigned char>(bytes.front()) & 0xC0) != 0x80) {
      return kReplacement;
    }
    character = character << 6 | (static_cast<unsigned char>(bytes.front()) & 0x3Fu);
    bytes.remove_prefix(1);
  }
  constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
  const bool isGood = character >= kLeast[more] && character <= 0x10FFFF && !IsSurrogate(character);
  return isGood ? character : kReplacement;
}

}  // namespace

namespace utility {

UTF16String AsciiToUTF16(std::string_view ascii) {
  return {ascii.begin(), ascii.end()};
}

UTF8String UTF16to8(std::u16string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t character = text[i];
    const bool isPair = character >= 0xD800 && character < 0xDC00 && i + 1 < text.size() &&
                        text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000;
    if (isPair) character = 0x10000 + ((character - 0xD800) << 10) + (text[++i] - 0xDC00u);
    AppendUTF8(IsSurrogate(character) ? kReplacement : character, bytes);
  }
  return UTF8String(std::move(bytes));
}

UTF16String UTF8to16(std::string_view bytes) {
  UTF16String text;
  while (!bytes.empty()) {
    const char32_t character = TakeCharacter(bytes);
    if (character < 0x10000) {
      text += static_cast<char16_t>(character);
    } else {
      text += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
      text += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
    }
  }
  return text;
}

}  // namespace utility

iUTF16StringStream::iUTF16StringStream(const UTF16String& text)
    : mRest(utility::UTF16to8(text).data()) {}

iUTF16StringStream& iUTF16StringStream::operator>>(std::int32_t& value) {
  if (!mIsGood) return *this;
  value = 0;
  const std::size_t begin = std::min(mRest.find_first_not_of(" \t\n\v\f\r"), mRest.size());
  const std::size_t sign = mRest.compare(begin, 1, "+") == 0 ? 1 : 0;
  const char* const end = mRest.data() + mRest.size();
  const auto [rest, error] = std::from_chars(mRest.data() + begin + sign, end, value);
  mIsGood = error == std::errc();
  mRest.erase(0, static_cast<std::size_t>(rest - mRest.data()));
  return *this;
}

}  // namespace zelcore
