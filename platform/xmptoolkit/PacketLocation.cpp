#include "PacketLocation.h"

#include <algorithm>

#include <xmptoolkit/XMP.h>

#include "Text.h"

namespace xmptoolkit {

namespace {

constexpr std::string_view kHeader = "<?xpacket begin=";
constexpr std::string_view kTrailer = "<?xpacket end=";
constexpr std::string_view kMarkupEnd = "?>";
constexpr std::string_view kWhiteSpace = " \t\n\r";

constexpr std::size_t npos = std::string_view::npos;

// Finds encoded text; only where a character of the packet can begin.
std::size_t FindLast(std::string_view bytes, std::string_view text, Encoding encoding,
                     std::size_t first) {
  const std::string wanted = Encode(std::string(text), encoding);
  std::size_t found = bytes.rfind(wanted);
  while (found != npos && found >= first && (found - first) % UnitSize(encoding) != 0) {
    found = found == 0 ? npos : bytes.rfind(wanted, found - 1);
  }
  return found == npos || found < first ? npos : found;
}

// Where the header begins, and in which encoding. In wide encodings the byte-order mark that it
// holds tells the byte order: the letters alone could be read in either, one byte further on.
std::size_t FindHeader(std::string_view bytes, Encoding& encoding) {
  encoding = Encoding::kUTF8;
  if (const std::size_t found = bytes.find(kHeader); found != npos) return found;
  for (const Encoding wide :
       {Encoding::kUTF32Big, Encoding::kUTF32Little, Encoding::kUTF16Big, Encoding::kUTF16Little}) {
    for (const std::string_view mark : {"\"\xEF\xBB\xBF\"", "'\xEF\xBB\xBF'"}) {
      encoding = wide;
      const std::size_t found = bytes.find(Encode(std::string(kHeader).append(mark), wide));
      if (found != npos) return found;
    }
  }
  return npos;
}

[[noreturn]] void RefuseWrapper(std::string_view buffer, std::size_t offset, Encoding encoding,
                                const std::string& why) {
  throw XMP_Error(kXMPErr_BadXMP, Describe(PositionAt(buffer, offset, encoding)) + why);
}

// Reads the trailer at `start`: sets the end of the packet and whether it is read-only.
void ReadTrailer(std::string_view buffer, std::size_t start, PacketRange& range) {
  const std::size_t unit = UnitSize(range.mEncoding);
  const std::size_t longest = std::min(buffer.size() - start, std::size_t{200});
  std::size_t malformedAt = npos;
  const std::string text =
      Decode(buffer.substr(start, longest - longest % unit), range.mEncoding, malformedAt);
  const std::size_t end = text.find(kMarkupEnd);
  if (end == npos) RefuseWrapper(buffer, start, range.mEncoding, "the trailer has no end");
  const std::string_view value =
      std::string_view(text).substr(kTrailer.size(), end - kTrailer.size());
  const bool isQuoted = value.size() >= 3 && (value[0] == '"' || value[0] == '\'') &&
                        value[2] == value[0] && IsWhiteSpace(value.substr(3));
  if (!isQuoted || (value[1] != 'w' && value[1] != 'r')) {
    RefuseWrapper(buffer, start, range.mEncoding,
                  "the trailer says neither end=\"w\" nor end=\"r\"");
  }
  range.mIsReadOnly = value[1] == 'r';
  range.mLength = start + (end + kMarkupEnd.size()) * unit - range.mOffset;
}

}  // namespace

PacketRange FindPacket(std::string_view buffer) {
  PacketRange range;
  const std::size_t header = FindHeader(buffer, range.mEncoding);
  if (header == npos) {
    range.mEncoding = DetectEncoding(buffer, range.mOffset);
    range.mLength = buffer.size() - range.mOffset;
    return range;
  }
  range.mOffset = header;
  range.mHasWrapper = true;
  const std::size_t trailer = FindLast(buffer, kTrailer, range.mEncoding, header);
  if (trailer == npos) {
    RefuseWrapper(buffer, header, range.mEncoding,
                  "the packet has no trailer <?xpacket end=\"w\"?>");
  }
  ReadTrailer(buffer, trailer, range);
  return range;
}

PacketRange LocatePacket(std::string_view buffer) {
  PacketRange range = FindPacket(buffer);
  if (range.mHasWrapper) return range;
  std::size_t malformedAt = npos;
  const std::string text =
      Decode(buffer.substr(range.mOffset, range.mLength), range.mEncoding, malformedAt);
  if (malformedAt != npos) return range;
  std::size_t begin = 0;
  if (BeginsWithDeclaration(text)) {
    const std::size_t end = text.find(kMarkupEnd);
    if (end != npos) begin = end + kMarkupEnd.size();
  }
  begin = std::min(text.find_first_not_of(kWhiteSpace, begin), text.size());
  const std::size_t end = text.find_last_not_of(kWhiteSpace) + 1;
  const std::size_t behind = end > begin ? text.size() - end : 0;
  // A declaration and white space are ASCII, so that they have as many units as bytes here.
  const std::size_t unit = UnitSize(range.mEncoding);
  range.mOffset += begin * unit;
  range.mLength -= (begin + behind) * unit;
  return range;
}

bool BeginsWithDeclaration(std::string_view text) {
  constexpr std::string_view kStart = "<?xml";
  return text.starts_with(kStart) && text.find_first_of(kWhiteSpace) == kStart.size();
}

zelcore::xml::Position PositionAt(std::string_view buffer, std::size_t offset, Encoding encoding) {
  zelcore::xml::Position position;
  const std::size_t unit = UnitSize(encoding);
  const bool isBig = encoding == Encoding::kUTF16Big || encoding == Encoding::kUTF32Big;
  std::size_t markSize = 0;
  if (DetectEncoding(buffer, markSize) != encoding) markSize = 0;
  for (std::size_t i = markSize; i + unit <= offset; i += unit) {
    // The two low bytes of a unit tell line feeds, continuation bytes and second surrogates.
    const auto byte = [&](std::size_t rank) {
      return static_cast<unsigned char>(buffer[i + (isBig ? unit - 1 - rank : rank)]);
    };
    const unsigned low = unit == 1 ? byte(0) : byte(0) | static_cast<unsigned>(byte(1) << 8);
    if (low == '\n') {
      ++position.mLine;
      position.mColumn = 1;
    } else if (unit == 1 ? (low & 0xC0) != 0x80 : unit == 4 || (low & 0xFC00) != 0xDC00) {
      ++position.mColumn;
    }
  }
  return position;
}

std::string Describe(const zelcore::xml::Position& position) {
  return std::to_string(position.mLine) + ":" + std::to_string(position.mColumn) + ": ";
}

}  // namespace xmptoolkit
