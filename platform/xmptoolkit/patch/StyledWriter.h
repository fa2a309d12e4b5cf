#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <xmptoolkit/model/Document.h>
#include <xmptoolkit/patch/PatchStyle.h>
#include <xmptoolkit/patch/ScopedPrefixes.h>
#include <xmptoolkit/patch/SourceTree.h>

namespace xmptoolkit {

// Writes additions to a packet in its style, with the prefixes that are in force where they will
// stand. What needs others declares them itself, so that they go when it goes. `space` is always
// the white space that comes before.
class StyledWriter {
 public:
  // `document` holds the nodes to be written. `asciiOnly`: other characters become references.
  StyledWriter(const SourceTree& tree, const Document& document, const PatchStyle& style,
               bool asciiOnly)
      : mTree(tree), mDocument(document), mStyle(style), mASCIIOnly(asciiOnly) {}

  // The element of a node, as a child of `parent`.
  std::string Element(const Node& node, std::size_t parent, std::string_view space) const;

  // An rdf:Description of some properties, as a child of `rdf`. It is written like `model`, another
  // one, unless that is `rdf` itself.
  std::string Description(const std::vector<const Node*>& properties, std::size_t rdf,
                          std::size_t model, std::string_view space) const;

  // Another attribute of `element`, with the white space before it; empty if no prefix there stands
  // for its namespace.
  std::string Attribute(const Node& node, std::size_t element) const;

  // The text of an element, and the value of an attribute in these quotes.
  std::string Text(std::string_view value) const;
  std::string AttributeValue(std::string_view value, char quote) const;

 private:
  std::string Declaration(std::string_view gap, NamespaceId space,
                          const ScopedPrefixes& prefixes) const;
  std::string Finished(std::string xml) const;

  const SourceTree& mTree;
  const Document& mDocument;
  const PatchStyle& mStyle;
  bool mASCIIOnly;
};

}  // namespace xmptoolkit
