#include <algorithm>
#include <array>
#include <utility>

#include <zelmetadata/Path.h>
#include <zelmetadata/Schema.h>

namespace zelmetadata {
namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 3> kPrefixes{{
    {kDynamicMediaSchemaURI, "xmpDM"},
    {kDublinCoreSchemaURI, "dc"},
    {kScriptSchemaURI, "xmpScript"},
}};

constexpr std::array<FieldShape, 2> kDialogFields{{
    {kScriptSchemaURI, "character"},
    {kScriptSchemaURI, "dialog"},
}};

constexpr std::array<FieldShape, 2> kDurationFields{{
    {kDynamicMediaSchemaURI, "scale"},
    {kDynamicMediaSchemaURI, "value"},
}};

constexpr std::array<PropertyShape, 2> kProperties{{
    {kScriptSchemaURI, "dialogSequence", true, kDialogFields},
    {kDynamicMediaSchemaURI, "duration", false, kDurationFields},
}};

}  // namespace

std::string_view PrefixForNamespace(std::string_view namespaceURI) {
  const auto known = std::find_if(kPrefixes.begin(), kPrefixes.end(),
                                  [&](const auto& entry) { return entry.first == namespaceURI; });
  return known == kPrefixes.end() ? std::string_view() : known->second;
}

const PropertyShape* FindPropertyShape(std::string_view namespaceURI, std::string_view name) {
  const auto known =
      std::find_if(kProperties.begin(), kProperties.end(), [&](const PropertyShape& shape) {
        return shape.mName == name && shape.mNamespaceURI == namespaceURI;
      });
  return known == kProperties.end() ? nullptr : &*known;
}

}  // namespace zelmetadata
