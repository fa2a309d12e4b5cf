#pragma once

#include <zelcore/String.h>
#include <zelstoryparser/Export.h>

namespace zelstoryparser {

using zelcore::UTF16String;

// The identifier that a document gives an element in its "objID" attribute: an opaque text, kept
// exactly as written, neither parsed nor compared nor made up by the library. A plain value, not
// counted. The only error of any operation is std::bad_alloc. Threads: as a string.
class ZELSTORYPARSER_API ObjectID {
 public:
  // An identifier with empty text: the element had no "objID" attribute, or an empty one.
  ObjectID();

  // An identifier whose text is a copy of `id`.
  ObjectID(const UTF16String& id);  // NOLINT(google-explicit-constructor): a text is an identifier

  ObjectID(const ObjectID& other);
  ObjectID& operator=(const ObjectID& other);
  ObjectID(ObjectID&& other) noexcept;  // leaves `other` with any text
  ObjectID& operator=(ObjectID&& other) noexcept;
  ~ObjectID();

  // A copy of the text, unchanged.
  UTF16String AsString() const;

 private:
  UTF16String mID;
};

}  // namespace zelstoryparser
