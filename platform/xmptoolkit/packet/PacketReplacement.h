#pragma once

#include <string>
#include <string_view>

#include <xmptoolkit/model/Document.h>

namespace xmptoolkit {

// The bytes of a file with `document` in place of the packet in it; as TXMPUtils::ReplacePacket.
std::string ReplacePacket(std::string_view file, const Document& document);

}  // namespace xmptoolkit
