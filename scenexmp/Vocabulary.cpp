#include "scenexmp/Vocabulary.h"

#include <array>
#include <type_traits>
#include <utility>

#include <xmptoolkit/XMP.h>

namespace zelstoryparser {
namespace {

constexpr std::array<std::pair<const char*, const char*>, 3> kNamespaces{{
    {zelmetadata::kDynamicMediaSchemaURI, "xmpDM"},
    {zelmetadata::kDublinCoreSchemaURI, "dc"},
    {zelmetadata::kScriptSchemaURI, "xmpScript"},
}};

// A host's 8-bit string type may differ from the toolkit's.
template <typename Bytes>
std::string ToolkitString(Bytes bytes) {
  if constexpr (std::is_same_v<Bytes, std::string>) {
    return bytes;
  } else {
    return std::string(bytes.data(), bytes.size());
  }
}

}  // namespace

void RegisterStoryNamespaces() {
  std::string registeredPrefix;
  for (const auto& [uri, prefix] : kNamespaces) {
    TXMPMeta<std::string>::RegisterNamespace(uri, prefix, &registeredPrefix);
  }
}

std::string ToolkitValue(const UTF16String& text) {
  return ToolkitString(zelcore::utility::UTF16to8(text));
}

}  // namespace zelstoryparser
