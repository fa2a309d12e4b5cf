#include <xmptoolkit/model/Comparison.h>

namespace xmptoolkit {

bool Comparison::AreEqual() const {
  if (mLeft.mAbout != mRight.mAbout) return false;
  if (mEquality == Equality::kFile && !HaveEqualSurroundings()) return false;
  return AreEqual(mLeft.mRoot, mRight.mRoot);
}

bool Comparison::HaveEqualSurroundings() const {
  if (mLeft.mComments != mRight.mComments) return false;
  return mLeft.mMetaAttributes == mRight.mMetaAttributes;
}

bool Comparison::AreEqual(const Node& left, const Node& right) const {
  // Whether alternatives differ by language follows from their items.
  constexpr XMP_OptionBits kIgnored = Node::kSpelling | kXMP_PropArrayIsAltText;
  if ((left.Form() & ~kIgnored) != (right.Form() & ~kIgnored)) return false;
  if (left.Value() != right.Value()) return false;
  if (mEquality == Equality::kFile && (left.CommentsBefore() != right.CommentsBefore() ||
                                       left.CommentsAtEnd() != right.CommentsAtEnd())) {
    return false;
  }
  return AreEqualLists(left.Children(), right.Children(), left.IsArray()) &&
         HaveEqualQualifiers(left, right);
}

bool Comparison::HaveEqualQualifiers(const Node& left, const Node& right) const {
  return AreEqualLists(left.Qualifiers(), right.Qualifiers(), false);
}

bool Comparison::AreEqualLists(const NodeList& left, const NodeList& right, bool areItems) const {
  if (left.Size() != right.Size()) return false;
  for (std::size_t i = 0; i < left.Size(); ++i) {
    const std::size_t partner = areItems ? i : FindPartner(left[i], right);
    if (partner == NodeList::npos) return false;
    if (mEquality == Equality::kFile && partner != i) return false;
    if (!AreEqual(left[i], right[partner])) return false;
  }
  return true;
}

std::size_t Comparison::FindPartner(const Node& node, const NodeList& list) const {
  if (node.Name() >= mPartners.size()) mPartners.resize(node.Name() + 1);
  std::optional<std::optional<NameId>>& partner = mPartners[node.Name()];
  if (!partner) {
    const NamespaceId space = mLeft.mNames.NamespaceOf(node.Name());
    partner = mRight.mNames.FindName(mLeft.mNames.URI(space), mLeft.mNames.LocalName(node.Name()));
  }
  return *partner ? list.Find(**partner) : NodeList::npos;
}

}  // namespace xmptoolkit
