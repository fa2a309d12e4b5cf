#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace xmptoolkit {

// The encodings that a packet may have.
enum class Encoding { kUTF8, kUTF16Big, kUTF16Little, kUTF32Big, kUTF32Little };

// Bytes of a code unit: 1, 2 or 4.
std::size_t UnitSize(Encoding encoding);

// The encoding of XML text that begins here, from its byte-order mark or else from where the zero
// bytes of its first character stand. `markSize` receives the size of the mark, 0 without one.
Encoding DetectEncoding(std::string_view bytes, std::size_t& markSize);

// UTF-8 text in another encoding, without byte-order mark. `text` must be well-formed.
std::string Encode(std::string text, Encoding encoding);

// Bytes as UTF-8 text. Reading stops in front of the first character that is malformed, which is
// not the case when `malformedAt` comes back as npos; else it is the byte where that character
// begins.
std::string Decode(std::string_view bytes, Encoding encoding, std::size_t& malformedAt);

}  // namespace xmptoolkit
