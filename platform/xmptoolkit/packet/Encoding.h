#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <xmptoolkit/XMPTypes.h>
#include <zelcore/xml/DocumentEncoding.h>

namespace xmptoolkit {

// The encodings that a packet may have.
using Encoding = zelcore::xml::UnicodeForm;
using zelcore::xml::IsBigEndian;
using zelcore::xml::UnitSize;

// The encoding that option bits name; the other bits are ignored. Throws BadOptions when they name
// none.
Encoding EncodingOf(XMP_OptionBits options);

// The option bits that name an encoding.
XMP_OptionBits OptionsOf(Encoding encoding);

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
