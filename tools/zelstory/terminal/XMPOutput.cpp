#include "terminal/XMPOutput.h"

#include <ostream>

#include <nlohmann/json.hpp>

#include <xmptoolkit/XMPTree.h>

#include "terminal/Escaped.h"

namespace zelstory {
namespace {

using xmptoolkit::TreeNode;
using JSON = nlohmann::ordered_json;

// Most specific kind first: an alternative array is also an ordered one.
const char* KindOf(const TreeNode& node) {
  const XMP_OptionBits options = node.Options();
  if ((options & kXMP_PropArrayIsAlternate) != 0) return "alt";
  if ((options & kXMP_PropArrayIsOrdered) != 0) return "seq";
  if ((options & kXMP_PropValueIsArray) != 0) return "bag";
  if ((options & kXMP_PropValueIsStruct) != 0) return "struct";
  return (options & kXMP_PropValueIsURI) != 0 ? "uri" : "simple";
}

bool IsArray(const TreeNode& node) {
  return (node.Options() & kXMP_PropValueIsArray) != 0;
}
bool IsSimple(const TreeNode& node) {
  return (node.Options() & (kXMP_PropValueIsArray | kXMP_PropValueIsStruct)) == 0;
}

// A namespace without any prefix is written in braces.
std::string NameOf(const TreeNode& node) {
  const std::string prefix = node.Prefix();
  return prefix.empty() ? '{' + node.NamespaceURI() + '}' + node.LocalName()
                        : prefix + ':' + node.LocalName();
}

void PrintNode(const TreeNode& node, const std::string& name, std::size_t depth,
               std::ostream& output) {
  output << std::string(2 * depth, ' ') << Escaped(name);
  const std::string kind = KindOf(node);
  if (kind != "simple") output << " (" << kind << ')';
  if (IsSimple(node)) output << " = " << Quoted(node.Value());
  output << '\n';
  for (std::size_t i = 0; i < node.QualifierCount(); ++i) {
    PrintNode(node.Qualifier(i), '?' + NameOf(node.Qualifier(i)), depth + 1, output);
  }
  for (std::size_t i = 0; i < node.ChildCount(); ++i) {
    const TreeNode child = node.Child(i);
    PrintNode(child, IsArray(node) ? '[' + std::to_string(i + 1) + ']' : NameOf(child), depth + 1,
              output);
  }
}

JSON NodeAsJSON(const TreeNode& node, bool isItem) {
  JSON json = JSON::object();
  if (!isItem) json["name"] = NameOf(node);
  if (!isItem) json["namespace"] = node.NamespaceURI();
  json["kind"] = KindOf(node);
  if (IsSimple(node)) {
    json["value"] = node.Value();
  } else {
    JSON& children = json[IsArray(node) ? "items" : "fields"] = JSON::array();
    for (std::size_t i = 0; i < node.ChildCount(); ++i) {
      children.push_back(NodeAsJSON(node.Child(i), IsArray(node)));
    }
  }
  for (std::size_t i = 0; i < node.QualifierCount(); ++i) {
    json["qualifiers"].push_back(NodeAsJSON(node.Qualifier(i), false));
  }
  return json;
}

}  // namespace

void PrintXMP(const TXMPMeta<std::string>& metadata, std::ostream& output) {
  const TreeNode root = xmptoolkit::RootOf(metadata);
  for (std::size_t i = 0; i < root.ChildCount(); ++i) {
    PrintNode(root.Child(i), NameOf(root.Child(i)), 0, output);
  }
}

JSON XMPAsJSON(const TXMPMeta<std::string>& metadata) {
  const TreeNode root = xmptoolkit::RootOf(metadata);
  JSON properties = JSON::array();
  for (std::size_t i = 0; i < root.ChildCount(); ++i) {
    properties.push_back(NodeAsJSON(root.Child(i), false));
  }
  return {{"properties", properties}};
}

}  // namespace zelstory
