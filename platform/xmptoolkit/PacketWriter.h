#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <xmptoolkit/XMP.h>

#include "Document.h"

// A document as a packet.
namespace xmptoolkit {

// The arguments of TXMPMeta::SerializeToBuffer, which say what is refused.
struct PacketRequest {
  XMP_OptionBits mOptions = 0;
  std::size_t mPadding = 0;
  std::string_view mNewline;
  std::string_view mIndent;
  XMP_Index mBaseIndent = 0;
};

std::string WritePacket(const Document& document, const PacketRequest& request);

}  // namespace xmptoolkit
