#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <zelcore/Export.h>
#include <zelcore/SmallBlocks.h>

// The host's string types and the conversions between them. All functions are pure and may be
// called from any thread; the only error is std::bad_alloc.
namespace zelcore {

// A string of 16-bit UTF-16 code units. Sizes and positions count code units, not characters.
using UTF16String =
    std::basic_string<char16_t, std::char_traits<char16_t>, SmallBlockAllocator<char16_t>>;

// The 8-bit counterpart: sizes and positions count bytes. May become a type other than
// std::string, so copy its bytes where a std::string is wanted.
using UTF8String = std::string;

namespace utility {

// Widens ASCII text, one code unit per byte. A byte above 0x7F is not ASCII and becomes U+FFFD.
ZELPLATFORM_API UTF16String AsciiToUTF16(std::string_view ascii);

// Converts UTF-16 to UTF-8. A surrogate without its partner becomes U+FFFD.
ZELPLATFORM_API UTF8String UTF16to8(std::u16string_view text);

// Converts UTF-8 to UTF-16. Every maximal ill-formed part (a truncated sequence, a stray
// continuation byte, an overlong form, an encoded surrogate, a value above U+10FFFF) becomes one
// U+FFFD, as the Unicode standard recommends.
ZELPLATFORM_API UTF16String UTF8to16(std::string_view bytes);

// Appends the result of UTF8to16 to `text`.
ZELPLATFORM_API void AppendUTF8to16(std::string_view bytes, UTF16String& text);

// Compares two texts of bytes, such as UTF-8, without regard to the case of ASCII letters; all
// other bytes must be equal.
ZELPLATFORM_API bool EqualsIgnoringASCIICase(std::string_view left, std::string_view right);

}  // namespace utility

// Reads numbers from the front of a text, as an input stream does under the classic locale: leading
// white space (space, tab, line feed, vertical tab, form feed, carriage return) is skipped, then an
// optional sign and decimal digits are taken; reading stops at the first other code unit.
// Not safe for use by two threads at once.
class ZELPLATFORM_API iUTF16StringStream {
 public:
  // Starts at the first code unit of `text`; the stream is good.
  explicit iUTF16StringStream(UTF16String text);

  // Extracts a number. On success `value` is that number. When no digit is found, `value` becomes
  // 0; when the number does not fit into 32 bits, `value` becomes the nearest limit; in both cases
  // the stream has failed, and a failed stream extracts nothing more and leaves `value` alone.
  iUTF16StringStream& operator>>(std::int32_t& value);

  // False once an extraction has failed.
  explicit operator bool() const { return !mFailed; }

 private:
  UTF16String mText;
  std::size_t mPosition = 0;
  bool mFailed = false;
};

}  // namespace zelcore
