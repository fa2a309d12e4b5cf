#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <xmptoolkit/XMPTypes.h>
#include <xmptoolkit/model/Names.h>

namespace xmptoolkit {

class Node;

// Comments and processing instructions between the elements of a packet, each as complete markup
// ("<!-- text -->"), as they are written again.
using Comments = std::vector<std::string>;

// An ordered list of nodes, found by position or by name. Names are unique, except that array items
// all share kItemName and are not found by it. Appending and finding take constant time; removing
// and inserting take time linear in the number of nodes that follow.
class NodeList {
 public:
  NodeList();
  NodeList(const NodeList& other);
  NodeList(NodeList&& other) noexcept;
  NodeList& operator=(NodeList other) noexcept;
  ~NodeList();

  std::size_t Size() const;
  bool Empty() const { return Size() == 0; }
  Node& operator[](std::size_t position);
  const Node& operator[](std::size_t position) const;
  Node& Back() { return (*this)[Size() - 1]; }
  std::vector<Node>::const_iterator begin() const;
  std::vector<Node>::const_iterator end() const;

  // The position of a name; npos when there is none.
  std::size_t Find(NameId name) const;
  static constexpr std::size_t npos = static_cast<std::size_t>(-1);

  void Append(Node&& node);
  void InsertFirst(Node&& node);
  void Remove(std::size_t position);

 private:
  using Index = std::unordered_map<NameId, std::size_t>;

  void BuildIndex();

  std::vector<Node> mNodes;
  std::unique_ptr<Index> mIndex;  // of a long list
};

// One property, array item, struct field or qualifier, with everything below it.
class Node {
 public:
  // How the file spelled what is the same in the data model. Kept so that it is written in the same
  // way and means the same to general RDF readers; not part of the metadata.
  static constexpr XMP_OptionBits kWrittenWithValue = 0x20000000;      // through rdf:value
  static constexpr XMP_OptionBits kLangAtValue = 0x40000000;           // xml:lang was on rdf:value
  static constexpr XMP_OptionBits kQualifiersOfResource = 0x80000000;  // beside rdf:resource
  static constexpr XMP_OptionBits kSpelling =
      kWrittenWithValue | kLangAtValue | kQualifiersOfResource;

  explicit Node(NameId name = kItemName, XMP_OptionBits form = 0) : mName(name), mForm(form) {}
  Node(const Node& other);
  Node(Node&& other) noexcept = default;
  Node& operator=(const Node& other);
  Node& operator=(Node&& other) noexcept = default;
  ~Node() = default;

  NameId Name() const { return mName; }
  void SetName(NameId name) { mName = name; }  // only while it is in no list
  const std::string& Value() const { return mValue; }
  void SetValue(std::string value) { mValue = std::move(value); }

  bool IsStruct() const { return (mForm & kXMP_PropValueIsStruct) != 0; }
  bool IsArray() const { return (mForm & kXMP_PropValueIsArray) != 0; }
  bool IsSimple() const { return !IsStruct() && !IsArray(); }
  bool IsURI() const { return (mForm & kXMP_PropValueIsURI) != 0; }
  bool Is(XMP_OptionBits bit) const { return (mForm & bit) != 0; }

  // The form bits of XMP.h, without the received-only ones, plus those of kSpelling.
  XMP_OptionBits Form() const { return mForm; }
  void SetForm(XMP_OptionBits form) { mForm = form; }
  void AddForm(XMP_OptionBits bits) { mForm |= bits; }

  // What GetProperty reports: the form and the received-only bits.
  XMP_OptionBits ReceivedOptions() const;

  NodeList& Children() { return mChildren; }
  const NodeList& Children() const { return mChildren; }

  // xml:lang is the first.
  const NodeList& Qualifiers() const;
  NodeList& MutableQualifiers() { return Rare().mQualifiers; }
  const Node* FindQualifier(NameId name) const;
  void AddQualifier(Node&& qualifier);

  // Comments before this node, and after its last child.
  const Comments& CommentsBefore() const;
  const Comments& CommentsAtEnd() const;
  void AddCommentsBefore(Comments comments);
  void PrependCommentsBefore(Comments comments);
  void AddCommentsAtEnd(Comments comments);
  Comments TakeCommentsAtEnd();

  // Removes a child. The comments before it, which may be about something else, are then before the
  // next child or at the end.
  void RemoveChild(std::size_t position);
  void RemoveQualifier(std::size_t position);

 private:
  // What most nodes do not have: inside the node, it would take 80 bytes instead of 8.
  struct RareParts {
    NodeList mQualifiers;
    Comments mBefore;
    Comments mAtEnd;
  };

  RareParts& Rare();

  std::string mValue;
  NameId mName;
  XMP_OptionBits mForm;
  NodeList mChildren;
  std::unique_ptr<RareParts> mRare;
};

}  // namespace xmptoolkit
