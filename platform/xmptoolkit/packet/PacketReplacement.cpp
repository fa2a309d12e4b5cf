#include <xmptoolkit/packet/PacketLocation.h>
#include <xmptoolkit/packet/PacketReplacement.h>
#include <xmptoolkit/packet/PacketWriter.h>
#include <xmptoolkit/packet/XMLDeclaration.h>

namespace xmptoolkit {

namespace {

// A packet in the form of the old one: its encoding, its wrapper and, if possible, its length.
std::string NewPacket(const Document& document, const XMP_PacketInfo& old) {
  PacketRequest request;
  request.mOptions = old.mEncoding;
  if (!old.mHasWrapper) {
    request.mOptions |= kXMP_OmitPacketWrapper;
    std::string packet = WritePacket(document, request);
    // The white space after the old packet has the last line end already.
    packet.resize(packet.size() - UnitSize(EncodingOf(old.mEncoding)));
    return packet;
  }
  if (old.mIsReadOnly) {
    request.mOptions |= kXMP_ReadOnlyPacket;
    return WritePacket(document, request);
  }
  try {
    PacketRequest exact = request;
    exact.mOptions |= kXMP_ExactPacketLength;
    exact.mPadding = old.mLength;
    return WritePacket(document, exact);
  } catch (const XMP_Error& error) {
    if (error.GetID() != kXMPErr_NoRoom) throw;
    return WritePacket(document, request);
  }
}

// The new packet is not ASCII, whatever the old one was.
void CorrectDeclaration(std::string& front) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  const std::size_t start = front.starts_with(kMark) ? kMark.size() : 0;
  std::string text = front.substr(start);
  if (!IsASCIIName(DeclaredEncoding(text))) return;
  DeclareUTF8(text);
  front.resize(start);
  front += text;
}

}  // namespace

std::string ReplacePacket(std::string_view file, const Document& document) {
  const XMP_PacketInfo old = WithoutSurroundings(file, FindPacket(file));
  std::string bytes(file.substr(0, old.mOffset));
  CorrectDeclaration(bytes);
  bytes += NewPacket(document, old);
  bytes += file.substr(old.mOffset + old.mLength);
  return bytes;
}

}  // namespace xmptoolkit
