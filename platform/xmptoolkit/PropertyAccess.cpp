#include "PropertyAccess.h"

#include <string>
#include <utility>

#include "Text.h"

namespace xmptoolkit {

namespace {

constexpr XMP_OptionBits kArrayBits = kXMP_PropValueIsArray | kXMP_PropArrayIsOrdered |
                                      kXMP_PropArrayIsAlternate | kXMP_PropArrayIsAltText;
constexpr XMP_OptionBits kFormBits = kXMP_PropValueIsURI | kXMP_PropValueIsStruct | kArrayBits;
// What has to agree: that alternatives differ by language follows from their items.
constexpr XMP_OptionBits kKindBits = kFormBits & ~kXMP_PropArrayIsAltText;

[[noreturn]] void Refuse(XMP_ErrorID id, const PathExpression& path, const std::string& why) {
  throw XMP_Error(id, path.Describe() + " is refused: " + why);
}

// Each kind of array implies the more general ones.
XMP_OptionBits CompleteForm(const PathExpression& path, XMP_OptionBits options) {
  if ((options & ~kFormBits) != 0) {
    Refuse(kXMPErr_BadOptions, path, "its options hold bits that describe no property");
  }
  if ((options & kXMP_PropArrayIsAltText) != 0) options |= kXMP_PropArrayIsAlternate;
  if ((options & kXMP_PropArrayIsAlternate) != 0) options |= kXMP_PropArrayIsOrdered;
  if ((options & kXMP_PropArrayIsOrdered) != 0) options |= kXMP_PropValueIsArray;
  const int kinds = ((options & kXMP_PropValueIsURI) != 0) +
                    ((options & kXMP_PropValueIsStruct) != 0) +
                    ((options & kXMP_PropValueIsArray) != 0);
  if (kinds > 1) Refuse(kXMPErr_BadOptions, path, "its options name several kinds at once");
  return options;
}

void CheckText(const PathExpression& path, std::string_view value) {
  const std::size_t unfit = FindUnfitForXML(value);
  if (unfit == std::string_view::npos) return;
  std::size_t position = unfit;
  const bool isMalformed = DecodeUTF8(value, position) == kMalformed;
  Refuse(kXMPErr_BadUnicode, path,
         "byte " + std::to_string(unfit + 1) + " of its value " +
             (isMalformed ? "is not UTF-8" : "begins a character that XML cannot carry"));
}

// A node without name for a value, or for an empty array or struct.
Node MakeNode(const PathExpression& path, std::optional<std::string_view> value,
              XMP_OptionBits options) {
  Node node(kItemName, CompleteForm(path, options));
  if (node.IsSimple() != value.has_value()) {
    Refuse(value ? kXMPErr_BadOptions : kXMPErr_BadParam, path,
           value ? "its options name an array or a struct, which cannot have a value"
                 : "it has no value, and its options name no array and no struct");
  }
  if (value) {
    CheckText(path, *value);
    node.SetValue(std::string(*value));
  }
  return node;
}

void CheckCanCreate(const PathExpression& path, const PathTarget& target) {
  const PathSteps& steps = path.Steps();
  for (std::size_t i = target.mMatched; i < steps.size(); ++i) {
    const bool isFirst = i == target.mMatched;
    switch (steps[i].mKind) {
      case PathStep::Kind::kItem:
      case PathStep::Kind::kLastItem:
        if (isFirst) {
          Refuse(kXMPErr_BadIndex, path,
                 path.Describe(i) + " has " + std::to_string(target.mNode->Children().Size()) +
                     " items");
        }
        Refuse(kXMPErr_BadXPath, path, path.Describe(i) + " is not there, so it has no items");
      case PathStep::Kind::kQualifier:
        if (!isFirst) {
          Refuse(kXMPErr_BadXPath, path, path.Describe(i) + " is not there to be qualified");
        }
        break;
      case PathStep::Kind::kName:
        break;
    }
  }
}

// `node` is what the step, if it is one to a qualifier, is about to become.
void CheckQualifier(const PathExpression& path, const PathStep& step, const Node& node) {
  if (step.mKind != PathStep::Kind::kQualifier) return;
  if (step.mURI == kRDFNamespace) {
    Refuse(kXMPErr_BadXPath, path, "a qualifier of RDF's own is only read");
  }
  if (step.mURI == kXMLNamespace && (!node.IsSimple() || node.IsURI())) {
    Refuse(kXMPErr_BadOptions, path, "a language is plain text");
  }
}

// Hangs `leaf`, and the structs on the way to it, below the last node that exists. The chain is
// made from its end, so that the document changes in one step, the last.
void CreateNode(Document& document, const PathExpression& path, const PathTarget& target,
                Node leaf) {
  CheckCanCreate(path, target);
  const PathSteps& steps = path.Steps();
  CheckQualifier(path, steps[target.mMatched], leaf);
  const auto nameOf = [&](std::size_t i) {
    const NamespaceId space = document.mNames.AddNamespace(steps[i].mURI);
    return document.mNames.AddName(space, steps[i].mLocalName);
  };
  Node chain = std::move(leaf);
  chain.SetName(nameOf(steps.size() - 1));
  for (std::size_t i = steps.size() - 1; i > target.mMatched; --i) {
    Node holder(nameOf(i - 1), kXMP_PropValueIsStruct);
    holder.Children().Append(std::move(chain));
    chain = std::move(holder);
  }
  if (steps[target.mMatched].mKind == PathStep::Kind::kQualifier) {
    target.mNode->AddQualifier(std::move(chain));
  } else {
    target.mNode->Children().Append(std::move(chain));
  }
}

}  // namespace

void SetNode(Document& document, const PathExpression& path, std::optional<std::string_view> value,
             XMP_OptionBits options) {
  Node made = MakeNode(path, value, options);
  const PathTarget target = FollowPath(document, path);
  if (!target.Found(path)) return CreateNode(document, path, target, std::move(made));

  Node& node = *target.mNode;
  CheckQualifier(path, path.Steps().back(), made);
  if (made.IsSimple() != node.IsSimple()) {
    Refuse(kXMPErr_BadXPath, path,
           node.IsSimple() ? "it is there with a value" : "it is an array or a struct");
  }
  if (!made.IsSimple()) {
    if ((made.Form() & kKindBits) != (node.Form() & kKindBits)) {
      Refuse(kXMPErr_BadOptions, path, "it is there and of another kind");
    }
    return;
  }
  if (made.IsURI() && node.FindQualifier(kDatatypeName) != nullptr) {
    Refuse(kXMPErr_BadOptions, path, "a value with rdf:datatype cannot become a URI");
  }
  node.SetForm((node.Form() & Node::kSpelling) | made.Form());
  node.SetValue(std::string(*value));
}

void AppendItem(Document& document, const PathExpression& array, XMP_OptionBits arrayOptions,
                std::optional<std::string_view> value, XMP_OptionBits itemOptions) {
  const XMP_OptionBits form = CompleteForm(array, arrayOptions);
  if (form != 0 && (form & kXMP_PropValueIsArray) == 0) {
    Refuse(kXMPErr_BadOptions, array, "the array's options name no array");
  }
  Node item = MakeNode(array, value, itemOptions);
  if (array.Steps().size() == static_cast<std::size_t>(kXMP_MaxNesting)) {
    Refuse(kXMPErr_BadXPath, array, "an item of it would be nested too deeply");
  }
  PathTarget target = FollowPath(document, array);
  if (!target.Found(array)) {
    if (form == 0)
      Refuse(kXMPErr_BadOptions, array, "it is not there, and no kind of array is given");
    Node created(kItemName, form);
    CreateNode(document, array, target, std::move(created));
    target = FollowPath(document, array);
  } else if (!target.mNode->IsArray()) {
    Refuse(kXMPErr_BadXPath, array, "it is no array, so it takes no items");
  } else if (form != 0 && (form & kKindBits) != (target.mNode->Form() & kKindBits)) {
    Refuse(kXMPErr_BadOptions, array, "it is an array of another kind");
  }
  target.mNode->Children().Append(std::move(item));
}

void DeleteNode(Document& document, const PathExpression& path) {
  const PathTarget target = FollowPath(document, path);
  if (!target.Found(path)) return;
  if (path.Steps().back().mKind == PathStep::Kind::kQualifier) {
    target.mParent->RemoveQualifier(target.mPosition);
  } else {
    target.mParent->RemoveChild(target.mPosition);
  }
}

XMP_Index CountItems(const Document& document, const PathExpression& array) {
  const Node* node = FindNode(document, array);
  if (node == nullptr) return 0;
  if (!node->IsArray())
    Refuse(kXMPErr_BadXPath, array, "it is no array, so its items have no number");
  return static_cast<XMP_Index>(node->Children().Size());
}

}  // namespace xmptoolkit
