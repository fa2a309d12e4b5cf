#include "terminal/XMPOutput.h"

#include <ostream>

#include <xmptoolkit/XMPTree.h>
#include <zelstoryhost/JSONWriter.h>

#include "terminal/Console.h"
#include "terminal/Escaped.h"

namespace zelstory {
namespace {

using xmptoolkit::TreeNode;
using zelstoryhost::JSONWriter;

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

void WriteNode(JSONWriter& json, const TreeNode& node, bool isItem);

void WriteChildren(JSONWriter& json, const TreeNode& node) {
  json.BeginArray();
  for (std::size_t i = 0; i < node.ChildCount(); ++i) {
    WriteNode(json, node.Child(i), IsArray(node));
  }
  json.EndArray();
}

void WriteQualifiers(JSONWriter& json, const TreeNode& node) {
  json.BeginArray();
  for (std::size_t i = 0; i < node.QualifierCount(); ++i) {
    WriteNode(json, node.Qualifier(i), false);
  }
  json.EndArray();
}

void WriteNode(JSONWriter& json, const TreeNode& node, bool isItem) {
  json.BeginObject();
  if (!isItem) json.Name("name").Text(NameOf(node));
  if (!isItem) json.Name("namespace").Text(node.NamespaceURI());
  json.Name("kind").Text(KindOf(node));
  if (IsSimple(node)) {
    json.Name("value").Text(node.Value());
  } else {
    WriteChildren(json.Name(IsArray(node) ? "items" : "fields"), node);
  }
  if (node.QualifierCount() > 0) WriteQualifiers(json.Name("qualifiers"), node);
  json.EndObject();
}

}  // namespace

void PrintXMP(const TXMPMeta<std::string>& metadata, std::ostream& output) {
  const TreeNode root = xmptoolkit::RootOf(metadata);
  for (std::size_t i = 0; i < root.ChildCount(); ++i) {
    PrintNode(root.Child(i), NameOf(root.Child(i)), 0, output);
  }
}

void PrintXMPAsJSON(const TXMPMeta<std::string>& metadata, std::ostream& output) {
  JSONWriter json(output, JSONWriter::Layout::kIndented);
  json.BeginObject();
  json.Name("properties").BeginArray();
  const TreeNode root = xmptoolkit::RootOf(metadata);
  for (std::size_t i = 0; i < root.ChildCount(); ++i) WriteNode(json, root.Child(i), false);
  json.EndArray();
  json.EndObject();
  output << '\n';
}

}  // namespace zelstory
