#pragma once

#include <string>

#include <xmptoolkit/model/Document.h>
#include <xmptoolkit/rdf/PropertyWriter.h>

namespace xmptoolkit {

// Appends a document to `xml` and returns the result: x:xmpmeta with rdf:RDF and one
// rdf:Description in it, in UTF-8, without packet wrapper. Every line ends with a newline. The same
// document gives the same bytes. Throws BadXMP for more than 8,000 namespaces.
std::string WriteRDF(const Document& document, const RDFLayout& layout, std::string xml = {});

}  // namespace xmptoolkit
