#pragma once

#include "../../../../platform/xmptoolkit/XMP.h"

// A toolkit whose nth call fails. Found in place of the real one, it shadows the toolkit's names
// inside the library's namespace, so that the library's own sources, compiled again, call it.
namespace faultytoolkit {

inline int callsLeft = -1;  // calls that succeed before one is refused; below 0: none is
inline bool refusesNamespaces = false;
inline std::string calls;  // all calls with their arguments, without namespaces, one a line

template <typename Argument>
std::string Shown(const Argument& argument) {
  if constexpr (std::is_integral_v<Argument>)
    return " " + std::to_string(argument);
  else if constexpr (std::is_same_v<Argument, std::string>)
    return " '" + argument + "'";
  else if constexpr (std::is_null_pointer_v<Argument>)
    return " null";
  else if constexpr (!std::is_convertible_v<Argument, std::string>)
    return "";  // for an outcome
  else
    return std::string_view(argument).starts_with("http:") ? "" : std::string(" ") + argument;
}

template <typename... Arguments>
void Call(const char* name, const Arguments&... arguments) {
  calls += (std::string(name) + ... + Shown(arguments)) + "\n";
  if (callsLeft-- == 0) throw XMP_Error(kXMPErr_BadParam, "refused by the test");
}

}  // namespace faultytoolkit

#define FAULTY(NAME, SHOWN, QUALIFIER)                 \
  template <typename... Arguments>                     \
  auto NAME(const Arguments&... arguments) QUALIFIER { \
    faultytoolkit::Call(SHOWN, arguments...);          \
    return Real::NAME(arguments...);                   \
  }

namespace zelstoryparser {

template <typename tStringObj>
class TXMPMeta : public ::TXMPMeta<tStringObj> {
  using Real = ::TXMPMeta<tStringObj>;

 public:
  TXMPMeta() { faultytoolkit::Call("create"); }
  explicit TXMPMeta(Real metadata) : Real(std::move(metadata)) {}
  template <typename... Arguments>
  static bool RegisterNamespace(const Arguments&... arguments) {
    if (faultytoolkit::refusesNamespaces) throw XMP_Error(kXMPErr_BadSchema, "refused by the test");
    return Real::RegisterNamespace(arguments...);
  }
  FAULTY(GetProperty, "get", const)
  FAULTY(SetProperty, "set", )
  FAULTY(DoesPropertyExist, "exists", const)
  FAULTY(DeleteProperty, "delete", )
  FAULTY(CountArrayItems, "count", const)
  FAULTY(AppendArrayItem, "append", )
  FAULTY(GetStructField, "get", const)
  FAULTY(SetStructField, "set", )
  FAULTY(SerializeToBuffer, "serialize", const)
};

struct TXMPUtils {
  template <typename... Arguments>
  static void ComposeArrayItemPath(const Arguments&... arguments) {
    faultytoolkit::Call("compose", arguments...);
    ::TXMPUtils::ComposeArrayItemPath(arguments...);
  }
};

}  // namespace zelstoryparser
