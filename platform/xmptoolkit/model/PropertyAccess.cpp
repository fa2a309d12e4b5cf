#include <string>
#include <utility>

#include <xmptoolkit/model/PropertyAccess.h>
#include <xmptoolkit/model/Text.h>

namespace xmptoolkit {

using Step = PathExpression::Step;
using StepKind = PathExpression::StepKind;

namespace {

constexpr XMP_OptionBits kArrayBits = kXMP_PropValueIsArray | kXMP_PropArrayIsOrdered |
                                      kXMP_PropArrayIsAlternate | kXMP_PropArrayIsAltText;
constexpr XMP_OptionBits kFormBits = kXMP_PropValueIsURI | kXMP_PropValueIsStruct | kArrayBits;
// What must agree: whether alternatives differ by language follows from their items.
constexpr XMP_OptionBits kKindBits = kFormBits & ~kXMP_PropArrayIsAltText;

[[noreturn]] void Refuse(XMP_ErrorID id, const PathExpression& path, const std::string& why) {
  throw XMP_Error(id, path.Describe() + " is refused: " + why);
}

// Each kind of array implies the more general ones.
XMP_OptionBits CompleteForm(const PathExpression& path, XMP_OptionBits options) {
  if ((options & ~kFormBits) != 0) {
    Refuse(kXMPErr_BadOptions, path, "its options hold bits that do not describe a property");
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
  const bool isMalformed = NextCharacter(value, position) == kMalformed;
  Refuse(kXMPErr_BadUnicode, path,
         "byte " + std::to_string(unfit + 1) + " of its value " +
             (isMalformed ? "is not UTF-8" : "begins a character that XML cannot represent"));
}

// Makes a node, still without name, for a value or for an empty array or struct.
Node MakeNode(const PathExpression& path, std::optional<std::string_view> value,
              XMP_OptionBits options) {
  Node node(kItemName, CompleteForm(path, options));
  if (node.IsSimple() != value.has_value()) {
    Refuse(value ? kXMPErr_BadOptions : kXMPErr_BadParam, path,
           value ? "its options name an array or a struct, which cannot have a value"
                 : "it has no value, and its options name neither an array nor a struct");
  }
  if (value) {
    CheckText(path, *value);
    node.SetValue(std::string(*value));
  }
  return node;
}

void CheckCanCreate(const PathExpression& path, const PathTarget& target) {
  const PathExpression::StepList& steps = path.Steps();
  for (std::size_t i = target.mMatched; i < steps.size(); ++i) {
    const bool isFirst = i == target.mMatched;
    switch (steps[i].mKind) {
      case StepKind::kItem:
      case StepKind::kLastItem:
        if (isFirst) {
          Refuse(kXMPErr_BadIndex, path,
                 path.Describe(i) + " has " + std::to_string(target.mNode->Children().Size()) +
                     " items");
        }
        Refuse(kXMPErr_BadXPath, path, path.Describe(i) + " is absent, so it has no items");
      case StepKind::kQualifier:
        if (!isFirst) {
          Refuse(kXMPErr_BadXPath, path,
                 path.Describe(i) + " is absent, so it cannot be qualified");
        }
        break;
      case StepKind::kName:
        break;
    }
  }
}

// Refuses `node` as the new state of a qualifier that `step` leads to; other steps pass.
void CheckQualifier(const PathExpression& path, const Step& step, const Node& node) {
  if (step.mKind != StepKind::kQualifier) return;
  if (step.mURI == kRDFNamespace) {
    Refuse(kXMPErr_BadXPath, path, "RDF's own qualifiers can only be read");
  }
  if (step.mURI == kXMLNamespace && (!node.IsSimple() || node.IsURI())) {
    Refuse(kXMPErr_BadOptions, path, "a language is plain text");
  }
}

// Adds `leaf`, and the structs on the path to it, below the last node that exists. The chain is
// built from its end, so that only the last step changes the document.
void CreateNode(Document& document, const PathExpression& path, const PathTarget& target,
                Node leaf) {
  CheckCanCreate(path, target);
  const PathExpression::StepList& steps = path.Steps();
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
  if (steps[target.mMatched].mKind == StepKind::kQualifier) {
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
           node.IsSimple() ? "it has a value" : "it is an array or a struct");
  }
  if (!made.IsSimple()) {
    if ((made.Form() & kKindBits) != (node.Form() & kKindBits)) {
      Refuse(kXMPErr_BadOptions, path, "it exists and is of another kind");
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
    Refuse(kXMPErr_BadOptions, array, "the array's options do not name an array");
  }
  Node item = MakeNode(array, value, itemOptions);
  if (array.Steps().size() == static_cast<std::size_t>(kXMP_MaxNesting)) {
    Refuse(kXMPErr_BadXPath, array, "an item of it would be nested too deeply");
  }
  PathTarget target = FollowPath(document, array);
  if (!target.Found(array)) {
    if (form == 0) Refuse(kXMPErr_BadOptions, array, "it is absent, and no kind of array is given");
    Node created(kItemName, form);
    CreateNode(document, array, target, std::move(created));
    target = FollowPath(document, array);
  } else if (!target.mNode->IsArray()) {
    Refuse(kXMPErr_BadXPath, array, "it is not an array, so nothing can be appended");
  } else if (form != 0 && (form & kKindBits) != (target.mNode->Form() & kKindBits)) {
    Refuse(kXMPErr_BadOptions, array, "it is an array of another kind");
  }
  target.mNode->Children().Append(std::move(item));
}

void DeleteNode(Document& document, const PathExpression& path) {
  const PathTarget target = FollowPath(document, path);
  if (!target.Found(path)) return;
  if (path.Steps().back().mKind == StepKind::kQualifier) {
    target.mParent->RemoveQualifier(target.mPosition);
  } else {
    target.mParent->RemoveChild(target.mPosition);
  }
}

XMP_Index CountItems(const Document& document, const PathExpression& array) {
  const Node* node = FindNode(document, array);
  if (node == nullptr) return 0;
  if (!node->IsArray())
    Refuse(kXMPErr_BadXPath, array, "it is not an array, so its items cannot be counted");
  return static_cast<XMP_Index>(node->Children().Size());
}

}  // namespace xmptoolkit
