#pragma once

#include <string>

#include <xmptoolkit/XMP.h>
#include <xmptoolkit/XMPTree.h>

#include "Support.h"

// Helpers for the targets that read and write packets.
namespace fuzzing {

using Meta = TXMPMeta<std::string>;
using xmptoolkit::Equality;

inline Meta Parse(std::string_view bytes) {
  return Meta(bytes.data(), static_cast<XMP_StringLen>(bytes.size()));
}
inline std::string Serialize(const Meta& meta, XMP_OptionBits options = 0) {
  std::string packet;
  meta.SerializeToBuffer(&packet, options);
  return packet;
}

// Makes a call that the toolkit may refuse; it may throw nothing but XMP_Error.
template <typename Call>
bool IsAccepted(Call call) {
  try {
    call();
    return true;
  } catch (const XMP_Error& error) {
    Require(*error.GetErrMsg() != '\0', "a refusal has a reason");
    return false;
  }
}

inline void RequireRoundTrip(const Meta& meta, XMP_OptionBits options, Equality equality) {
  const std::string packet = Serialize(meta, options);
  const Meta again = Parse(packet);
  Require(AreEqual(again, meta, equality), "a packet that was written reads as what it was");
  Require(Serialize(again, options) == packet, "writing again gives the same bytes");
  const XMP_PacketInfo place =
      TXMPUtils::LocatePacket(packet.data(), static_cast<XMP_StringLen>(packet.size()));
  Require(place.mOffset == 0 && place.mLength == packet.size(), "a written packet is found whole");
  Require(place.mEncoding == (options & kXMP_EncodingMask), "its encoding is found");
}

}  // namespace fuzzing
