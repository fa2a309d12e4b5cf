#include "scenexmp/Vocabulary.h"

#include <array>
#include <utility>

#include <xmptoolkit/XMP.h>

namespace zelstoryparser {
namespace {

constexpr std::array<std::pair<const char*, const char*>, 3> kNamespaces{{
    {zelmetadata::kDynamicMediaSchemaURI, "xmpDM"},
    {zelmetadata::kDublinCoreSchemaURI, "dc"},
    {zelmetadata::kScriptSchemaURI, "xmpScript"},
}};

}  // namespace

void RegisterStoryNamespaces() {
  std::string registeredPrefix;
  for (const auto& [uri, prefix] : kNamespaces) {
    TXMPMeta<std::string>::RegisterNamespace(uri, prefix, &registeredPrefix);
  }
}

std::string ToolkitValue(const UTF16String& text) {
  const zelcore::UTF8String bytes = zelcore::utility::UTF16to8(text);
  return std::string(bytes.data(), bytes.size());
}

}  // namespace zelstoryparser
