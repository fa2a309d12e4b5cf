#include <xmptoolkit/DocumentAccess.h>
#include <xmptoolkit/XMPTree.h>
#include <xmptoolkit/model/Comparison.h>
#include <xmptoolkit/model/Document.h>
#include <xmptoolkit/model/NamespaceRegistry.h>

namespace xmptoolkit {

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
  return Comparison(DocumentAccess::Of(left), DocumentAccess::Of(right), equality).AreEqual();
}

}  // namespace xmptoolkit
