#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include <zelcore/Export.h>

// The XMP toolkit: metadata as ISO 16684-1 defines it, in memory and as RDF/XML packets. This is
// the one header to include. Values, names and packets are UTF-8.
//
// Names: a property is named by its schema's namespace URI and a path. The path's first step is a
// property name, with or without prefix ("action", "xmpScript:action"); further steps are array
// items, counted from 1 ("name[3]", "name[last()]"), struct fields, always with a prefix
// ("name[1]/prefix:field"), and qualifiers ("name[1]/?xml:lang"). Prefixes are those of the
// process-wide registry; so are namespace URIs, but those that an object's own metadata uses are
// known to it, too, so that what was read can be asked for at once. A step that does not fit the
// data, such as a field of what is no struct, is refused by every operation; what a path leads to
// without being there is absent.
//
// Errors: every operation that refuses its arguments throws XMP_Error, whose message says what was
// refused, and leaves the object as it was. std::bad_alloc passes through.
//
// Threads: an object is used by one thread at a time; the registry by any number at once.

using XMP_OptionBits = std::uint32_t;
using XMP_Index = std::int32_t;
using XMP_StringLen = std::uint32_t;

// Forms of a property, as options that are set or received.
inline constexpr XMP_OptionBits kXMP_PropValueIsURI = 0x2;          // the value is a URI
inline constexpr XMP_OptionBits kXMP_PropHasQualifiers = 0x10;      // received only
inline constexpr XMP_OptionBits kXMP_PropIsQualifier = 0x20;        // received only
inline constexpr XMP_OptionBits kXMP_PropHasLang = 0x40;            // received only
inline constexpr XMP_OptionBits kXMP_PropValueIsStruct = 0x100;     // has fields
inline constexpr XMP_OptionBits kXMP_PropValueIsArray = 0x200;      // unordered array (rdf:Bag)
inline constexpr XMP_OptionBits kXMP_PropArrayIsOrdered = 0x400;    // ordered array (rdf:Seq)
inline constexpr XMP_OptionBits kXMP_PropArrayIsAlternate = 0x800;  // alternatives (rdf:Alt)
inline constexpr XMP_OptionBits kXMP_PropArrayIsAltText = 0x1000;   // alternatives by xml:lang

// An ordered array is an array, alternatives are ordered, and alternatives by language are
// alternatives: a bit stands for those above it too, in what is set; all are present in what is
// received.

// The index that means an array's last item.
inline constexpr XMP_Index kXMP_ArrayLastItem = -1;

// Options of TXMPMeta::SerializeToBuffer.
inline constexpr XMP_OptionBits kXMP_OmitPacketWrapper = 0x10;
inline constexpr XMP_OptionBits kXMP_ReadOnlyPacket = 0x20;
inline constexpr XMP_OptionBits kXMP_UseCompactFormat = 0x40;    // simple properties as attributes
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

enum XMP_ErrorID : std::int32_t {
  kXMPErr_BadParam = 4,      // an argument that no call could accept, such as an index of 0
  kXMPErr_BadSchema = 101,   // a namespace URI or prefix that is not known
  kXMPErr_BadXPath = 102,    // a path that cannot be read, or that does not fit the data
  kXMPErr_BadOptions = 103,  // option bits that contradict each other or the property
  kXMPErr_BadIndex = 104,    // an array index outside the array
  kXMPErr_NoRoom = 110,      // a packet that does not fit into the length that was asked for
  kXMPErr_BadXML = 201,      // a packet that is not well-formed XML
  kXMPErr_BadRDF = 202,      // RDF outside what XMP allows
  kXMPErr_BadXMP = 203,      // several subjects, nesting or namespaces beyond a limit, a DOCTYPE
  kXMPErr_BadUnicode = 205,  // bytes that are not UTF-8, or characters that XML cannot carry
};

