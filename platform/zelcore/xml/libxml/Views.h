#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <libxml/xmlstring.h>

namespace zelcore::xml {

// libxml2's texts as the standard library's, and the other way round. A null text is an empty one.
inline std::string_view View(const xmlChar* text) {
  return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

inline std::string_view View(const xmlChar* begin, const xmlChar* end) {
  return {reinterpret_cast<const char*>(begin), static_cast<std::size_t>(end - begin)};
}

inline const xmlChar* Bytes(const std::string& text) {
  return reinterpret_cast<const xmlChar*>(text.c_str());
}

}  // namespace zelcore::xml
