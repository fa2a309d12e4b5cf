#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <xmptoolkit/XMPTypes.h>
#include <xmptoolkit/model/Document.h>

namespace xmptoolkit {

// The arguments of TXMPMeta::SerializeToBuffer.
struct PacketRequest {
  XMP_OptionBits mOptions = 0;
  std::size_t mPadding = 0;
  std::string_view mNewline;
  std::string_view mIndent;
  XMP_Index mBaseIndent = 0;
};

// Writes a document as a packet; refuses what TXMPMeta::SerializeToBuffer refuses.
std::string WritePacket(const Document& document, const PacketRequest& request);

}  // namespace xmptoolkit