// What every refused operation throws.
class ZELPLATFORM_API XMP_Error : public std::runtime_error {
 public:
  // `message` is UTF-8 text: what was refused, and why.
  XMP_Error(XMP_ErrorID id, const std::string& message);
  XMP_Error(const XMP_Error&) = default;
  ~XMP_Error() override;

  // What it was made of. The message lives as long as this object.
  XMP_ErrorID GetID() const noexcept { return mID; }
  const char* GetErrMsg() const noexcept { return what(); }

 private:
  XMP_ErrorID mID;
};

namespace xmptoolkit {
class Document;
struct TreeAccess;
}  // namespace xmptoolkit

// The metadata of one resource. Copies are deep. Only std::string is supported as tStringObj.
template <typename tStringObj>
class ZELPLATFORM_API TXMPMeta {
 public:
  TXMPMeta();                                        // no properties
  TXMPMeta(const void* buffer, XMP_StringLen size);  // as ParseFromBuffer
  TXMPMeta(const TXMPMeta& other);
  TXMPMeta(TXMPMeta&& other) noexcept;  // `other` may only be assigned or destroyed
  TXMPMeta& operator=(const TXMPMeta& other);
  TXMPMeta& operator=(TXMPMeta&& other) noexcept;
  ~TXMPMeta();

  // Makes a namespace known to the whole process. `registeredPrefix`, unless null, receives the
  // prefix in force, without a colon. The same pair again changes nothing. A URI that is known
  // under another prefix keeps that one; a prefix that is taken by another URI is made unique by a
  // number. Returns true when the suggested prefix is the one in force. Throws for an empty URI
  // (BadSchema) and for a prefix that is no XML name without colon, or that begins with "xml" in
  // any case (BadParam).
  static bool RegisterNamespace(const char* namespaceURI, const char* suggestedPrefix,
                                tStringObj* registeredPrefix);

  // Reads a property. Returns false, with both outputs untouched, when there is none. `value` and
  // `options` may be null. An array or a struct is found with an empty value.
  bool GetProperty(const char* schemaNS, const char* propName, tStringObj* value,
                   XMP_OptionBits* options) const;

  // Sets a simple property (options 0 or kXMP_PropValueIsURI), creating what the path lacks, or,
  // with a null value, creates an empty array or struct of the kind the options name; one of that
  // kind that is there already stays as it is. Structs on the way are created too, arrays are not:
  // items are appended by AppendArrayItem alone, and setting one that is not there throws BadIndex
  // (BadXPath where there is no array at all).
  // Replacing a simple value keeps the property's qualifiers and place. Refused: a value for an
  // array or a struct, for options that name one, or that is no UTF-8 or holds a character that XML
  // cannot carry.
  void SetProperty(const char* schemaNS, const char* propName, const char* value,
                   XMP_OptionBits options = 0);
  void SetProperty(const char* schemaNS, const char* propName, const tStringObj& value,
                   XMP_OptionBits options = 0);

  // True when there is such a property, item, field or qualifier, of whatever kind.
  bool DoesPropertyExist(const char* schemaNS, const char* propName) const;

  // Removes a property with all that lies below it. What is absent stays absent, without an error.
  // A comment in front of it stays where it was.
  void DeleteProperty(const char* schemaNS, const char* propName);

  // The number of items of an array; 0 when there is none. Throws BadXPath for what is no array.
  XMP_Index CountArrayItems(const char* schemaNS, const char* arrayName) const;

  // Appends one item to an array, in constant time. An absent array is created as `arrayOptions`
  // says, which must name an array; for a present one they must be 0 or agree with its kind. The
  // item is simple with `itemValue`, or, with a null value, of the kind that `itemOptions` names.
  void AppendArrayItem(const char* schemaNS, const char* arrayName, XMP_OptionBits arrayOptions,
                       const char* itemValue, XMP_OptionBits itemOptions = 0);

