#pragma once

#include <compare>
#include <cstddef>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include <zelcore/Export.h>
#include <zelcore/String.h>

// Metadata paths: how a host names a property, an array item or a struct field of a clip's
// metadata, for example to report which of them changed. Child paths come from the host's schema
// (Schema.h), not from a clip. All functions are safe to call from any thread.
namespace zelmetadata {

using zelcore::UTF8String;

// The namespaces of the story properties.
inline constexpr const char* kDynamicMediaSchemaURI = "http://ns.adobe.com/xmp/1.0/DynamicMedia/";
inline constexpr const char* kDublinCoreSchemaURI = "http://purl.org/dc/elements/1.1/";
inline constexpr const char* kScriptSchemaURI = "http://ns.zelhost.example/metadata/script/1.0/";

// One step of a path: a property or field, or one item of an array.
struct PathStep {
  UTF8String mNamespaceURI;
  UTF8String mName;
  int mItem = 0;  // 0: the property itself; from 1: that item of the array

  friend bool operator==(const PathStep&, const PathStep&) = default;
  friend std::strong_ordering operator<=>(const PathStep&, const PathStep&) = default;
};

// A path: a plain value, with no steps when default-constructed. Equal paths are interchangeable.
// The order is total: step by step, by namespace URI, then name (both byte by byte), then item; a
// path comes before those below it.
class ZELPLATFORM_API Path {
 public:
  Path() = default;
  explicit Path(std::vector<PathStep> steps) : mSteps(std::move(steps)) {}

  const std::vector<PathStep>& Steps() const { return mSteps; }

  // The text form, UTF-8: xmpScript:dialogSequence[2]/xmpScript:character. A namespace that the
  // schema does not know is written in braces: {http://ns.example/}name.
  UTF8String AsString() const;

  friend bool operator==(const Path&, const Path&) = default;
  friend std::strong_ordering operator<=>(const Path&, const Path&) = default;

 private:
  std::vector<PathStep> mSteps;
};

// Iterates over paths that it owns together with its copies. The end of a range compares equal to
// an iterator that has passed all of them.
class PathIterator {
 public:
  using iterator_category = std::forward_iterator_tag;
  using value_type = Path;
  using difference_type = std::ptrdiff_t;
  using pointer = const Path*;
  using reference = const Path&;

  PathIterator() = default;
  PathIterator(std::shared_ptr<const std::vector<Path>> paths, std::size_t position)
      : mPaths(std::move(paths)), mPosition(position) {}

  reference operator*() const { return (*mPaths)[mPosition]; }
  pointer operator->() const { return &**this; }
  PathIterator& operator++() {
    ++mPosition;
    return *this;
  }
  PathIterator operator++(int) {
    PathIterator before = *this;
    ++*this;
    return before;
  }
  friend bool operator==(const PathIterator&, const PathIterator&) = default;

 private:
  std::shared_ptr<const std::vector<Path>> mPaths;
  std::size_t mPosition = 0;
};

// A range: its begin and its end.
using PathRange = std::pair<PathIterator, PathIterator>;

// The path of a top-level property.
ZELPLATFORM_API Path PathForSchemaNameAndPropertyName(UTF8String schemaURI,
                                                      UTF8String propertyName);

// The path of one item of an array, counted from 1. Throws std::invalid_argument for an array path
// without steps or an index below 1.
ZELPLATFORM_API Path CreatePathFromArrayItem(const Path& array, int index);

// The paths directly below a path, and all paths below it that have none below themselves. Both are
// in the order of the schema, and empty for a leaf and for a path that the schema does not know.
// The items of an array are not among them, since the schema cannot know their number.
ZELPLATFORM_API PathRange ChildPaths(const Path& path);
ZELPLATFORM_API PathRange DescendantLeafPaths(const Path& path);

}  // namespace zelmetadata
