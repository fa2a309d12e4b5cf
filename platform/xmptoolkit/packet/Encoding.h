#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <xmptoolkit/XMPTypes.h>

namespace xmptoolkit {

// The encodings that a packet may have. The values are those of the option bits.
enum class Encoding : XMP_OptionBits {
  kUTF8 = kXMP_EncodeUTF8,
  kUTF16Big = kXMP_EncodeUTF16Big,
  kUTF16Little = kXMP_EncodeUTF16Little,
  kUTF32Big = kXMP_EncodeUTF32Big,
  kUTF32Little = kXMP_EncodeUTF32Little,
};

// The encoding that option bits name; the other bits are ignored. Throws BadOptions when they name
// none.
Encoding EncodingOf(XMP_OptionBits options);

// Bytes of a code unit: 1, 2 or 4.
std::size_t UnitSize(Encoding encoding);

// The encoding of XML text that begins here, from its byte-order mark or else from the positions of
// the zero bytes in its first character. `markSize` receives the size of the mark, 0 without one.
Encoding DetectEncoding(std::string_view bytes, std::size_t& markSize);

// The value of the code unit at `position`, which must be inside `bytes`; kNoUnit when fewer bytes
// than a unit are left.
inline constexpr char32_t kNoUnit = 0xFFFFFFFF;
char32_t UnitAt(std::string_view bytes, std::size_t position, Encoding encoding);

// Converts UTF-8 text, which must be well-formed, without adding a byte-order mark.
std::string Encode(std::string text, Encoding encoding);

// Converts bytes to UTF-8 text, up to the first malformed character. `malformedAt` receives the
// byte where that character begins, npos when all are well-formed.
std::string Decode(std::string_view bytes, Encoding encoding, std::size_t& malformedAt);

}  // namespace xmptoolkit
