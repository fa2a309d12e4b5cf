#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace xmptoolkit {

// A part of a text, in bytes.
struct Span {
  std::size_t mBegin = 0;
  std::size_t mEnd = 0;
};

struct SourceAttribute {
  std::string_view mName;  // as written, with its prefix
  Span mWhole;             // with the quotes
  Span mValue;             // without them, as written
};

struct SourceElement {
  std::size_t mParent = 0;  // of the root, itself
  std::size_t mScope = 0;   // the nearest element, upwards from this one, that declares namespaces
  std::string_view mName;   // as written, with its prefix
  Span mWhole;              // both tags and what is between them
  Span mContent;            // what is between them; for an empty tag, the "/>"
  bool mIsEmptyTag = false;
  bool mHasMarkup = false;  // comments, processing instructions or CDATA sections directly within
  std::size_t mFirstAttribute = 0;
  std::size_t mAttributeCount = 0;
  std::vector<std::size_t> mChildren;
};

// Where the elements and attributes of a packet lie in its text. The text must outlive it. An
// element is named by its place in the order of the text; 0 is the root.
class SourceTree {
 public:
  // Text that is not well-formed throws NotPatchable.
  explicit SourceTree(std::string_view text);

  std::string_view Text() const { return mText; }
  std::string_view Text(Span span) const {
    return mText.substr(span.mBegin, span.mEnd - span.mBegin);
  }
  std::size_t Size() const { return mElements.size(); }
  const SourceElement& operator[](std::size_t element) const { return mElements[element]; }
  std::span<const SourceAttribute> Attributes(std::size_t element) const;

  // Whether an element or one of its attributes has this name. RDF's own attributes count as its
  // own without a prefix, too.
  bool Is(std::size_t element, std::string_view uri, std::string_view localName) const;
  bool IsAttribute(std::size_t element, const SourceAttribute& attribute, std::string_view uri,
                   std::string_view localName) const;
  const SourceAttribute* FindAttribute(std::size_t element, std::string_view uri,
                                       std::string_view localName) const;

  // What a prefix stands for at an element, where "" is the default namespace; empty for nothing.
  const std::string& NamespaceOf(std::size_t element, std::string_view prefix) const;
  // A prefix, not "", that stands for a namespace at an element.
  std::optional<std::string> PrefixOf(std::size_t element, std::string_view uri) const;

  // URI and local name in one text, for use as a key. An attribute without prefix has no namespace.
  std::string KeyOf(std::size_t element) const;
  std::string KeyOf(std::size_t element, const SourceAttribute& attribute) const;
  static std::string Key(std::string_view uri, std::string_view localName);

  // The white space before a place, and a part of the text with the white space before it.
  std::string_view SpaceBefore(std::size_t position) const;
  Span WithSpaceBefore(Span span) const;

 private:
  class Scanner;

  const SourceAttribute* FindDeclaration(std::size_t element, std::string_view prefix) const;

  std::string_view mText;
  std::vector<SourceElement> mElements;
  std::vector<SourceAttribute> mAttributes;
  mutable std::unordered_map<std::string, std::string> mNamespaces;  // by scope and prefix
};

inline constexpr std::string_view kSpace = " \t\r\n";

// The prefix of a name as it is written, and what follows its colon.
std::string_view PrefixIn(std::string_view name);
std::string_view LocalNameIn(std::string_view name);

// The last line end of some white space with the indentation after it; all of it without line end.
std::string_view LastLine(std::string_view space);

bool HoldsLineEnd(std::string_view space);

}  // namespace xmptoolkit
