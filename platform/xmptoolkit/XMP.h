#pragma once

#include <memory>
#include <string>

#include <xmptoolkit/XMPTypes.h>
#include <zelcore/Export.h>

// The XMP toolkit: metadata as ISO 16684-1 defines it, in memory and as RDF/XML packets. This is
// the one header to include. Values, names and packets are UTF-8.
//
// Names: a property is named by its schema's namespace URI and a path. The first step of the path
// is a property name, with or without prefix ("action", "xmpScript:action"). Further steps are
// array items, counted from 1 ("name[3]", "name[last()]"), struct fields, always with a prefix
// ("name[1]/prefix:field"), and qualifiers ("name[1]/?xml:lang"). Prefixes are those of the
// process-wide registry. Namespace URIs must be registered too, or be used by the object's own
// metadata, so that what was read can be looked up at once. Every operation refuses a step that
// does not fit the data, such as a field of a property that is not a struct; a step that fits but
// leads nowhere means that the property is absent.
//
// Errors: an operation that refuses its arguments throws XMP_Error, whose message says what was
// refused, and leaves the object unchanged. std::bad_alloc passes through.
//
// Threads: use an object on one thread at a time. Any number of threads may use the registry.

namespace xmptoolkit {
class Document;
struct DocumentAccess;
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

  // Registers a namespace for the whole process. `registeredPrefix`, unless null, receives the
  // prefix in force, without a colon. Registering the same pair again changes nothing. A URI that
  // is registered under another prefix keeps it; a prefix that belongs to another URI is made
  // unique by a number. Returns true when the suggested prefix is the one in force. Throws
  // BadSchema for an empty URI, for one with characters that XML cannot represent, and for XML's
  // own; throws BadParam for a prefix that is not an XML name without colon, or that begins with
  // "xml" in any case.
  static bool RegisterNamespace(const char* namespaceURI, const char* suggestedPrefix,
                                tStringObj* registeredPrefix);

  // Reads a property. Returns false, with both outputs untouched, when it is absent. `value` and
  // `options` may be null. The value of an array or a struct is empty.
  bool GetProperty(const char* schemaNS, const char* propName, tStringObj* value,
                   XMP_OptionBits* options) const;

  // Sets a simple property (options 0 or kXMP_PropValueIsURI), creating what the path lacks. With a
  // null value, creates an empty array or struct of the kind that the options name; an existing one
  // of that kind stays unchanged. Structs along the path are created too. Arrays are not: only
  // AppendArrayItem adds items, and setting an absent item throws BadIndex (BadXPath when the array
  // itself is absent).
  // Replacing a simple value keeps the property's qualifiers and position. Refused: a value for an
  // array or a struct, or with options that name one; a value that is not UTF-8 or contains a
  // character that XML cannot represent.
  void SetProperty(const char* schemaNS, const char* propName, const char* value,
                   XMP_OptionBits options = 0);
  void SetProperty(const char* schemaNS, const char* propName, const tStringObj& value,
                   XMP_OptionBits options = 0);

  // Returns whether there is such a property, item, field or qualifier, of whatever kind.
  bool DoesPropertyExist(const char* schemaNS, const char* propName) const;

  // Removes a property with everything below it. Does nothing when it is absent. A comment before
  // the property stays.
  void DeleteProperty(const char* schemaNS, const char* propName);

  // Returns the number of items of an array, 0 when it is absent. Throws BadXPath for a property
  // that is not an array.
  XMP_Index CountArrayItems(const char* schemaNS, const char* arrayName) const;

  // Appends one item to an array, in constant time. `arrayOptions` must name a kind of array when
  // the array is absent, and it is created as that kind; when it exists, they must be 0 or agree
  // with its kind. The item is simple with `itemValue`, or, with a null value, an empty array or
  // struct of the kind that `itemOptions` names.
  void AppendArrayItem(const char* schemaNS, const char* arrayName, XMP_OptionBits arrayOptions,
                       const char* itemValue, XMP_OptionBits itemOptions = 0);

