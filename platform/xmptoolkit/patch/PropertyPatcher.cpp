#include <algorithm>

#include <xmptoolkit/model/Comparison.h>
#include <xmptoolkit/patch/ChildEdits.h>
#include <xmptoolkit/patch/ItemPairs.h>
#include <xmptoolkit/patch/NotPatchable.h>
#include <xmptoolkit/patch/PropertyPatcher.h>

namespace xmptoolkit {

namespace {

constexpr XMP_OptionBits kFreeForm = Node::kSpelling | kXMP_PropArrayIsAltText;

// A struct whose fields are attributes of its property's own element.
bool IsBareStruct(const SourceTree& tree, std::size_t element, std::size_t holder) {
  return element == holder && tree.FindAttribute(element, kRDFNamespace, "parseType") == nullptr;
}

}  // namespace

void AddPlaces(const SourceTree& tree, std::size_t holder, SourcePlaces& places) {
  for (const SourceAttribute& attribute : tree.Attributes(holder)) {
    if (!IsPropertyAttribute(tree, holder, attribute)) continue;
    places.emplace(tree.KeyOf(holder, attribute), SourcePlace{holder, &attribute});
  }
  for (const std::size_t child : tree[holder].mChildren) {
    places.emplace(tree.KeyOf(child), SourcePlace{child});
  }
}

FieldChanges PropertyPatcher::Compare(const Node& before, const Node& after) const {
  const Comparison forward(mBefore, mAfter, Equality::kMetadata);
  const Comparison backward(mAfter, mBefore, Equality::kMetadata);
  FieldChanges changes;
  for (const Node& old : before.Children()) {
    const std::size_t partner = forward.FindPartner(old, after.Children());
    if (partner == NodeList::npos) {
      changes.mRemoved.push_back(&old);
    } else if (const Node& now = after.Children()[partner]; !forward.AreEqual(old, now)) {
      changes.mChanged.emplace_back(&old, &now);
    }
  }
  for (const Node& now : after.Children()) {
    if (backward.FindPartner(now, before.Children()) == NodeList::npos) {
      changes.mAdded.push_back(&now);
    }
  }
  return changes;
}

const SourcePlace& PropertyPatcher::PlaceOf(const Node& node, const SourcePlaces& places) const {
  const NameTable& names = mBefore.mNames;
  const auto place = places.find(
      SourceTree::Key(names.URI(names.NamespaceOf(node.Name())), names.LocalName(node.Name())));
  if (place == places.end()) throw NotPatchable{"a property is not found in it"};
  return place->second;
}

void PropertyPatcher::ChangeElement(std::size_t element, const Node& before, const Node& after) {
  const Comparison comparison(mBefore, mAfter, Equality::kMetadata);
  const std::size_t count = mEdits.Count();
  const bool isSameKind = ((before.Form() ^ after.Form()) & ~kFreeForm) == 0;
  if (isSameKind && comparison.HaveEqualQualifiers(before, after) &&
      ChangeValue(element, before, after)) {
    return;
  }
  mEdits.Shrink(count);
  ReplaceElement(element, before, after);
}

void PropertyPatcher::ReplaceElement(std::size_t element, const Node& before, const Node& after) {
  const Span whole = mTree[element].mWhole;
  const std::string_view space = LastLine(mTree.SpaceBefore(whole.mBegin));
  // Comments in a simple value are not part of it. Those in arrays and structs are at their nodes.
  std::string xml = before.IsSimple() ? InnerMarkup(element) : std::string();
  xml += mWriter.Element(after, mTree[element].mParent, space);
  mEdits.Replace(whole, std::move(xml));
}

bool PropertyPatcher::ChangeValue(std::size_t element, const Node& before, const Node& after) {
  const SourceForm form = FormOf(mTree, element);
  if (!Holds(form, before)) return false;
  switch (form.mKind) {
    case SourceKind::kText:
      ChangeText(element, after.Value());
      return true;
    case SourceKind::kURI:
      mEdits.Replace(form.mValue,
                     mWriter.AttributeValue(after.Value(), mTree.Text()[form.mValue.mEnd]));
      return true;
    case SourceKind::kArray:
      return ChangeItems(form.mHolder, before, after);
    case SourceKind::kStruct:
      return ChangeFields(element, form.mHolder, before, after);
    case SourceKind::kOther:
      break;
  }
  return false;
}

void PropertyPatcher::ChangeText(std::size_t element, const std::string& value) {
  const SourceElement& leaf = mTree[element];
  const std::string text = mWriter.Text(value);
  if (!leaf.mIsEmptyTag) return mEdits.Replace(leaf.mContent, InnerMarkup(element) + text);
  mEdits.Replace(leaf.mContent, ">" + text + "</" + std::string(leaf.mName) + ">");
}

bool PropertyPatcher::ChangeAttribute(const SourceAttribute& attribute, const Node& after) {
  if (!FitsAttribute(after)) return false;
  const char quote = mTree.Text()[attribute.mValue.mEnd];
  mEdits.Replace(attribute.mValue, mWriter.AttributeValue(after.Value(), quote));
  return true;
}

bool PropertyPatcher::ChangeItems(std::size_t holder, const Node& before, const Node& after) {
  const std::vector<std::size_t>& items = mTree[holder].mChildren;
  if (items.size() != before.Children().Size()) return false;
  std::vector<std::size_t> removed;
  std::vector<const Node*> first;  // of an array that was empty
  std::size_t place = 0;           // how many of the old items precede
  for (const auto& [inBefore, inAfter, areEqual] : PairItems(mBefore, before, mAfter, after)) {
    if (inBefore) place = *inBefore + 1;
    if (areEqual) continue;
    if (!inAfter) {
      removed.push_back(items[*inBefore]);
    } else if (inBefore) {
      ChangeElement(items[*inBefore], before.Children()[*inBefore], after.Children()[*inAfter]);
    } else if (items.empty()) {
      first.push_back(&after.Children()[*inAfter]);
    } else {
      AddItem(holder, place, after.Children()[*inAfter]);
    }
  }
  if (!first.empty()) AddElements(holder, first);
  RemoveChildren(mTree, holder, removed, first.empty(), mEdits);
  return true;
}

// Adds an item behind the one at `place`, counted from 1, or before all others.
void PropertyPatcher::AddItem(std::size_t holder, std::size_t place, const Node& item) {
  const std::vector<std::size_t>& items = mTree[holder].mChildren;
  const Span neighbour = mTree[items[place == 0 ? 0 : place - 1]].mWhole;
  const std::string space(LastLine(mTree.SpaceBefore(neighbour.mBegin)));
  mEdits.Insert(place == 0 ? mTree.WithSpaceBefore(neighbour).mBegin : neighbour.mEnd,
                space + mWriter.Element(item, holder, space));
}

bool PropertyPatcher::ChangeFields(std::size_t element, std::size_t holder, const Node& before,
                                   const Node& after) {
  SourcePlaces places;
  AddPlaces(mTree, holder, places);
  if (places.size() != before.Children().Size()) return false;
  const FieldChanges changes = Compare(before, after);
  // Without an attribute, the element of a bare struct would be that of an empty text.
  if (IsBareStruct(mTree, element, holder) && after.Children().Empty()) return false;
  for (const auto& [old, now] : changes.mChanged) {
    const SourcePlace& place = PlaceOf(*old, places);
    if (place.mAttribute == nullptr) {
      ChangeElement(place.mElement, *old, *now);
    } else if (!ChangeAttribute(*place.mAttribute, *now)) {
      return false;
    }
  }
  std::vector<std::size_t> removed;
  for (const Node* field : changes.mRemoved) {
    const SourcePlace& place = PlaceOf(*field, places);
    if (place.mAttribute == nullptr) {
      removed.push_back(place.mElement);
    } else {
      RemoveAttribute(mTree, *place.mAttribute, mEdits);
    }
  }
  std::vector<const Node*> elements;
  for (const Node* field : changes.mAdded) {
    if (!AddAttribute(holder, *field)) elements.push_back(field);
  }
  RemoveChildren(mTree, holder, removed, elements.empty(), mEdits);
  if (elements.empty()) return true;
  if (IsBareStruct(mTree, element, holder)) return false;
  AddElements(holder, elements);
  return true;
}

bool PropertyPatcher::AddAttribute(std::size_t element, const Node& node) {
  if (!HasPropertyAttributes(mTree, element) || !FitsAttribute(node)) return false;
  std::string attribute = mWriter.Attribute(node, element);
  if (attribute.empty()) return false;
  mEdits.Insert(mTree.Attributes(element).back().mWhole.mEnd, std::move(attribute));
  return true;
}

void PropertyPatcher::AddElements(std::size_t element, const std::vector<const Node*>& nodes) {
  const auto write = [&](std::string_view gap) {
    const std::string_view space = LastLine(gap);  // without the empty lines between groups
    std::string xml;
    for (const Node* node : nodes) xml.append(space).append(mWriter.Element(*node, element, space));
    return xml;
  };
  AppendChildren(mTree, element, mStyle.mIndent, write, mEdits);
}

// Comments, and processing instructions, as they are written.
std::string PropertyPatcher::InnerMarkup(std::size_t element) const {
  std::string markup;
  std::string_view rest = mTree.Text(mTree[element].mContent);
  for (std::size_t begin; (begin = rest.find('<')) != std::string_view::npos;) {
    rest.remove_prefix(begin);
    const bool isComment = rest.starts_with("<!--");
    const bool isCDATA = rest.starts_with("<![CDATA[");
    const bool isInstruction = rest.starts_with("<?");
    const std::string_view end = isComment ? "-->" : isCDATA ? "]]>" : isInstruction ? "?>" : ">";
    const std::size_t size = std::min(rest.find(end, isComment ? 4 : 1), rest.size() - end.size());
    if (isComment || isInstruction) markup += rest.substr(0, size + end.size());
    rest.remove_prefix(size + end.size());
  }
  return markup;
}

}  // namespace xmptoolkit
