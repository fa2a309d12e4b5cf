#pragma once

#include <map>
#include <vector>

#include <zelcore/Export.h>
#include <zelcore/String.h>

namespace zelcore::xml {

// One attribute of a start tag, as the namespace-aware callbacks deliver it.
struct Attribute {
  UTF16String mNamespaceURI;   // empty: the attribute is in no namespace
  UTF16String mLocalName;      // without prefix
  UTF16String mQualifiedName;  // as written in the document
  UTF16String mValue;          // unescaped and normalised as XML asks
};

// The receiver of a document's events. By default every callback does nothing; a handler overrides
// those that it needs. A reader calls them in document order, on the thread that runs the parse.
// Arguments are valid only until the callback returns. An exception that leaves a callback ends the
// parse and leaves the reader's parse call.
class ZELPLATFORM_API AbstractParseHandler {
 public:
  AbstractParseHandler() = default;
  AbstractParseHandler(const AbstractParseHandler&) = default;
  AbstractParseHandler& operator=(const AbstractParseHandler&) = default;
  virtual ~AbstractParseHandler();

  // Called first, once per document, before anything is known to be well-formed.
  virtual void StartDocument() {}

  // A start tag: its qualified name as written and all its attributes, name to unescaped value,
  // namespace declarations (xmlns, xmlns:prefix) among them. An empty-element tag is a start tag
  // followed by an end tag.
  virtual void StartElement(const UTF16String& /*name*/,
                            const std::map<UTF16String, UTF16String>& /*attributes*/) {}

  // A start tag with its namespace resolved: namespace URI, local name, qualified name, attributes
  // (without namespace declarations) in document order. Called right after StartElement, for a
  // handler that wants namespaces. The URI is empty for a name in no namespace, and for a prefix
  // that no declaration in force names: such a document is well-formed XML, so the handler decides.
  virtual void StartElementWithNamespace(const UTF16String& /*namespaceURI*/,
                                         const UTF16String& /*localName*/,
                                         const UTF16String& /*qualifiedName*/,
                                         const std::vector<Attribute>& /*attributes*/) {}

  // The end tag of the element whose qualified name is `name`.
  virtual void EndElement(const UTF16String& /*name*/) {}

  // The end tag with its namespace resolved: namespace URI, local name, qualified name. Called
  // right after EndElement, for a handler that wants namespaces.
  virtual void EndElementWithNamespace(const UTF16String& /*namespaceURI*/,
                                       const UTF16String& /*localName*/,
                                       const UTF16String& /*qualifiedName*/) {}

  // Around the text of a CDATA section, which itself arrives through Characters.
  virtual void StartCDATA() {}
  virtual void EndCDATA() {}

  // Character data, white space between tags included, with line ends as line feeds. One run of
  // text may arrive in any number of calls, split at any character (never inside a surrogate pair).
  virtual void Characters(const UTF16String& /*text*/) {}

  // The text of a comment, without its delimiters.
  virtual void Comment(const UTF16String& /*text*/) {}

  // Called last, once per document, also after an error in the document; not after an exception.
  virtual void EndDocument() {}

  // A namespace declaration comes into force before the start tag that carries it (an empty prefix
  // is the default namespace, an empty URI cancels it) and ends after the matching end tag; of
  // several on one tag the last declared ends first. For a handler that wants namespaces.
  virtual void StartPrefixMapping(const UTF16String& /*prefix*/,
                                  const UTF16String& /*namespaceURI*/) {}
  virtual void EndPrefixMapping(const UTF16String& /*prefix*/) {}

  // Whether a reader makes the four namespace-aware calls in addition to the plain ones. A reader
  // asks once per document, before StartDocument.
  virtual bool WantsNamespaces() const { return false; }
};

}  // namespace zelcore::xml
