#pragma once

#include <cstddef>
#include <string_view>

#include <xmptoolkit/XMPTypes.h>
#include <xmptoolkit/packet/Encoding.h>
#include <zelcore/xml/Position.h>

// Where a packet is among the bytes of a file.
namespace xmptoolkit {

// Finds the packet by its wrapper: from the start of the header to the end of the last trailer.
// Without a wrapper it is the whole buffer except for a byte-order mark. Throws BadXMP for an
// incomplete wrapper.
XMP_PacketInfo FindPacket(std::string_view buffer);

// Leaves an XML declaration and surrounding white space out of a packet that FindPacket found
// without a wrapper; one with a wrapper stays as it is.
XMP_PacketInfo WithoutSurroundings(std::string_view buffer, XMP_PacketInfo packet);

// The place of the byte at `offset`. A byte-order mark at the start is not a character.
zelcore::xml::Position PositionAt(std::string_view buffer, std::size_t offset, Encoding encoding);

}  // namespace xmptoolkit
