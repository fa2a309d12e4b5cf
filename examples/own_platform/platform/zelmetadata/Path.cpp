#include <iterator>

#include <zelmetadata/Path.h>

namespace zelmetadata {
namespace {

constexpr const char* kFields[] = {"/script:character", "/script:dialog"};

}  // namespace

Path PathIterator::operator*() const {
  return Path(mParent.AsString() + kFields[mPosition]);
}

Path PathForSchemaNameAndPropertyName(const zelcore::UTF8String& schemaURI,
                                      const zelcore::UTF8String& propertyName) {
  const bool isScript = schemaURI.c_str() == std::string(kScriptSchemaURI);
  return Path(std::string(isScript ? "script:" : "media:") + propertyName.c_str());
}

Path CreatePathFromArrayItem(const Path& array, int index) {
  return Path(array.AsString() + "[" + std::to_string(index) + "]");
}

std::pair<PathIterator, PathIterator> ChildPaths(const Path& path) {
  const std::size_t count = path.AsString().ends_with("]") ? std::size(kFields) : 0;
  return {PathIterator(path, 0), PathIterator(path, count)};
}

std::pair<PathIterator, PathIterator> DescendantLeafPaths(const Path& path) {
  return ChildPaths(path);
}

}  // namespace zelmetadata
