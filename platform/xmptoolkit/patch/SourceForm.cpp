#include <algorithm>

#include <xmptoolkit/model/Names.h>
#include <xmptoolkit/patch/SourceForm.h>

namespace xmptoolkit {

namespace {

bool IsArrayElement(const SourceTree& tree, std::size_t element) {
  return tree.Is(element, kRDFNamespace, "Seq") || tree.Is(element, kRDFNamespace, "Bag") ||
         tree.Is(element, kRDFNamespace, "Alt");
}

// rdf:value makes the fields beside it qualifiers.
bool HasValue(const SourceTree& tree, std::size_t element) {
  const std::vector<std::size_t>& children = tree[element].mChildren;
  return tree.FindAttribute(element, kRDFNamespace, "value") != nullptr ||
         std::any_of(children.begin(), children.end(),
                     [&](std::size_t child) { return tree.Is(child, kRDFNamespace, "value"); });
}

SourceForm StructAt(const SourceTree& tree, std::size_t holder) {
  if (HasValue(tree, holder)) return {};
  return {SourceKind::kStruct, holder, {}};
}

// Of an element without elements in it.
SourceForm LeafForm(const SourceTree& tree, std::size_t element) {
  const SourceAttribute* resource = tree.FindAttribute(element, kRDFNamespace, "resource");
  if (resource != nullptr) return {SourceKind::kURI, element, resource->mValue};
  if (HasPropertyAttributes(tree, element)) return StructAt(tree, element);
  if (HasValue(tree, element)) return {};
  const SourceElement& leaf = tree[element];
  return {SourceKind::kText, element, leaf.mContent};
}

}  // namespace

SourceForm FormOf(const SourceTree& tree, std::size_t element) {
  if (tree.FindAttribute(element, kRDFNamespace, "parseType") != nullptr) {
    return StructAt(tree, element);
  }
  const std::vector<std::size_t>& children = tree[element].mChildren;
  if (children.empty()) return LeafForm(tree, element);
  if (children.size() > 1) return {};
  const std::size_t child = children.front();
  if (IsArrayElement(tree, child)) return {SourceKind::kArray, child, {}};
  if (tree.Is(child, kRDFNamespace, "Description")) return StructAt(tree, child);
  return {};  // a typed node, whose name is one of the fields
}

bool Holds(const SourceForm& form, const Node& node) {
  switch (form.mKind) {
    case SourceKind::kText:
      return node.IsSimple() && !node.IsURI();
    case SourceKind::kURI:
      return node.IsURI();
    case SourceKind::kArray:
      return node.IsArray();
    case SourceKind::kStruct:
      return node.IsStruct();
    case SourceKind::kOther:
      break;
  }
  return false;
}

bool IsPropertyAttribute(const SourceTree& tree, std::size_t element,
                         const SourceAttribute& attribute) {
  if (IsDeclaration(attribute)) return false;
  const std::string_view prefix = PrefixIn(attribute.mName);
  if (prefix == "xml") return false;
  const bool isRDF = prefix.empty() || tree.NamespaceOf(element, prefix) == kRDFNamespace;
  return !isRDF || LocalNameIn(attribute.mName) == "type";
}

bool HasPropertyAttributes(const SourceTree& tree, std::size_t element) {
  const auto attributes = tree.Attributes(element);
  return std::any_of(attributes.begin(), attributes.end(), [&](const SourceAttribute& attribute) {
    return IsPropertyAttribute(tree, element, attribute);
  });
}

bool IsDeclaration(const SourceAttribute& attribute) {
  return attribute.mName == "xmlns" || PrefixIn(attribute.mName) == "xmlns";
}

}  // namespace xmptoolkit
