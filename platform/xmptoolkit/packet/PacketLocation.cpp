#include <algorithm>
#include <string>

#include <xmptoolkit/model/Text.h>
#include <xmptoolkit/packet/PacketLocation.h>
#include <xmptoolkit/packet/XMLDeclaration.h>

namespace xmptoolkit {

namespace {

constexpr std::string_view kHeaderStart = "<?xpacket begin=";
constexpr std::string_view kTrailer = "<?xpacket end=";
constexpr std::string_view kMarkupEnd = "?>";
constexpr std::string_view kWhiteSpace = " \t\n\r";

constexpr std::size_t npos = std::string_view::npos;

// Finds the last occurrence of encoded text, at a whole number of code units after `first`.
std::size_t FindLast(std::string_view bytes, std::string_view text, Encoding encoding,
                     std::size_t first) {
  const std::string wanted = Encode(std::string(text), encoding);
  std::size_t found = bytes.rfind(wanted);
  while (found != npos && found >= first && (found - first) % UnitSize(encoding) != 0) {
    found = found == 0 ? npos : bytes.rfind(wanted, found - 1);
  }
  return found == npos || found < first ? npos : found;
}

// Finds encoded text by its first byte that is not zero: files may hold long runs of zeros.
std::size_t FindFirst(std::string_view bytes, const std::string& encoded) {
  const std::size_t zeros = encoded.find_first_not_of('\0');
  std::size_t found = bytes.find(encoded.c_str() + zeros, zeros, encoded.size() - zeros);
  while (found != npos && !bytes.substr(found - zeros).starts_with(encoded)) {
    found = bytes.find(encoded.c_str() + zeros, found + 1, encoded.size() - zeros);
  }
  return found == npos ? npos : found - zeros;
}

// Where the header begins, and in which encoding. In a wide encoding only the byte-order mark in
// the header settles the byte order: one byte further on, the letters alone fit the other order.
std::size_t FindHeader(std::string_view bytes, Encoding& encoding) {
  encoding = Encoding::kUTF8;
  if (const std::size_t found = bytes.find(kHeaderStart); found != npos) return found;
  for (const Encoding wide :
       {Encoding::kUTF32Big, Encoding::kUTF32Little, Encoding::kUTF16Big, Encoding::kUTF16Little}) {
    for (const std::string_view mark : {"\"\xEF\xBB\xBF\"", "'\xEF\xBB\xBF'"}) {
      encoding = wide;
      const std::size_t found =
          FindFirst(bytes, Encode(std::string(kHeaderStart).append(mark), wide));
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
void ReadTrailer(std::string_view buffer, std::size_t start, Encoding encoding,
                 XMP_PacketInfo& packet) {
  const std::size_t unit = UnitSize(encoding);
  const std::size_t longest = std::min(buffer.size() - start, std::size_t{200});
  std::size_t malformedAt = npos;
  const std::string text =
      Decode(buffer.substr(start, longest - longest % unit), encoding, malformedAt);
  const std::size_t end = text.find(kMarkupEnd);
  if (end == npos) RefuseWrapper(buffer, start, encoding, "the trailer has no end");
  const std::string_view value =
      std::string_view(text).substr(kTrailer.size(), end - kTrailer.size());
  const bool isQuoted = value.size() >= 3 && (value[0] == '"' || value[0] == '\'') &&
                        value[2] == value[0] && IsWhiteSpace(value.substr(3));
  if (!isQuoted || (value[1] != 'w' && value[1] != 'r')) {
    RefuseWrapper(buffer, start, encoding, "the trailer has neither end=\"w\" nor end=\"r\"");
  }
  packet.mIsReadOnly = value[1] == 'r';
  packet.mLength = start + (end + kMarkupEnd.size()) * unit - packet.mOffset;
}

// Of a character that several units make up, the first counts.
bool IsFirstUnit(char32_t value, std::size_t unitSize) {
  switch (unitSize) {
    case 1:
      return (value & 0xC0) != 0x80;  // not a continuation byte
    case 2:
      return (value & 0xFC00) != 0xDC00;  // not a second surrogate
    default:
      return true;
  }
}

}  // namespace

XMP_PacketInfo FindPacket(std::string_view buffer) {
  XMP_PacketInfo packet;
  Encoding encoding = Encoding::kUTF8;
  const std::size_t header = FindHeader(buffer, encoding);
  packet.mHasWrapper = header != npos;
  if (!packet.mHasWrapper) {
    const zelcore::xml::DetectedForm detected = zelcore::xml::DetectForm(buffer);
    packet.mEncoding = OptionsOf(detected.mForm);
    packet.mOffset = detected.mMarkBytes;
    packet.mLength = buffer.size() - packet.mOffset;
    return packet;
  }
  packet.mOffset = header;
  packet.mEncoding = OptionsOf(encoding);
  const std::size_t trailer = FindLast(buffer, kTrailer, encoding, header);
  if (trailer == npos) {
    RefuseWrapper(buffer, header, encoding, "the packet has no trailer <?xpacket end=\"w\"?>");
  }
  ReadTrailer(buffer, trailer, encoding, packet);
  return packet;
}

XMP_PacketInfo WithoutSurroundings(std::string_view buffer, XMP_PacketInfo packet) {
  if (packet.mHasWrapper) return packet;
  const Encoding encoding = EncodingOf(packet.mEncoding);
  std::size_t malformedAt = npos;
  const std::string text =
      Decode(buffer.substr(packet.mOffset, packet.mLength), encoding, malformedAt);
  if (malformedAt != npos) return packet;
  std::size_t begin = 0;
  if (BeginsWithDeclaration(text)) {
    const std::size_t end = text.find(kMarkupEnd);
    if (end != npos) begin = end + kMarkupEnd.size();
  }
  begin = std::min(text.find_first_not_of(kWhiteSpace, begin), text.size());
  const std::size_t end = text.find_last_not_of(kWhiteSpace) + 1;
  const std::size_t after = end > begin ? text.size() - end : 0;
  // A declaration and white space are ASCII, so they have as many code units as bytes here.
  const std::size_t unit = UnitSize(encoding);
  packet.mOffset += begin * unit;
  packet.mLength -= (begin + after) * unit;
  return packet;
}

zelcore::xml::Position PositionAt(std::string_view buffer, std::size_t offset, Encoding encoding) {
  zelcore::xml::Position position;
  const std::size_t unitSize = UnitSize(encoding);
  const zelcore::xml::DetectedForm detected = zelcore::xml::DetectForm(buffer);
  const std::size_t markSize = detected.mForm == encoding ? detected.mMarkBytes : 0;
  for (std::size_t i = markSize; i + unitSize <= offset; i += unitSize) {
    const char32_t value =
        unitSize == 1 ? static_cast<unsigned char>(buffer[i]) : UnitAt(buffer, i, encoding);
    if (value == '\n') {
      ++position.mLine;
      position.mColumn = 1;
    } else if (IsFirstUnit(value, unitSize)) {
      ++position.mColumn;
    }
  }
  return position;
}

}  // namespace xmptoolkit