  // Reads, and sets, a simple field of a struct: as GetProperty and SetProperty with the path
  // structName/prefix:fieldName. Setting creates the struct when it is absent.
  bool GetStructField(const char* schemaNS, const char* structName, const char* fieldNS,
                      const char* fieldName, tStringObj* fieldValue, XMP_OptionBits* options) const;
  void SetStructField(const char* schemaNS, const char* structName, const char* fieldNS,
                      const char* fieldName, const char* fieldValue, XMP_OptionBits options = 0);
  void SetStructField(const char* schemaNS, const char* structName, const char* fieldNS,
                      const char* fieldName, const tStringObj& fieldValue,
                      XMP_OptionBits options = 0);

  // Replaces all metadata with that of a packet, with or without packet wrapper and x:xmpmeta, in
  // UTF-8, UTF-16 or UTF-32. Throws BadXML, BadRDF, BadXMP or BadUnicode with line and column in
  // the message, and leaves the object as it was. Bytes around a packet wrapper are not looked at,
  // but for an XML declaration at the start: an encoding that it names has to be the packet's. The
  // registry stays as it is: the packet's namespaces are known by their URIs, and are written again
  // under the packet's own prefixes.
  void ParseFromBuffer(const void* buffer, XMP_StringLen size);

  // Writes the metadata as RDF/XML into `rdfString`, replacing it. The same metadata gives the same
  // bytes. `padding` is the number of padding bytes in front of the trailer (spaces, with a newline
  // every 100 characters), 0 for the default of 2,048; it must be 0 when the wrapper is omitted or
  // the packet is read-only, which have none. With kXMP_ExactPacketLength it is the length of the
  // whole packet in bytes instead, and the padding is what remains, or NoRoom is thrown.
  // `newline` is put at line ends (empty: a line feed), `indent` for each level (empty: one space);
  // both must be white space. `baseIndent` levels, at most 100, stand in front of every line but
  // the padding's. An encoding other than UTF-8 has its byte-order mark in the wrapper only, and
  // takes padding in whole characters. The compact format writes simple properties and fields as
  // attributes (unless long or very many), so that they come before all others when read again.
  // Throws BadOptions for options without a meaning or that contradict each other, BadParam for the
  // other arguments, and BadXMP for metadata of more than 8,000 namespaces; `rdfString` is then
  // untouched.
  void SerializeToBuffer(tStringObj* rdfString, XMP_OptionBits options = 0,
                         XMP_StringLen padding = 0, const char* newline = "",
                         const char* indent = "", XMP_Index baseIndent = 0) const;

 private:
  friend struct xmptoolkit::TreeAccess;  // of XMPTree.h, which shows any metadata as a tree

  std::unique_ptr<xmptoolkit::Document> mDocument;
};

extern template class TXMPMeta<std::string>;

// Where a packet lies in a buffer, in bytes from its start.
struct XMP_PacketInfo {
  std::size_t mOffset = 0;
  std::size_t mLength = 0;
  XMP_OptionBits mEncoding = kXMP_EncodeUTF8;  // as an option of SerializeToBuffer
  bool mHasWrapper = false;
  bool mIsReadOnly = false;  // the trailer says end="r"
};

// Helpers around paths and packets. Safe to call from any thread.
class ZELPLATFORM_API TXMPUtils {
 public:
  // Composes the path of an array's item into `fullPath`: arrayName[itemIndex], or
  // arrayName[last()] for kXMP_ArrayLastItem. Throws BadSchema for an unregistered schema, BadXPath
  // for a bad name and BadParam for an index below 1 that is not kXMP_ArrayLastItem.
  static void ComposeArrayItemPath(const char* schemaNS, const char* arrayName, XMP_Index itemIndex,
                                   std::string* fullPath);

  // Finds the packet in the bytes of a file, so that what stands around it can be kept: from the
  // wrapper's header to the end of its trailer. Without a wrapper the packet is the whole buffer
  // but for a byte-order mark, an XML declaration and white space around. What lies between is not
  // looked at. Throws BadXMP for a header without a trailer, or a trailer that is neither "w" nor
  // "r".
  static XMP_PacketInfo LocatePacket(const void* buffer, XMP_StringLen size);
};
