#include <stdexcept>
#include <string>

#include <zelmetadata/Path.h>
#include <zelmetadata/Schema.h>

namespace zelmetadata {
namespace {

PathRange RangeOf(std::vector<Path> paths) {
  auto shared = std::make_shared<const std::vector<Path>>(std::move(paths));
  const std::size_t count = shared->size();
  return {PathIterator(shared, 0), PathIterator(shared, count)};
}

// The fields of a path in the schema: those of a struct, or of an array's item.
std::span<const FieldShape> FieldsBelow(const Path& path) {
  if (path.Steps().size() != 1) return {};
  const PathStep& step = path.Steps().front();
  const PropertyShape* shape = FindPropertyShape(step.mNamespaceURI, step.mName);
  const bool isItem = step.mItem > 0;
  return shape == nullptr || shape->mIsArray != isItem ? std::span<const FieldShape>()
                                                       : shape->mFields;
}

}  // namespace

UTF8String Path::AsString() const {
  UTF8String text;
  for (const PathStep& step : mSteps) {
    if (!text.empty()) text += '/';
    const std::string_view prefix = PrefixForNamespace(step.mNamespaceURI);
    if (prefix.empty()) {
      text += '{' + step.mNamespaceURI + '}';
    } else {
      text.append(prefix) += ':';
    }
    text += step.mName;
    if (step.mItem > 0) text.append("[").append(std::to_string(step.mItem)).append("]");
  }
  return text;
}

Path PathForSchemaNameAndPropertyName(UTF8String schemaURI, UTF8String propertyName) {
  return Path({{std::move(schemaURI), std::move(propertyName), 0}});
}

Path CreatePathFromArrayItem(const Path& array, int index) {
  if (array.Steps().empty()) throw std::invalid_argument("an empty path has no items");
  if (index < 1) throw std::invalid_argument("array items are counted from 1");
  std::vector<PathStep> steps = array.Steps();
  steps.back().mItem = index;
  return Path(std::move(steps));
}

PathRange ChildPaths(const Path& path) {
  std::vector<Path> children;
  for (const FieldShape& field : FieldsBelow(path)) {
    std::vector<PathStep> steps = path.Steps();
    steps.push_back({UTF8String(field.mNamespaceURI), UTF8String(field.mName), 0});
    children.emplace_back(std::move(steps));
  }
  return RangeOf(std::move(children));
}

// No field in the schema has fields, so everything below a path is a leaf.
PathRange DescendantLeafPaths(const Path& path) {
  return ChildPaths(path);
}

}  // namespace zelmetadata
