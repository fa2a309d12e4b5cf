#pragma once

#include <span>
#include <string_view>

// What the host knows about its metadata: the usual prefixes of the namespaces, and the shapes of
// the story properties. Constant tables; internal to the metadata library.
namespace zelmetadata {

// A field of a struct.
struct FieldShape {
  std::string_view mNamespaceURI;
  std::string_view mName;
};

// A property with fields: a struct, or an array whose items are structs.
struct PropertyShape {
  std::string_view mNamespaceURI;
  std::string_view mName;
  bool mIsArray;
  std::span<const FieldShape> mFields;
};

// The usual prefix of a namespace; empty when the schema does not know it.
std::string_view PrefixForNamespace(std::string_view namespaceURI);

// The shape of a top-level property; null when it has no fields or is not known.
const PropertyShape* FindPropertyShape(std::string_view namespaceURI, std::string_view name);

}  // namespace zelmetadata
