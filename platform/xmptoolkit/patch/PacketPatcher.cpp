#include <algorithm>
#include <set>
#include <string>

#include <xmptoolkit/model/Names.h>
#include <xmptoolkit/patch/ChildEdits.h>
#include <xmptoolkit/patch/NotPatchable.h>
#include <xmptoolkit/patch/PacketPatcher.h>
#include <xmptoolkit/patch/PatchStyle.h>
#include <xmptoolkit/patch/PropertyPatcher.h>
#include <xmptoolkit/patch/SourceForm.h>
#include <xmptoolkit/patch/StyledWriter.h>

namespace xmptoolkit {

namespace {

std::size_t FindRDF(const SourceTree& tree) {
  if (tree.Is(0, kRDFNamespace, "RDF")) return 0;
  for (const std::size_t child : tree[0].mChildren) {
    if (tree.Is(child, kRDFNamespace, "RDF")) return child;
  }
  throw NotPatchable{"it has no rdf:RDF"};
}

bool HasLanguage(const SourceTree& tree, std::size_t element) {
  return tree.FindAttribute(element, kXMLNamespace, "lang") != nullptr;
}

class PacketPatcher {
 public:
  PacketPatcher(const SourceTree& tree, const Document& before, const Document& after,
                bool asciiOnly)
      : mTree(tree),
        mBefore(before),
        mAfter(after),
        mRDF(FindRDF(tree)),
        mStyle(tree, mRDF, tree[mRDF].mChildren),
        mWriter(tree, after, mStyle, asciiOnly),
        mProperties(tree, before, after, mStyle, mWriter, mEdits) {}

  std::vector<Edit> Run();

 private:
  // What becomes of an rdf:Description.
  struct Description {
    std::size_t mElement = 0;
    std::size_t mPropertyCount = 0;
    std::set<std::string> mNamespaces;  // of its properties
    std::vector<std::size_t> mRemovedElements;
    std::vector<const SourceAttribute*> mRemovedAttributes;
    std::vector<const Node*> mAdded;  // as elements
    bool mHasNewAttributes = false;

    bool LosesAll() const {
      const std::size_t removed = mRemovedElements.size() + mRemovedAttributes.size();
      return removed > 0 && removed == mPropertyCount && mAdded.empty() && !mHasNewAttributes;
    }
  };

  void FindProperties();
  void Change(const FieldChanges& changes);
  void Remove(const SourcePlace& place);
  void Add(const Node& property);
  bool AddTo(Description& description, const Node& property);
  void Finish();
  void FinishDescription(const Description& description);
  bool MayGo(const Description& description) const;
  Description& DescriptionOf(const SourcePlace& place);

