#pragma once

#include <string>

#include "Document.h"

namespace xmptoolkit {

// How the lines of a packet are laid out.
struct Layout {
  std::string mNewline = "\n";
  std::string mIndent = " ";  // for each level
  std::string mBaseIndent;    // in front of every line
  bool mIsCompact = false;    // simple properties and fields as attributes
};

// Writes a document as x:xmpmeta with rdf:RDF and one rdf:Description in it, in UTF-8, without
// packet wrapper, behind what stands in `xml` already. Every line ends with a newline. The same
// document gives the same bytes.
std::string WriteRDF(const Document& document, const Layout& layout, std::string xml = {});

}  // namespace xmptoolkit
