#include <string>
#include <vector>

#include <zelstoryparser/SceneXMP.h>

#include "Packets.h"

// Parses the bytes of a packet. If they are accepted, writes and reads them again without any
// change.
namespace {

using fuzzing::Equality;
using fuzzing::IsAccepted;
using fuzzing::Meta;
using fuzzing::Require;
using fuzzing::RequireRoundTrip;

void TestPlace(std::string_view bytes, const Meta* meta) {
  XMP_PacketInfo place;
  const auto size = static_cast<XMP_StringLen>(bytes.size());
  if (!IsAccepted([&] { place = TXMPUtils::LocatePacket(bytes.data(), size); }))
    return Require(meta == nullptr, "a packet that can be read is found");
  Require(place.mOffset <= size && place.mLength <= size - place.mOffset, "a packet lies inside");
  if (meta == nullptr || !place.mHasWrapper) return;
  const Meta alone = fuzzing::Parse(bytes.substr(place.mOffset, place.mLength));
  Require(AreEqual(alone, *meta, Equality::kFile), "a packet alone is the same packet");
}

// Runs the library's operations on any metadata.
void TestScene(const Meta& meta) {
  Meta xmp(meta);
  std::vector<zelmetadata::Path> changed;
  zelstoryparser::HasAnyStoryRelatedMetadata(xmp);
  Require(AreEqual(xmp, meta, Equality::kFile), "looking changes nothing");
  const bool isDone = IsAccepted([&] {
    const auto error = zelstoryparser::ClearSceneMetadataFromXMP(xmp, changed);
    Require(error.empty(), "what is there can be removed");
  });
  const bool hasAny = zelstoryparser::HasAnyStoryRelatedMetadata(xmp);
  Require(!isDone || !hasAny, "clearing removes it all");
  RequireRoundTrip(xmp, 0, Equality::kFile);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const auto length = static_cast<XMP_StringLen>(size);
  Meta meta = fuzzing::Parse(
      "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description "
      "rdf:type='t'/></rdf:RDF>");
  const Meta before(meta);
  const bool isRead = IsAccepted([&] { meta.ParseFromBuffer(bytes, length); });
  TestPlace({reinterpret_cast<const char*>(bytes), size}, isRead ? &meta : nullptr);
  if (!isRead) {
    Require(AreEqual(meta, before, Equality::kFile), "a refused packet changes nothing");
    return 0;
  }
  constexpr XMP_OptionBits kWide[] = {kXMP_EncodeUTF16Big, kXMP_EncodeUTF16Little,
                                      kXMP_EncodeUTF32Big, kXMP_EncodeUTF32Little};
  RequireRoundTrip(meta, 0, Equality::kFile);
  RequireRoundTrip(meta, kWide[size % 4] | kXMP_ReadOnlyPacket, Equality::kFile);
  RequireRoundTrip(Meta(meta), 0, Equality::kFile);
  TestScene(meta);
  return 0;
}
