#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <boost/container/small_vector.hpp>

#include <xmptoolkit/XMPTypes.h>
#include <xmptoolkit/model/Document.h>

namespace xmptoolkit {

// A path to one property, item, field or qualifier:
//
//   path  = name step*
//   step  = "[" number "]" | "[last()]" | "/" prefix ":" name | "/?" prefix ":" name
//   name  = [prefix ":"] name
//
// "/?" leads to a qualifier. A path has at most kXMP_MaxNesting steps, the first name included. It
// refers to the texts that it was made of, which must outlive it.
class PathExpression {
 public:
  enum class StepKind { kName, kItem, kLastItem, kQualifier };

  struct Step {
    StepKind mKind;
    std::string_view mURI;  // of a name or qualifier; the registry's copy, or the caller's text
    std::string_view mLocalName;  // likewise; a part of the path's text
    std::size_t mItem = 0;        // of kItem, counted from 1
    std::size_t mTextEnd = 0;     // where the step ends in the path's text
  };

  // The paths of the scenes' properties have up to four steps.
  using StepList = boost::container::small_vector<Step, 4>;

  // `names`, which may be null, are those of the metadata that the path leads into. Throws
  // BadSchema for a schema that is null, or neither registered nor among `names`, and for prefixes
  // that are not registered; BadXPath for a text that is null or not a path, or whose first prefix
  // is not the schema's.
  PathExpression(const char* schemaNS, const char* text, const NameTable* names = nullptr);

  // Adds a step to a field; `fieldName` may have a prefix. Throws as the constructor does.
  void AppendField(const char* fieldNS, const char* fieldName);

  const StepList& Steps() const { return mSteps; }

  // The text of the first `count` steps, quoted, for messages.
  std::string Describe(std::size_t count) const;
  std::string Describe() const { return Describe(mSteps.size()); }

 private:
  std::string_view KnownNamespace(const char* uri) const;
  void ReadStep(std::size_t& position);
  void ReadItem(std::size_t& position);
  void AddName(StepKind kind, std::string_view uri, std::string_view localName);
  void AddStep(const Step& step);
  [[noreturn]] void Refuse(const std::string& why) const;

  const NameTable* mNames;
  std::string_view mText;
  std::string_view mField;  // what AppendField added
  StepList mSteps;
};

// How far a path leads in a document.
struct PathTarget {
  Node* mNode = nullptr;      // the last node on the path that exists; the root at least
  Node* mParent = nullptr;    // what holds mNode; null for the root
  std::size_t mPosition = 0;  // of mNode among the parent's children, or qualifiers
  std::size_t mMatched = 0;   // how many steps lead to mNode

  bool Found(const PathExpression& path) const { return mMatched == path.Steps().size(); }
};

// Follows a path as far as there are nodes. Throws BadXPath for a step that does not fit: to an
// item of a node that is not an array, or to a field of one that is not a struct.
PathTarget FollowPath(Document& document, const PathExpression& path);

// The node at the end of a path; null when there is none. Throws as FollowPath does.
const Node* FindNode(const Document& document, const PathExpression& path);

}  // namespace xmptoolkit
