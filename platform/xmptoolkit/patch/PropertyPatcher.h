#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include <xmptoolkit/model/Comparison.h>
#include <xmptoolkit/model/Document.h>
#include <xmptoolkit/patch/Edits.h>
#include <xmptoolkit/patch/PatchStyle.h>
#include <xmptoolkit/patch/SourceForm.h>
#include <xmptoolkit/patch/SourceTree.h>
#include <xmptoolkit/patch/StyledWriter.h>

namespace xmptoolkit {

// Where a property or field is written: an element, or an attribute of one.
struct SourcePlace {
  std::size_t mElement = 0;
  const SourceAttribute* mAttribute = nullptr;
};

// The properties or fields that an element holds, by SourceTree::Key.
using SourcePlaces = std::unordered_map<std::string, SourcePlace>;
void AddPlaces(const SourceTree& tree, std::size_t holder, SourcePlaces& places);

// What differs between the properties or fields of a node before and after.
struct FieldChanges {
  std::vector<const Node*> mRemoved;  // of the node before
  std::vector<const Node*> mAdded;    // of the node after
  std::vector<std::pair<const Node*, const Node*>> mChanged;
};

// Changes the bytes of properties that have another value than before. Always changes as little as
// the form of the file allows: the text of an element, the items of an array that are not the same,
// or, if nothing else will do, the element as a whole.
class PropertyPatcher {
 public:
  PropertyPatcher(const SourceTree& tree, const Document& before, const Document& after,
                  const PatchStyle& style, const StyledWriter& writer, Edits& edits)
      : mTree(tree),
        mBefore(before),
        mAfter(after),
        mStyle(style),
        mWriter(writer),
        mEdits(edits) {}

  FieldChanges Compare(const Node& before, const Node& after) const;

  // The place of a node of the document before; throws NotPatchable if it is not among `places`.
  const SourcePlace& PlaceOf(const Node& node, const SourcePlaces& places) const;

  // Changes an element, or an attribute, to hold `after` in place of `before`, which differs.
  // ChangeAttribute returns false, with nothing changed, if an attribute cannot hold it.
  void ChangeElement(std::size_t element, const Node& before, const Node& after);
  bool ChangeAttribute(const SourceAttribute& attribute, const Node& after);

  // Adds a property to an element whose other properties are attributes; returns false, with
  // nothing changed, if it is not such an element or no attribute can hold the property.
  bool AddAttribute(std::size_t element, const Node& node);
  // Adds elements of properties or items at the end of an element.
  void AddElements(std::size_t element, const std::vector<const Node*>& nodes);

 private:
  void ReplaceElement(std::size_t element, const Node& before, const Node& after);
  bool ChangeValue(std::size_t element, const Node& before, const Node& after);
  void ChangeText(std::size_t element, const std::string& value);
  bool ChangeItems(std::size_t holder, const Node& before, const Node& after);
  void AddItem(std::size_t holder, std::size_t place, const Node& item);
  bool ChangeFields(std::size_t element, std::size_t holder, const Node& before, const Node& after);
  std::string InnerMarkup(std::size_t element) const;

  const SourceTree& mTree;
  const Document& mBefore;
  const Document& mAfter;
  const PatchStyle& mStyle;
  const StyledWriter& mWriter;
  Edits& mEdits;
};

}  // namespace xmptoolkit
