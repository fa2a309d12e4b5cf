#pragma once

#include <string>

#include <xmptoolkit/model/Document.h>

namespace xmptoolkit {

// The white space between the elements of a packet.
struct RDFLayout {
  std::string mNewline = "\n";
  std::string mIndent = " ";  // for each level
  std::string mBaseIndent;    // before every line
};

// Appends a document to `xml` and returns the result: x:xmpmeta with rdf:RDF and one
// rdf:Description in it, in UTF-8, without packet wrapper. Every line ends with a newline. The same
// document gives the same bytes. Throws BadXMP for more than 8,000 namespaces.
std::string WriteRDF(const Document& document, const RDFLayout& layout, std::string xml = {});

}  // namespace xmptoolkit
