#pragma once

#include "../../../../platform/xmptoolkit/XMP.h"

// A toolkit whose nth call fails. Found in place of the real one, it shadows the toolkit's names
// inside the library's namespace, so that the library's own sources, compiled again, call it.
namespace faultytoolkit {

inline int callsLeft = -1;  // calls that succeed before one is refused; below 0: none is
inline std::string calls;   // all calls with their arguments, one a line
inline std::string Name(const char* name) {
  return std::string(" ") + name;
}

inline void Call(const std::string& call) {
  calls += call + "\n";
  if (callsLeft-- == 0) throw XMP_Error(kXMPErr_BadParam, "refused by the test");
}

}  // namespace faultytoolkit

namespace zelstoryparser {

using faultytoolkit::Call;
using faultytoolkit::Name;

template <typename tStringObj>
class TXMPMeta : public ::TXMPMeta<tStringObj> {
  using Real = ::TXMPMeta<tStringObj>;

 public:
  TXMPMeta() { Call("create"); }
  explicit TXMPMeta(Real metadata) : Real(std::move(metadata)) {}

  static bool RegisterNamespace(const char* uri, const char* prefix, tStringObj* registered) {
    Call("register" + Name(prefix));
    return Real::RegisterNamespace(uri, prefix, registered);
  }
  bool GetProperty(const char* uri, const char* name, tStringObj* value,
                   XMP_OptionBits* bits) const {
    Call("get" + Name(name));
    return Real::GetProperty(uri, name, value, bits);
  }
  void SetProperty(const char* uri, const char* name, const tStringObj& value,
                   XMP_OptionBits bits) {
    Call("set" + Name(name) + " '" + value + "' " + std::to_string(bits));
    Real::SetProperty(uri, name, value, bits);
  }
  bool DoesPropertyExist(const char* uri, const char* name) const {
    Call("exists" + Name(name));
    return Real::DoesPropertyExist(uri, name);
  }
  void DeleteProperty(const char* uri, const char* name) {
    Call("delete" + Name(name));
    Real::DeleteProperty(uri, name);
  }
  XMP_Index CountArrayItems(const char* uri, const char* name) const {
    Call("count" + Name(name));
    return Real::CountArrayItems(uri, name);
  }
  void AppendArrayItem(const char* uri, const char* name, XMP_OptionBits arrayBits,
                       const char* value, XMP_OptionBits itemBits) {
    Call("append" + Name(name) + Name(value == nullptr ? "null " : "text ") +
         std::to_string(arrayBits) + " " + std::to_string(itemBits));
    Real::AppendArrayItem(uri, name, arrayBits, value, itemBits);
  }
  bool GetStructField(const char* uri, const char* name, const char* fieldURI, const char* field,
                      tStringObj* value, XMP_OptionBits* bits) const {
    Call("get" + Name(name) + Name(field));
    return Real::GetStructField(uri, name, fieldURI, field, value, bits);
  }
  void SetStructField(const char* uri, const char* name, const char* fieldURI, const char* field,
                      const tStringObj& value, XMP_OptionBits bits) {
    Call("set" + Name(name) + Name(field) + " '" + value + "' " + std::to_string(bits));
    Real::SetStructField(uri, name, fieldURI, field, value, bits);
  }
  void SerializeToBuffer(tStringObj* packet, XMP_OptionBits bits, XMP_StringLen padding,
                         const char* newline, const char* indent, XMP_Index baseIndent) const {
    Call("serialize " + std::to_string(bits) + " " + std::to_string(padding) + " '" + newline +
         "' '" + indent + "' " + std::to_string(baseIndent));
    Real::SerializeToBuffer(packet, bits, padding, newline, indent, baseIndent);
  }
};

struct TXMPUtils {
  static void ComposeArrayItemPath(const char* uri, const char* name, XMP_Index index,
                                   std::string* path) {
    Call("compose" + Name(name) + " " + std::to_string(index));
    ::TXMPUtils::ComposeArrayItemPath(uri, name, index, path);
  }
};

}  // namespace zelstoryparser
