#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <xmptoolkit/patch/SourceTree.h>
#include <xmptoolkit/rdf/PropertyWriter.h>

namespace xmptoolkit {

// How a packet is written, which is how additions to it are written.
struct PatchStyle {
  // `descriptions` are those in `rdf`, the rdf:RDF.
  PatchStyle(const SourceTree& tree, std::size_t rdf, const std::vector<std::size_t>& descriptions);

  // The layout of an element that follows white space: on lines of its own if that ends a line.
  RDFLayout LayoutAfter(std::string_view space) const;

  std::string mLineEnd = "\n";
  std::string mIndent = " ";  // for each level
  char mQuote = '"';
  StructForm mStructForm = StructForm::kResource;
  bool mFieldsAreAttributes = false;  // of structs
  bool mSimpleAreAttributes = false;  // simple properties, of rdf:Description

 private:
  void FindIndent(const SourceTree& tree, std::size_t rdf);
  void FindPropertyForm(const SourceTree& tree, const std::vector<std::size_t>& descriptions);
  void FindStructForm(const SourceTree& tree, std::size_t rdf);
};

}  // namespace xmptoolkit
