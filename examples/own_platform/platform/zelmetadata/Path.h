#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include <zelcore/String.h>

namespace zelmetadata {

inline constexpr const char* kDynamicMediaSchemaURI = "http://ns.adobe.com/xmp/1.0/DynamicMedia/";
inline constexpr const char* kDublinCoreSchemaURI = "http://purl.org/dc/elements/1.1/";
inline constexpr const char* kScriptSchemaURI = "http://ns.zelhost.example/metadata/script/1.0/";

// This host names metadata by a text. The library sorts paths and requires nothing else.
class Path {
 public:
  explicit Path(std::string text) : mText(std::move(text)) {}
  const std::string& AsString() const { return mText; }
  friend bool operator<(const Path& left, const Path& right) { return left.mText < right.mText; }

 private:
  std::string mText;
};

// Generates the two paths below an item of the dialogue sequence.
class PathIterator {
 public:
  PathIterator(const Path& parent, std::size_t position) : mParent(parent), mPosition(position) {}
  Path operator*() const;
  PathIterator& operator++() {
    ++mPosition;
    return *this;
  }
  bool operator==(const PathIterator& other) const { return mPosition == other.mPosition; }

 private:
  Path mParent;
  std::size_t mPosition;
};

Path PathForSchemaNameAndPropertyName(const zelcore::UTF8String& schemaURI,
                                      const zelcore::UTF8String& propertyName);
Path CreatePathFromArrayItem(const Path& array, int index);

// The children of a path, and the leaves below it. Here they are the same.
std::pair<PathIterator, PathIterator> ChildPaths(const Path& path);
std::pair<PathIterator, PathIterator> DescendantLeafPaths(const Path& path);

}  // namespace zelmetadata
