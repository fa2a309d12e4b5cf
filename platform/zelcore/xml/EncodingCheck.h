#pragma once

#include <optional>
#include <string_view>

#include <zelcore/xml/DocumentEncoding.h>
#include <zelcore/xml/SAXDriver.h>

namespace zelcore::xml {

// Compares the XML declaration of a document with what its first bytes have shown, and returns why
// the document must be refused, or nothing. `bytes` follow the byte-order mark; unless they are the
// `whole` document, they must hold all of the declaration. XML 1.0, 4.3.3, makes an error of a
// declaration that contradicts the bytes, and of UTF-16 and UTF-32 that nothing declares.
std::optional<SyntaxError> CheckEncoding(const DetectedForm& detected, std::string_view bytes,
                                         bool isWhole);

}  // namespace zelcore::xml