  const SourceTree& mTree;
  const Document& mBefore;
  const Document& mAfter;
  const std::size_t mRDF;
  const PatchStyle mStyle;
  const StyledWriter mWriter;
  Edits mEdits;
  PropertyPatcher mProperties;
  std::vector<Description> mDescriptions;
  SourcePlaces mPlaces;
  std::vector<const Node*> mApart;  // new properties that get an rdf:Description of their own
};

std::vector<Edit> PacketPatcher::Run() {
  if (mBefore.mAbout != mAfter.mAbout) throw NotPatchable{"its subject changes"};
  FindProperties();
  Change(mProperties.Compare(mBefore.mRoot, mAfter.mRoot));
  Finish();
  return mEdits.Take();
}

void PacketPatcher::FindProperties() {
  for (const std::size_t element : mTree[mRDF].mChildren) {
    const std::size_t before = mPlaces.size();
    AddPlaces(mTree, element, mPlaces);
    Description& description = mDescriptions.emplace_back();
    description.mElement = element;
    description.mPropertyCount = mPlaces.size() - before;
    for (const SourceAttribute& attribute : mTree.Attributes(element)) {
      if (!IsPropertyAttribute(mTree, element, attribute)) continue;
      description.mNamespaces.insert(mTree.NamespaceOf(element, PrefixIn(attribute.mName)));
    }
    for (const std::size_t child : mTree[element].mChildren) {
      description.mNamespaces.insert(mTree.NamespaceOf(child, PrefixIn(mTree[child].mName)));
    }
  }
}

void PacketPatcher::Change(const FieldChanges& changes) {
  for (const Node* property : changes.mRemoved) Remove(mProperties.PlaceOf(*property, mPlaces));
  for (const auto& [before, after] : changes.mChanged) {
    const SourcePlace& place = mProperties.PlaceOf(*before, mPlaces);
    if (place.mAttribute == nullptr) {
      mProperties.ChangeElement(place.mElement, *before, *after);
    } else if (!mProperties.ChangeAttribute(*place.mAttribute, *after)) {
      Remove(place);
      Add(*after);
    }
  }
  for (const Node* property : changes.mAdded) Add(*property);
}

PacketPatcher::Description& PacketPatcher::DescriptionOf(const SourcePlace& place) {
  const std::size_t element =
      place.mAttribute == nullptr ? mTree[place.mElement].mParent : place.mElement;
  const auto found = std::lower_bound(
      mDescriptions.begin(), mDescriptions.end(), element,
      [](const Description& description, std::size_t at) { return description.mElement < at; });
  return *found;
}

void PacketPatcher::Remove(const SourcePlace& place) {
  Description& description = DescriptionOf(place);
  if (place.mAttribute == nullptr) {
    description.mRemovedElements.push_back(place.mElement);
  } else {
    description.mRemovedAttributes.push_back(place.mAttribute);
  }
}

void PacketPatcher::Add(const Node& property) {
  const std::string& uri = mAfter.mNames.URI(mAfter.mNames.NamespaceOf(property.Name()));
  for (const bool isNamespaceHeld : {true, false}) {
    const auto place =
        std::find_if(mDescriptions.rbegin(), mDescriptions.rend(), [&](Description& description) {
          if (isNamespaceHeld && !description.mNamespaces.contains(uri)) return false;
          return AddTo(description, property);
        });
    if (place != mDescriptions.rend()) return;
  }
  mApart.push_back(&property);
}

// An rdf:Description without properties stays so, since those that lose all are removed.
bool PacketPatcher::AddTo(Description& description, const Node& property) {
  const std::size_t element = description.mElement;
  if (description.mPropertyCount == 0 || HasLanguage(mTree, element)) return false;
  const NameTable& names = mAfter.mNames;
  if (!mTree.PrefixOf(element, names.URI(names.NamespaceOf(property.Name())))) return false;
  if (mStyle.mSimpleAreAttributes && mProperties.AddAttribute(element, property)) {
    return description.mHasNewAttributes = true;
  }
  if (mTree[element].mIsEmptyTag) return false;
  description.mAdded.push_back(&property);
  return true;
}

void PacketPatcher::Finish() {
  std::vector<std::size_t> removed;
  for (const Description& description : mDescriptions) {
    if (MayGo(description)) {
      removed.push_back(description.mElement);
    } else {
      FinishDescription(description);
    }
  }
  // The subject of the packet stays written somewhere.
  const bool losesSubject = !mBefore.mAbout.empty() && removed.size() == mDescriptions.size();
  if (losesSubject && !removed.empty()) {
    removed.pop_back();
    FinishDescription(mDescriptions.back());
  }
  RemoveChildren(mTree, mRDF, removed, mApart.empty(), mEdits);
  if (mApart.empty()) return;
  const std::size_t model = mDescriptions.empty() ? mRDF : mDescriptions.back().mElement;
  const auto write = [&](std::string_view space) {
    return std::string(space) + mWriter.Description(mApart, mRDF, model, space);
  };
  AppendChildren(mTree, mRDF, mStyle.mIndent, write, mEdits);
}

void PacketPatcher::FinishDescription(const Description& description) {
  const std::size_t element = description.mElement;
  for (const SourceAttribute* attribute : description.mRemovedAttributes) {
    RemoveAttribute(mTree, *attribute, mEdits);
  }
  RemoveChildren(mTree, element, description.mRemovedElements, description.mAdded.empty(), mEdits);
  if (!description.mAdded.empty()) mProperties.AddElements(element, description.mAdded);
}

// Whether an rdf:Description says nothing more.
bool PacketPatcher::MayGo(const Description& description) const {
  const std::size_t element = description.mElement;
  if (!description.LosesAll() || mTree[element].mHasMarkup) return false;
  const auto attributes = mTree.Attributes(element);
  return std::all_of(attributes.begin(), attributes.end(), [&](const SourceAttribute& attribute) {
    return IsDeclaration(attribute) || IsPropertyAttribute(mTree, element, attribute) ||
           mTree.IsAttribute(element, attribute, kRDFNamespace, "about");
  });
}

}  // namespace

std::vector<Edit> PatchText(const SourceTree& tree, const Document& before, const Document& after,
                            bool asciiOnly) {
  return PacketPatcher(tree, before, after, asciiOnly).Run();
}

}  // namespace xmptoolkit
