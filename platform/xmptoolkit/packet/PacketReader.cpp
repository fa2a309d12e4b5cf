#include <string>

#include <xmptoolkit/model/Text.h>
#include <xmptoolkit/packet/PacketLocation.h>
#include <xmptoolkit/packet/PacketReader.h>
#include <xmptoolkit/packet/XMLDeclaration.h>
#include <xmptoolkit/rdf/RDFReader.h>

namespace xmptoolkit {

namespace {

constexpr std::size_t npos = std::string_view::npos;

// What precedes a wrapper, if it begins with an XML declaration in the encoding of the packet.
std::string DeclarationBefore(std::string_view buffer, const XMP_PacketInfo& packet) {
  const Encoding encoding = EncodingOf(packet.mEncoding);
  const auto [form, markSize] = zelcore::xml::DetectForm(buffer);
  if (form != encoding || packet.mOffset < markSize) return {};
  const std::string_view before = buffer.substr(markSize, packet.mOffset - markSize);
  if (!before.starts_with(Encode("<?xml", encoding))) return {};
  std::size_t malformedAt = npos;
  return Decode(before, encoding, malformedAt);
}

// `front` is what begins with the declaration: the text of the packet, or what precedes its
// wrapper.
void CheckDeclaration(std::string_view front, Encoding encoding, std::string_view packetText) {
  const std::string_view name = DeclaredEncoding(front);
  if (name.data() == nullptr || MayDeclare(name, encoding, packetText)) return;
  const auto offset = static_cast<std::size_t>(name.data() - front.data());
  throw XMP_Error(kXMPErr_BadXML,
                  Describe(PositionAt(front, offset, Encoding::kUTF8)) + "the encoding " +
                      Quoted(name) +
                      " is declared, which the bytes do not have or no packet may have");
}

std::string DecodePacket(std::string_view buffer, const XMP_PacketInfo& packet) {
  const Encoding encoding = EncodingOf(packet.mEncoding);
  std::size_t malformedAt = npos;
  std::string text = Decode(buffer.substr(packet.mOffset, packet.mLength), encoding, malformedAt);
  if (malformedAt == npos) return text;
  throw XMP_Error(kXMPErr_BadUnicode,
                  Describe(PositionAt(buffer, packet.mOffset + malformedAt, encoding)) +
                      "the bytes are not text in their encoding");
}

}  // namespace

Document ReadPacket(std::string_view buffer) {
  if (buffer.empty()) throw XMP_Error(kXMPErr_BadXML, "1:1: the buffer is empty");
  const XMP_PacketInfo packet = FindPacket(buffer);
  const Encoding encoding = EncodingOf(packet.mEncoding);
  std::string text = DecodePacket(buffer, packet);
  if (packet.mHasWrapper) {
    CheckDeclaration(DeclarationBefore(buffer, packet), encoding, text);
  } else {
    CheckDeclaration(text, encoding, text);
  }
  DeclareUTF8(text);  // as it is by now, whatever the file had been

  RDFReader reader(PositionAt(buffer, packet.mOffset, encoding), packet.mHasWrapper);
  return reader.Read(text);
}

}  // namespace xmptoolkit
