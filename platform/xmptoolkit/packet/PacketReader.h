#pragma once

#include <string_view>

#include <xmptoolkit/model/Document.h>

namespace xmptoolkit {

// Reads the packet in a buffer that may hold other bytes around it. Throws XMP_Error with line and
// column in the buffer: BadXML, BadRDF, BadXMP or BadUnicode.
Document ReadPacket(std::string_view buffer);

}  // namespace xmptoolkit
