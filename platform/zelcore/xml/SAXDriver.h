#pragma once

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include <zelcore/Export.h>
#include <zelcore/xml/Position.h>

// Turns bytes into events for every XML reader of the platform: the one place where the XML library
// is configured and where documents from strangers meet their limits. Events are UTF-8, whatever
// the document's encoding. Hosts use Reader.h; this header is internal to the platform.
namespace zelcore::xml {

// Why a document could not be read to its end.
struct SyntaxError {
  Position mPosition;   // where the fault was found; 1:1 when the document could not be read at all
  std::string mReason;  // one line of UTF-8 text, no full stop, no line end
};

// A name with its namespace resolved. Prefixes and local names are interned: equal ones have the
// same address for the whole parse, so a receiver can compare names by address. mURI is empty
// without a namespace, and for an undeclared prefix.
struct NameView {
  std::string_view mPrefix;
  std::string_view mLocalName;
  std::string_view mURI;
};

struct AttributeView {
  NameView mName;
  std::string_view mValue;
};

struct NamespaceView {
  std::string_view mPrefix;  // empty: the default namespace
  std::string_view mURI;
};

// The receiver of events. Arguments are valid until the callback returns, names until the parse
// ends. An exception that leaves a callback stops the parse and leaves SAXDriver's Parse call.
class SAXEvents {
 public:
  virtual ~SAXEvents() = default;
  virtual void StartElement(const NameView& name, std::span<const NamespaceView> declarations,
                            std::span<const AttributeView> attributes) = 0;
  virtual void EndElement() = 0;                       // of the element opened last
  virtual void Characters(std::string_view text) = 0;  // split anywhere between characters
  virtual void StartCDATA() {}
  virtual void EndCDATA() {}
  virtual void Comment(std::string_view /*text*/) {}
  virtual void ProcessingInstruction(std::string_view /*target*/, std::string_view /*data*/) {}
  virtual void Doctype() {}  // a document type declaration has begun
};

// The limits for documents; a document beyond one of them is refused.
inline constexpr std::size_t kMostOpenElements = 10'000;
inline constexpr std::size_t kMostNames = 250'000;      // different ones, of whatever kind
inline constexpr std::size_t kMostAttributes = 10'000;  // of a tag; declared; namespaces in force
inline constexpr std::size_t kMostMarkupBytes = 8u << 20;  // of one tag, comment, CDATA section ...
inline constexpr std::size_t kMostExpandedBytes =
    64u << 20;  // delivered above four times what was read

class ParseState;

// Reads documents, one after another. External entities and external DTDs are never opened,
// whatever the document says; a reference to one, or to an undeclared entity, is an error, since
// its text would be lost. One driver is used by one thread at a time; several may run at once.
class ZELPLATFORM_API SAXDriver {
 public:
  explicit SAXDriver(SAXEvents& events);
  SAXDriver(const SAXDriver&) = delete;
  SAXDriver& operator=(const SAXDriver&) = delete;
  ~SAXDriver();

  // Both read a whole document and return what stopped it, or nothing when it was well-formed to
  // its end. The encoding is that of a byte-order mark, else the one that the XML declaration
  // names, else UTF-8; a declaration that contradicts the mark or the bytes is an error, as are
  // bytes that are not text in it. ParseStream reads 64 KiB at a time, so that memory does not grow
  // with the document.
  [[nodiscard]] std::optional<SyntaxError> ParseBuffer(std::string_view bytes);
  [[nodiscard]] std::optional<SyntaxError> ParseStream(std::istream& stream);

  // During a callback: for a start or end tag, the place of its "<"; for anything else, the place
  // up to which the document has been read. Inside the text of an entity, also for tags, that is
  // the place after the reference. Outside a parse: 1:1.
  [[nodiscard]] Position CurrentPosition() const;

 private:
  template <typename FeedAll>
  std::optional<SyntaxError> Run(FeedAll feedAll);

  SAXEvents& mEvents;
  std::unique_ptr<ParseState> mState;  // set while a parse runs
};

}  // namespace zelcore::xml
