#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>
#include <string_view>

#include <zelcore/Export.h>
#include <zelcore/xml/AbstractParseHandler.h>
#include <zelcore/xml/Position.h>

namespace zelcore::xml {

// What stopped a parse, ready to be shown: "FILE:LINE:COLUMN: REASON".
struct ReadError {
  std::string mSource;  // the file as it was named, or the name given with a buffer or stream
  Position mPosition;   // from 1; 1:1 when nothing could be read
  std::string mReason;  // one line of UTF-8 text
};

// Reads an XML document and reports it to a handler through the plain callbacks: StartDocument,
// StartElement, EndElement, Characters, StartCDATA, EndCDATA, Comment, EndDocument. A handler whose
// WantsNamespaces says so also gets the namespace-aware ones.
//
// Understood: XML 1.0 in UTF-8, in UTF-16 and UTF-32 with a byte-order mark or a declaration, and
// in the encodings that the XML declaration may name. Nothing outside the given document is ever
// opened. Refused: what is not well-formed, or not text in its encoding; a declaration of another
// encoding than the byte-order mark or the bytes show; any use of an external entity or of an
// undeclared one; more than 10,000 open elements, attributes of a tag, declared attributes, or
// namespaces in force; more than 250,000 different names; a tag, comment or CDATA section of much
// more than 8 MiB (the next piece read may still pass); entities that multiply each other to more
// than about ten times the document's bytes, as the XML library counts; entities and default
// attributes that deliver more than four times the document's bytes and 64 MiB, or take as long.
//
// A parse that fails returns false and leaves the reason in Error(); the handler has received the
// events up to that place, and EndDocument. Without memory, it throws std::bad_alloc. An exception
// of the handler passes through. In all these cases the reader may be used again.
//
// Threads: one thread at a time per reader; any number of readers at once.
class ZELPLATFORM_API Reader {
 public:
  Reader();
  ~Reader();
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  // Reads a file piece by piece: memory does not grow with its length. A missing file, a directory,
  // an unreadable and an empty file are errors.
  [[nodiscard]] bool ParseFile(const std::filesystem::path& file, AbstractParseHandler& handler);

  // Reads a document in memory. `source` names it in errors.
  [[nodiscard]] bool ParseBuffer(std::string_view bytes, std::string source,
                                 AbstractParseHandler& handler);

  // Reads a stream to its end, piece by piece. `source` names it in errors.
  [[nodiscard]] bool ParseStream(std::istream& stream, std::string source,
                                 AbstractParseHandler& handler);

  // During a callback: for a start or end tag, the place of its "<"; for anything else, and for
  // tags in the text of an entity, the place up to which the document has been read: after the
  // comment, the reference, or the tag that ends a text. Outside a parse: 1:1.
  [[nodiscard]] Position CurrentPosition() const;

  // The reason of the last parse that returned false.
  [[nodiscard]] const ReadError& Error() const { return mError; }

 private:
  class Adapter;
  template <typename Parse>
  bool Run(std::string source, AbstractParseHandler& handler, Parse parse);

  Adapter* mRunning = nullptr;  // set while a parse runs
  ReadError mError;
};

}  // namespace zelcore::xml
