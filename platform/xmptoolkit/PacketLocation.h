#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <zelcore/xml/SAXDriver.h>

#include "Encoding.h"

// Where a packet lies among the bytes of a file.
namespace xmptoolkit {

// Where a packet lies, in bytes.
struct PacketRange {
  std::size_t mOffset = 0;
  std::size_t mLength = 0;
  Encoding mEncoding = Encoding::kUTF8;
  bool mHasWrapper = false;
  bool mIsReadOnly = false;
};

// Finds the packet by its wrapper: from the header to the end of the last trailer. Without a
// wrapper it is the whole buffer but for a byte-order mark. Throws BadXMP for a wrapper that is
// incomplete.
PacketRange FindPacket(std::string_view buffer);

// The same, but without a wrapper an XML declaration in front, and white space around, is no part
// of the packet either.
PacketRange LocatePacket(std::string_view buffer);

// True when text begins with an XML declaration.
bool BeginsWithDeclaration(std::string_view text);

// The place of the byte at `offset`. A byte-order mark at the start is no character.
zelcore::xml::Position PositionAt(std::string_view buffer, std::size_t offset, Encoding encoding);

// "line:column: ", as messages begin.
std::string Describe(const zelcore::xml::Position& position);

}  // namespace xmptoolkit
