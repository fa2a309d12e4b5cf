#include <functional>
#include <string>
#include <vector>

#include <xmptoolkit/XMP.h>
#include <xmptoolkit/XMPTree.h>
#include <zelstoryparser/SceneXMP.h>

#include "Support.h"

// The bytes of a packet: refused, or read, and then written and read again without any change.
namespace {

using fuzzing::Require;
using xmptoolkit::Equality;
using Meta = TXMPMeta<std::string>;

Meta Parse(std::string_view bytes) {
  return Meta(bytes.data(), static_cast<XMP_StringLen>(bytes.size()));
}
std::string Serialize(const Meta& meta, XMP_OptionBits options) {
  std::string packet;
  meta.SerializeToBuffer(&packet, options);
  return packet;
}

// Calls what may refuse; nothing but XMP_Error may come out of it.
bool IsAccepted(const std::function<void()>& call) {
  try {
    call();
    return true;
  } catch (const XMP_Error& error) {
    Require(*error.GetErrMsg() != '\0', "a refusal has a reason");
    return false;
  }
}

void TestRoundTrip(const Meta& meta, XMP_OptionBits options, Equality equality) {
  const std::string packet = Serialize(meta, options);
  const Meta again = Parse(packet);
  Require(AreEqual(again, meta, Equality::kMetadata), "a written packet reads as what it was");
  // Only writing gives each namespace a prefix of its own.
  Require(AreEqual(Parse(Serialize(again, options)), again, equality), "and stays in every detail");
  Require(Serialize(again, options) == packet, "writing again gives the same bytes");
  const XMP_PacketInfo place =
      TXMPUtils::LocatePacket(packet.data(), static_cast<XMP_StringLen>(packet.size()));
  Require(place.mOffset == 0 && place.mLength == packet.size(), "a written packet is found whole");
  Require(place.mEncoding == (options & kXMP_EncodingMask), "a packet's encoding is found");
}

void TestPlace(std::string_view bytes, const Meta* meta) {
  XMP_PacketInfo place;
  const auto size = static_cast<XMP_StringLen>(bytes.size());
  const bool isFound = IsAccepted([&] { place = TXMPUtils::LocatePacket(bytes.data(), size); });
  Require(isFound || meta == nullptr, "a packet that can be read is found");
  if (!isFound) return;
  Require(place.mOffset <= size && place.mLength <= size - place.mOffset, "a packet lies inside");
  if (meta == nullptr || !place.mHasWrapper) return;
  const Meta alone = Parse(bytes.substr(place.mOffset, place.mLength));
  Require(AreEqual(alone, *meta, Equality::kFile), "a packet alone is the same packet");
}

// The library's own operations on any metadata.
void TestScene(const Meta& meta) {
  Meta xmp(meta);
  std::vector<zelmetadata::Path> changed;
  const bool hadAny = zelstoryparser::HasAnyStoryRelatedMetadata(xmp);
  Require(AreEqual(xmp, meta, Equality::kFile), "looking changes nothing");
  const bool isDone = IsAccepted([&] {
    Require(zelstoryparser::ClearSceneMetadataFromXMP(xmp, changed).empty(),
            "what is there can be removed");
  });
  Require(!isDone || !zelstoryparser::HasAnyStoryRelatedMetadata(xmp), "clearing removes it all");
  Require(hadAny || !isDone || changed.size() >= 4, "the simple properties are reported");
  TestRoundTrip(xmp, 0, Equality::kFile);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view packet(reinterpret_cast<const char*>(bytes), size);
  Meta meta;
  meta.AppendArrayItem("http://www.w3.org/1999/02/22-rdf-syntax-ns#", "type",
                       kXMP_PropArrayIsOrdered, "kept");
  const Meta before(meta);
  const auto parse = [&] { meta.ParseFromBuffer(bytes, static_cast<XMP_StringLen>(size)); };
  const bool isRead = IsAccepted(parse);
  TestPlace(packet, isRead ? &meta : nullptr);
  if (!isRead) {
    Require(AreEqual(meta, before, Equality::kFile), "a refused packet changes nothing");
    return 0;
  }
  TestRoundTrip(meta, 0, Equality::kFile);
  TestRoundTrip(meta, kXMP_UseCompactFormat, Equality::kMetadata);
  constexpr XMP_OptionBits kWide[] = {kXMP_EncodeUTF16Big, kXMP_EncodeUTF16Little,
                                      kXMP_EncodeUTF32Big, kXMP_EncodeUTF32Little};
  TestRoundTrip(meta, kWide[size % 4] | kXMP_ReadOnlyPacket, Equality::kFile);
  Require(Serialize(Meta(meta), 0) == Serialize(meta, 0), "a copy is the same");
  TestScene(meta);
  return 0;
}
