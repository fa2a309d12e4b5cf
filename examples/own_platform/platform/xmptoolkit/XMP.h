#pragma once

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>

// A toolkit in memory. It keeps the metadata of one clip as a sorted list of paths and values, and
// does not support packets. The library calls what is declared here, and throws or catches
// XMP_Error.
using XMP_OptionBits = std::uint32_t;
using XMP_Index = std::int32_t;

inline constexpr XMP_OptionBits kXMP_PropValueIsStruct = 0x100;
inline constexpr XMP_OptionBits kXMP_PropArrayIsOrdered = 0x400;
inline constexpr XMP_Index kXMP_ArrayLastItem = -1;

struct XMP_Error : std::runtime_error {
  using std::runtime_error::runtime_error;
};

template <typename tStringObj>
class TXMPMeta {
 public:
  // Throws for a prefix that another namespace has.
  static bool RegisterNamespace(const char* namespaceURI, const char* prefix,
                                tStringObj* registered);

  bool GetProperty(const char* schema, const char* name, tStringObj* value,
                   XMP_OptionBits* options) const;
  void SetProperty(const char* schema, const char* name, const tStringObj& value, XMP_OptionBits);
  bool DoesPropertyExist(const char* schema, const char* name) const;
  void DeleteProperty(const char* schema, const char* name);
  XMP_Index CountArrayItems(const char* schema, const char* name) const;
  void AppendArrayItem(const char* schema, const char* name, XMP_OptionBits arrayOptions,
                       const char* value, XMP_OptionBits itemOptions);
  bool GetStructField(const char* schema, const char* structName, const char* fieldSchema,
                      const char* field, tStringObj* value, XMP_OptionBits* options) const;
  void SetStructField(const char* schema, const char* structName, const char* fieldSchema,
                      const char* field, const tStringObj& value, XMP_OptionBits options);

  // Writes one line per value. The arguments are for the layout of packets and are ignored.
  void SerializeToBuffer(tStringObj* text, XMP_OptionBits = 0, std::uint32_t = 0, const char* = "",
                         const char* = "", XMP_Index = 0) const;

 private:
  std::string Key(const char* schema, const std::string& path) const;

  std::map<std::string, tStringObj> mValues;     // script:dialogSequence[1]/script:character ...
  std::map<std::string, XMP_Index> mItemCounts;  // of arrays
};

extern template class TXMPMeta<std::string>;

struct TXMPUtils {
  static void ComposeArrayItemPath(const char* schema, const char* arrayName, XMP_Index index,
                                   std::string* path);
};
