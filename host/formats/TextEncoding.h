#pragma once

#include <string>
#include <string_view>

namespace zelstoryhost {

// A plain text in UTF-8 or, as its byte-order mark or the zero bytes of its first character show,
// UTF-16, as UTF-8 without the mark, with a line feed at the end of each line (for CRLF, CR, LF).
// Throws Error, with line and column, where the bytes are no text: not well-formed, or a NUL.
std::string DecodeText(std::string_view bytes, const std::string& source);

}  // namespace zelstoryhost
