#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include <zelcore/Export.h>

// The toolkit's plain types: option bits, limits, errors, and where a packet is in a file. Include
// XMP.h, which includes this.

using XMP_OptionBits = std::uint32_t;
using XMP_Index = std::int32_t;
using XMP_StringLen = std::uint32_t;

// The form of a property, as it is set and received. A bit implies the more general ones: an
// ordered array is an array, alternatives are ordered, and alternatives by language are
// alternatives. What is set may leave the implied bits out; what is received has them all.
inline constexpr XMP_OptionBits kXMP_PropValueIsURI = 0x2;          // the value is a URI
inline constexpr XMP_OptionBits kXMP_PropHasQualifiers = 0x10;      // received only
inline constexpr XMP_OptionBits kXMP_PropIsQualifier = 0x20;        // received only
inline constexpr XMP_OptionBits kXMP_PropHasLang = 0x40;            // received only
inline constexpr XMP_OptionBits kXMP_PropValueIsStruct = 0x100;     // has fields
inline constexpr XMP_OptionBits kXMP_PropValueIsArray = 0x200;      // unordered array (rdf:Bag)
inline constexpr XMP_OptionBits kXMP_PropArrayIsOrdered = 0x400;    // ordered array (rdf:Seq)
inline constexpr XMP_OptionBits kXMP_PropArrayIsAlternate = 0x800;  // alternatives (rdf:Alt)
inline constexpr XMP_OptionBits kXMP_PropArrayIsAltText = 0x1000;   // alternatives by xml:lang

// The index that means an array's last item.
inline constexpr XMP_Index kXMP_ArrayLastItem = -1;

// Options of TXMPMeta::SerializeToBuffer.
inline constexpr XMP_OptionBits kXMP_OmitPacketWrapper = 0x10;
inline constexpr XMP_OptionBits kXMP_ReadOnlyPacket = 0x20;
inline constexpr XMP_OptionBits kXMP_ExactPacketLength = 0x200;  // `padding` is the whole length

// Encodings of a packet: options of SerializeToBuffer (at most one), and what LocatePacket finds.
inline constexpr XMP_OptionBits kXMP_EncodeUTF8 = 0;
inline constexpr XMP_OptionBits kXMP_EncodeUTF16Big = 2;
inline constexpr XMP_OptionBits kXMP_EncodeUTF16Little = 3;
inline constexpr XMP_OptionBits kXMP_EncodeUTF32Big = 4;
inline constexpr XMP_OptionBits kXMP_EncodeUTF32Little = 5;
inline constexpr XMP_OptionBits kXMP_EncodingMask = 7;

// How deep arrays, structs and qualifiers may nest, in a path and in a packet.
inline constexpr int kXMP_MaxNesting = 100;

// Where a packet is in a buffer, in bytes from its start.
struct XMP_PacketInfo {
  std::size_t mOffset = 0;
  std::size_t mLength = 0;
  XMP_OptionBits mEncoding = kXMP_EncodeUTF8;  // as an option of SerializeToBuffer
  bool mHasWrapper = false;
  bool mIsReadOnly = false;  // the trailer has end="r"
};

enum XMP_ErrorID : std::int32_t {
  kXMPErr_BadParam = 4,      // an argument that no call accepts, such as an index of 0
  kXMPErr_BadSchema = 101,   // an unknown namespace URI or prefix
  kXMPErr_BadXPath = 102,    // a malformed path, or one that does not fit the data
  kXMPErr_BadOptions = 103,  // option bits that contradict each other or the property
  kXMPErr_BadIndex = 104,    // an array index outside the array
  kXMPErr_NoRoom = 110,      // a packet that does not fit into the requested length
  kXMPErr_BadXML = 201,      // a packet that is not well-formed XML
  kXMPErr_BadRDF = 202,      // RDF that XMP does not allow
  kXMPErr_BadXMP = 203,      // several subjects, nesting or namespaces beyond a limit, a DOCTYPE
  kXMPErr_BadUnicode = 205,  // bytes that are not UTF-8, or characters that XML cannot represent
};

// The exception that every refused operation throws.
class ZELPLATFORM_API XMP_Error : public std::runtime_error {
 public:
  // `message` is UTF-8 text: what was refused, and why.
  XMP_Error(XMP_ErrorID id, const std::string& message);
  XMP_Error(const XMP_Error&) = default;
  ~XMP_Error() override;

  XMP_ErrorID GetID() const noexcept { return mID; }

  // The message; it lives as long as this object.
  const char* GetErrMsg() const noexcept { return what(); }

 private:
  XMP_ErrorID mID;
};
