#pragma once

#include <zelcore/String.h>
#include <zelstoryparser/Export.h>

namespace zelstoryparser {

using zelcore::UTF16String;

// The identifier of an element: its "objID" attribute, kept exactly as written. The library does
// not parse, compare or generate identifiers. A plain value, not reference-counted. The only error
// of any operation is std::bad_alloc. Thread safety is that of std::string.
class ZELSTORYPARSER_API ObjectID {
 public:
  // An identifier with an empty text: the element has no "objID" attribute, or an empty one.
  ObjectID();

  // An identifier whose text is a copy of `id`.
  ObjectID(const UTF16String& id);  // NOLINT(google-explicit-constructor): a text is an identifier

  ObjectID(const ObjectID& other);
  ObjectID& operator=(const ObjectID& other);
  ObjectID(ObjectID&& other) noexcept;  // leaves `other` with an unspecified text
  ObjectID& operator=(ObjectID&& other) noexcept;
  ~ObjectID();

  // Returns a copy of the text.
  UTF16String AsString() const;

 private:
  UTF16String mID;
};

}  // namespace zelstoryparser
