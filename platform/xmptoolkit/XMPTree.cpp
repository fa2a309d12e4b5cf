#include <xmptoolkit/DocumentAccess.h>
#include <xmptoolkit/XMPTree.h>
#include <xmptoolkit/model/Document.h>
#include <xmptoolkit/model/NamespaceRegistry.h>

namespace xmptoolkit {

namespace {

class Comparison {
 public:
  Comparison(const Document& left, const Document& right, Equality equality)
      : mLeft(left), mRight(right), mEquality(equality) {}

  bool Run() const {
    if (mLeft.mAbout != mRight.mAbout) return false;
    if (mEquality == Equality::kFile && !HaveEqualSurroundings()) return false;
    return AreEqualNodes(mLeft.mRoot, mRight.mRoot);
  }

 private:
  bool HaveEqualSurroundings() const {
    if (mLeft.mComments != mRight.mComments) return false;
    return mLeft.mMetaAttributes == mRight.mMetaAttributes;
  }

  bool AreEqualNodes(const Node& left, const Node& right) const {
    // Whether alternatives differ by language follows from their items.
    constexpr XMP_OptionBits kIgnored = Node::kSpelling | kXMP_PropArrayIsAltText;
    if ((left.Form() & ~kIgnored) != (right.Form() & ~kIgnored)) return false;
    if (left.Value() != right.Value()) return false;
    if (mEquality == Equality::kFile && (left.CommentsBefore() != right.CommentsBefore() ||
                                         left.CommentsAtEnd() != right.CommentsAtEnd())) {
      return false;
    }
    return AreEqualLists(left.Children(), right.Children(), left.IsArray()) &&
           AreEqualLists(left.Qualifiers(), right.Qualifiers(), false);
  }

  bool AreEqualLists(const NodeList& left, const NodeList& right, bool areItems) const {
    if (left.Size() != right.Size()) return false;
    for (std::size_t i = 0; i < left.Size(); ++i) {
      const std::size_t partner = areItems ? i : FindPartner(left[i], right);
      if (partner == NodeList::npos) return false;
      if (mEquality == Equality::kFile && partner != i) return false;
      if (!AreEqualNodes(left[i], right[partner])) return false;
    }
    return true;
  }

  std::size_t FindPartner(const Node& node, const NodeList& right) const {
    const NamespaceId space = mLeft.mNames.NamespaceOf(node.Name());
    const auto name =
        mRight.mNames.FindName(mLeft.mNames.URI(space), mLeft.mNames.LocalName(node.Name()));
    return name ? right.Find(*name) : NodeList::npos;
  }

  const Document& mLeft;
  const Document& mRight;
  const Equality mEquality;
};

}  // namespace

const std::string& TreeNode::NamespaceURI() const {
  return mDocument->mNames.URI(mDocument->mNames.NamespaceOf(mNode->Name()));
}

std::string TreeNode::Prefix() const {
  const NamespaceId space = mDocument->mNames.NamespaceOf(mNode->Name());
  const std::string& own = mDocument->mNames.FilePrefix(space);
  if (!own.empty()) return own;
  return std::string(
      NamespaceRegistry::Global().PrefixOf(NamespaceURI()).value_or(std::string_view()));
}

const std::string& TreeNode::LocalName() const {
  return mDocument->mNames.LocalName(mNode->Name());
}

const std::string& TreeNode::Value() const {
  return mNode->Value();
}

XMP_OptionBits TreeNode::Options() const {
  return mNode->ReceivedOptions() | (mIsQualifier ? kXMP_PropIsQualifier : 0);
}

std::size_t TreeNode::ChildCount() const {
  return mNode->Children().Size();
}

TreeNode TreeNode::Child(std::size_t position) const {
  return {*mDocument, mNode->Children()[position], false};
}

std::size_t TreeNode::QualifierCount() const {
  return mNode->Qualifiers().Size();
}

TreeNode TreeNode::Qualifier(std::size_t position) const {
  return {*mDocument, mNode->Qualifiers()[position], true};
}

TreeNode RootOf(const TXMPMeta<std::string>& metadata) {
  const Document& document = DocumentAccess::Of(metadata);
  return {document, document.mRoot, false};
}

bool AreEqual(const TXMPMeta<std::string>& left, const TXMPMeta<std::string>& right,
              Equality equality) {
  return Comparison(DocumentAccess::Of(left), DocumentAccess::Of(right), equality).Run();
}

}  // namespace xmptoolkit
