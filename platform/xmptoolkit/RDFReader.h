#pragma once

#include <string_view>

#include "Document.h"

namespace xmptoolkit {

// Reads a packet out of a buffer that may hold other bytes around it. Throws XMP_Error with line
// and column of the buffer: BadXML, BadRDF, BadXMP or BadUnicode.
Document ReadPacket(std::string_view buffer);

}  // namespace xmptoolkit
