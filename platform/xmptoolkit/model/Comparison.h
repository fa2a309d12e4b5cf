#pragma once

#include <optional>
#include <vector>

#include <xmptoolkit/XMPTree.h>
#include <xmptoolkit/model/Document.h>

namespace xmptoolkit {

// Compares two documents, or nodes of them.
class Comparison {
 public:
  Comparison(const Document& left, const Document& right, Equality equality)
      : mLeft(left), mRight(right), mEquality(equality) {}

  bool AreEqual() const;
  bool AreEqual(const Node& left, const Node& right) const;  // names are not compared
  bool HaveEqualQualifiers(const Node& left, const Node& right) const;

  // The node of the right document's `list` that has the name of a node of the left one; npos when
  // there is none.
  std::size_t FindPartner(const Node& node, const NodeList& list) const;

 private:
  bool HaveEqualSurroundings() const;
  bool AreEqualLists(const NodeList& left, const NodeList& right, bool areItems) const;

  const Document& mLeft;
  const Document& mRight;
  const Equality mEquality;
  // The right document's name, or that it has none, for each of the left one's; none until needed.
  mutable std::vector<std::optional<std::optional<NameId>>> mPartners;
};

}  // namespace xmptoolkit
