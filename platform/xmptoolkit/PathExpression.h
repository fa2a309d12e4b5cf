#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <boost/container/small_vector.hpp>

#include <xmptoolkit/XMP.h>

#include "Document.h"

namespace xmptoolkit {

// One step of a path.
struct PathStep {
  enum class Kind { kName, kItem, kLastItem, kQualifier };

  Kind mKind;
  std::string_view mURI;        // of a name or qualifier; the registry's copy, or the caller's text
  std::string_view mLocalName;  // likewise; lives in the path's text
  std::size_t mItem = 0;        // of kItem, counted from 1
  std::size_t mTextEnd = 0;     // where the step ends in the path's text
};

using PathSteps = boost::container::small_vector<PathStep, 4>;

// A path as it names one property, item, field or qualifier:
//
//   path  = name step*
//   step  = "[" number "]" | "[last()]" | "/" prefix ":" name | "/?" prefix ":" name
//   name  = [prefix ":"] name
//
// The texts that a path is made of have to outlive it. "/?" leads to a qualifier. There are at most
// kXMP_MaxNesting steps, the first name included.
class PathExpression {
 public:
  // Throws BadSchema for a schema that is null, or that neither the registry nor `names` knows, and
  // for prefixes that are not registered; BadXPath for a text that is null or no path, or whose
  // first prefix is not the schema's. `names`, those of the metadata that the path leads into, may
  // be null.
  PathExpression(const char* schemaNS, const char* text, const NameTable* names = nullptr);

  // Adds the step to a field: `fieldName` with or without prefix. Throws as the constructor.
  void AppendField(const char* fieldNS, const char* fieldName);

  const PathSteps& Steps() const { return mSteps; }

  // The text of the first `count` steps, quoted, for messages.
  std::string Describe(std::size_t count) const;
  std::string Describe() const { return Describe(mSteps.size()); }

 private:
  std::string_view KnownNamespace(const char* uri) const;
  void ReadStep(std::size_t& position);
  void ReadItem(std::size_t& position);
  void AddName(PathStep::Kind kind, std::string_view uri, std::string_view localName);
  void AddStep(const PathStep& step);
  [[noreturn]] void Refuse(const std::string& why) const;

  const NameTable* mNames;
  std::string_view mText;
  std::string_view mField;  // what AppendField added
  PathSteps mSteps;
};

// How far a path leads into a document.
struct PathTarget {
  Node* mNode = nullptr;      // the last node on the way that exists; the root at least
  Node* mParent = nullptr;    // what holds mNode; null for the root
  std::size_t mPosition = 0;  // of mNode among the parent's children, or qualifiers
  std::size_t mMatched = 0;   // how many steps lead to mNode

  bool Found(const PathExpression& path) const { return mMatched == path.Steps().size(); }
};

// Follows a path as far as there are nodes. Throws BadXPath where a step does not fit what is
// there: an item of what is no array, a field of what is no struct.
PathTarget FollowPath(Document& document, const PathExpression& path);

// The node at the end of a path; null when there is none. Throws as FollowPath.
const Node* FindNode(const Document& document, const PathExpression& path);

}  // namespace xmptoolkit
