#pragma once

#include <cstddef>

#include <xmptoolkit/model/Node.h>
#include <xmptoolkit/patch/SourceTree.h>

namespace xmptoolkit {

// How a property element holds its value.
enum class SourceKind {
  kText,    // <p>value</p>
  kURI,     // <p rdf:resource="value"/>
  kArray,   // <p><rdf:Seq><rdf:li/>...</rdf:Seq></p>
  kStruct,  // <p rdf:parseType="Resource">, <p><rdf:Description>, or <p q:field="value"/>
  kOther,   // any other way, which is only replaced whole
};

struct SourceForm {
  SourceKind mKind = SourceKind::kOther;
  std::size_t mHolder = 0;  // the element whose children are the items or fields
  Span mValue;              // of a text or URI, as written
};

// The form of a property element.
SourceForm FormOf(const SourceTree& tree, std::size_t element);

// Whether an element in this form can hold a node's kind of value.
bool Holds(const SourceForm& form, const Node& node);

// Whether an attribute is a property, field or qualifier, and not one of XML's or RDF's own.
bool IsPropertyAttribute(const SourceTree& tree, std::size_t element,
                         const SourceAttribute& attribute);
bool HasPropertyAttributes(const SourceTree& tree, std::size_t element);

// Whether an attribute is a declaration of a namespace.
bool IsDeclaration(const SourceAttribute& attribute);

}  // namespace xmptoolkit
