#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>

#include <zelcore/String.h>
#include <zelcore/UTF8.h>

namespace zelcore {
namespace {

constexpr char16_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(char16_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

char16_t* WriteUTF16(char32_t codePoint, char16_t* out) {
  if (codePoint < 0x10000) {
    *out++ = static_cast<char16_t>(codePoint);
    return out;
  }
  const char32_t offset = codePoint - 0x10000;
  *out++ = static_cast<char16_t>(0xD800 + (offset >> 10));
  *out++ = static_cast<char16_t>(0xDC00 + (offset & 0x3FF));
  return out;
}

bool IsASCII(char byte) {
  return static_cast<unsigned char>(byte) < 0x80;
}

// How many bytes in a word of memory precede the first that is not ASCII.
std::size_t CountASCII(std::uint64_t word) {
  const std::uint64_t others = word & 0x8080808080808080;
  const int bits = std::endian::native == std::endian::little ? std::countr_zero(others)
                                                              : std::countl_zero(others);
  return static_cast<std::size_t>(bits) / 8;
}

// Widens the ASCII characters at the beginning of `bytes` and returns how many there were. `out`
// has room for as many units as there are bytes. Most text is ASCII, which compilers turn into
// vector code in this form.
std::size_t WidenASCII(std::string_view bytes, char16_t* out) {
  constexpr std::size_t kBlock = 16;
  std::size_t i = 0;
  for (; i + kBlock <= bytes.size(); i += kBlock) {
    std::array<unsigned char, kBlock> block;
    std::memcpy(block.data(), bytes.data() + i, kBlock);
    std::array<std::uint64_t, 2> words;
    std::memcpy(words.data(), bytes.data() + i, kBlock);
    for (std::size_t k = 0; k < kBlock; ++k) out[i + k] = block[k];
    if (const std::size_t count = CountASCII(words[0]); count < 8) return i + count;
    if (const std::size_t count = CountASCII(words[1]); count < 8) return i + 8 + count;
  }
  for (; i < bytes.size() && IsASCII(bytes[i]); ++i) out[i] = static_cast<unsigned char>(bytes[i]);
  return i;
}

// The reverse. `out` has room for as many bytes as there are units.
std::size_t NarrowASCII(std::u16string_view text, char* out) {
  constexpr std::size_t kBlock = 8;
  std::size_t i = 0;
  for (; i + kBlock <= text.size(); i += kBlock) {
    std::array<char16_t, kBlock> block;
    std::memcpy(block.data(), text.data() + i, sizeof block);
    std::array<std::uint64_t, 2> words;
    std::memcpy(words.data(), text.data() + i, sizeof words);
    if (((words[0] | words[1]) & 0xFF80FF80FF80FF80) != 0) break;
    for (std::size_t k = 0; k < kBlock; ++k) out[i + k] = static_cast<char>(block[k]);
  }
  for (; i < text.size() && text[i] < 0x80; ++i) out[i] = static_cast<char>(text[i]);
  return i;
}

// At most how many bytes the text takes in UTF-8; a surrogate pair, counted as two units, takes
// fewer.
std::size_t MostUTF8Bytes(std::u16string_view text) {
  std::size_t count = text.size();
  // In blocks whose count fits 16 bits, so that compilers turn the loop into vector code.
  constexpr std::size_t kBlock = 1024;
  static_assert(2 * kBlock <= std::numeric_limits<std::uint16_t>::max());
  for (; !text.empty(); text.remove_prefix(std::min(kBlock, text.size()))) {
    std::uint16_t more = 0;
    for (const char16_t unit : text.substr(0, kBlock)) {
      more = static_cast<std::uint16_t>(more + (unit >= 0x80) + (unit >= 0x800));
    }
    count += more;
  }
  return count;
}

// Takes AppendUTF8's bytes.
struct ByteSink {
  char* mOut;
  void push_back(char byte) { *mOut++ = byte; }
};

bool IsSpace(char16_t unit) {
  return unit == u' ' || (unit >= u'\t' && unit <= u'\r');
}

}  // namespace

namespace utility {

UTF16String AsciiToUTF16(std::string_view ascii) {
  UTF16String text(ascii.size(), u'\0');
  std::transform(ascii.begin(), ascii.end(), text.begin(), [](char byte) {
    return IsASCII(byte) ? static_cast<char16_t>(byte) : kReplacement;
  });
  return text;
}

UTF8String UTF16to8(std::u16string_view text) {
  UTF8String bytes(MostUTF8Bytes(text), '\0');
  ByteSink sink{bytes.data()};
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t count = NarrowASCII(text.substr(i), sink.mOut);
    sink.mOut += count;
    i += count;
    if (i == text.size()) break;
    const char16_t unit = text[i];
    if (IsHighSurrogate(unit) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      const char32_t high = unit - 0xD800u;
      const char32_t low = text[++i] - 0xDC00u;
      AppendUTF8(0x10000 + (high << 10) + low, sink);
    } else {
      AppendUTF8(IsHighSurrogate(unit) || IsLowSurrogate(unit) ? kReplacement : unit, sink);
    }
  }
  bytes.resize(static_cast<std::size_t>(sink.mOut - bytes.data()));
  return bytes;
}

void AppendUTF8to16(std::string_view bytes, UTF16String& text) {
  const std::size_t before = text.size();
  text.resize(before + bytes.size());  // no character takes more units than bytes
  char16_t* out = text.data() + before;
  while (!bytes.empty()) {
    const std::size_t count = WidenASCII(bytes, out);
    out += count;
    bytes.remove_prefix(count);
    if (bytes.empty()) break;
    const DecodedUTF8 decoded = DecodeUTF8(bytes);
    out = WriteUTF16(decoded.mWellFormed ? decoded.mCharacter : kReplacement, out);
    bytes.remove_prefix(decoded.mBytes);
  }
  text.resize(static_cast<std::size_t>(out - text.data()));
}

UTF16String UTF8to16(std::string_view bytes) {
  UTF16String text;
  text.reserve(bytes.size());
  AppendUTF8to16(bytes, text);
  return text;
}

bool EqualsIgnoringASCIICase(std::string_view left, std::string_view right) {
  const auto fold = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c; };
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [fold](char a, char b) { return fold(a) == fold(b); });
}

}  // namespace utility

iUTF16StringStream::iUTF16StringStream(UTF16String text) : mText(std::move(text)) {}

iUTF16StringStream& iUTF16StringStream::operator>>(std::int32_t& value) {
  if (mFailed) return *this;
  const auto at = [this](std::size_t i) { return i < mText.size() ? mText[i] : u'\0'; };
  const auto isDigit = [&](std::size_t i) { return at(i) >= u'0' && at(i) <= u'9'; };
  while (IsSpace(at(mPosition))) ++mPosition;
  const bool negative = at(mPosition) == u'-';
  if (negative || at(mPosition) == u'+') ++mPosition;
  mFailed = !isDigit(mPosition);

  // A magnitude beyond the largest shows an overflow, however many digits follow.
  constexpr std::int64_t kBeyond = std::int64_t{1} << 32;
  std::int64_t magnitude = 0;
  for (; isDigit(mPosition); ++mPosition) {
    magnitude = std::min(magnitude * 10 + (at(mPosition) - u'0'), kBeyond);
  }
  const std::int64_t number = negative ? -magnitude : magnitude;
  const std::int64_t clamped = std::clamp<std::int64_t>(
      number, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max());
  mFailed = mFailed || clamped != number;
  value = static_cast<std::int32_t>(clamped);
  return *this;
}

}  // namespace zelcore