  // Read and set a simple field of a struct, as GetProperty and SetProperty do with the path
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
  // the message, and leaves the object unchanged. Bytes around a packet wrapper are ignored, except
  // for an XML declaration at the start: the encoding that it names must be the packet's. The
  // registry stays unchanged: the packet's namespaces are found by their URIs, and are written
  // again under the packet's own prefixes.
  void ParseFromBuffer(const void* buffer, XMP_StringLen size);

  // Writes the metadata as RDF/XML into `rdfString`, replacing its content. The same metadata gives
  // the same bytes.
  //   options     kXMP_OmitPacketWrapper, kXMP_ReadOnlyPacket, kXMP_ExactPacketLength and one
  //               encoding. An encoding other than UTF-8 has its byte-order mark in the wrapper
  //               only, and is padded in whole characters.
  //   padding     The number of padding bytes before the trailer (spaces, with a newline every 100
  //               characters), 0 for the default of 2,048. Must be 0 when the wrapper is omitted or
  //               the packet is read-only, since these have no padding. With kXMP_ExactPacketLength
  //               it is the length of the whole packet in bytes instead, and the padding fills what
  //               remains; NoRoom is thrown when it is too short.
  //   newline     Ends each line; empty for a line feed. White space only.
  //   indent      Indents a line by one level; empty for one space. White space only.
  //   baseIndent  Levels, 0 to 100, that every line except the padding is indented by.
  // Throws BadOptions for options that are unknown or contradict each other, BadParam for the other
  // arguments, and BadXMP for metadata of more than 8,000 namespaces; `rdfString` is then
  // untouched.
  void SerializeToBuffer(tStringObj* rdfString, XMP_OptionBits options = 0,
                         XMP_StringLen padding = 0, const char* newline = "",
                         const char* indent = "", XMP_Index baseIndent = 0) const;

 private:
  friend struct xmptoolkit::DocumentAccess;  // for the toolkit's other operations

  std::unique_ptr<xmptoolkit::Document> mDocument;
};

extern template class TXMPMeta<std::string>;

// Helpers for paths and packets. Safe to call from any thread.
class ZELPLATFORM_API TXMPUtils {
 public:
  // Composes the path of an array's item into `fullPath`: arrayName[itemIndex], or
  // arrayName[last()] for kXMP_ArrayLastItem. Throws BadSchema for an unregistered schema, BadXPath
  // for a bad name and BadParam for an index below 1 that is not kXMP_ArrayLastItem.
  static void ComposeArrayItemPath(const char* schemaNS, const char* arrayName, XMP_Index itemIndex,
                                   std::string* fullPath);

  // Finds the packet in the bytes of a file: from the start of the wrapper's header to the end of
  // its trailer. Without a wrapper the packet is the whole buffer except for a byte-order mark, an
  // XML declaration and surrounding white space. The content of the packet is not examined. Throws
  // BadXMP for a header without a trailer, or a trailer that has neither end="w" nor end="r".
  static XMP_PacketInfo LocatePacket(const void* buffer, XMP_StringLen size);

  // Composes the bytes of a file with `metadata` in place of the packet that it holds now, into
  // `newFile`. All bytes around the packet stay; so do its encoding, its read-only mark and whether
  // it has a wrapper. The new packet has the length of the old one where the padding allows, and
  // the default padding where it does not; without a wrapper, or read-only, it has none. An XML
  // declaration of ASCII at the start of the file becomes one of UTF-8 of the same length, since
  // the new packet need not be ASCII.
  // The old packet is located, not read: read it with ParseFromBuffer to change it. What was
  // written may still be refused when it is read, such as a URI longer than the limit of a tag.
  // Throws as LocatePacket and SerializeToBuffer do, and BadParam for a null `newFile`; `newFile`
  // is then untouched.
  static void ReplacePacket(const void* file, XMP_StringLen size,
                            const TXMPMeta<std::string>& metadata, std::string* newFile);
};
