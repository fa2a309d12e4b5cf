#pragma once

#include <cstddef>
#include <string>

#include <xmptoolkit/XMP.h>
#include <zelcore/Export.h>

// A read-only view of any metadata as a tree, for code that shows or compares it.
namespace xmptoolkit {

class Document;
class Node;

// One property, array item, struct field or qualifier; or the root, a struct whose fields are the
// properties of all schemas. A small value to be copied freely, valid until the metadata that it
// belongs to changes or is destroyed. Positions are counted from 0 and must be below the count.
class ZELPLATFORM_API TreeNode {
 public:
  // The name; an array item is rdf:li, and the root's name has no meaning. The prefix is that of
  // the file that was read, or else the registry's, or else empty.
  const std::string& NamespaceURI() const;
  std::string Prefix() const;
  const std::string& LocalName() const;

  const std::string& Value() const;  // empty for an array or a struct
  XMP_OptionBits Options() const;    // as GetProperty receives them

  // Array items or struct fields, in the order of the file.
  std::size_t ChildCount() const;
  TreeNode Child(std::size_t position) const;

  // Qualifiers; xml:lang is the first.
  std::size_t QualifierCount() const;
  TreeNode Qualifier(std::size_t position) const;

 private:
  friend ZELPLATFORM_API TreeNode RootOf(const TXMPMeta<std::string>& metadata);

  TreeNode(const Document& document, const Node& node, bool isQualifier)
      : mDocument(&document), mNode(&node), mIsQualifier(isQualifier) {}

  const Document* mDocument;
  const Node* mNode;
  bool mIsQualifier;
};

// The root of an object's metadata; valid until the object changes or is destroyed.
ZELPLATFORM_API TreeNode RootOf(const TXMPMeta<std::string>& metadata);

// What must agree for two trees to be equal.
enum class Equality {
  kMetadata,  // what has a meaning in XMP, which the order of fields and qualifiers has not
  kFile,      // also the order of properties, fields and qualifiers, comments, and the attributes
              // of x:xmpmeta
};

// True when two objects hold the same metadata: the same subject, properties, kinds, values and
// qualifiers, all of an array's items in the same order. Takes linear time.
ZELPLATFORM_API bool AreEqual(const TXMPMeta<std::string>& left, const TXMPMeta<std::string>& right,
                              Equality equality);

}  // namespace xmptoolkit
