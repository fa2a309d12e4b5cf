#include <algorithm>
#include <bit>
#include <optional>
#include <string>
#include <vector>

#include <xmptoolkit/XMP.h>
#include <xmptoolkit/XMPTree.h>

#include "TextRules.h"

// Property operations in sequence on one XMP object, and on a plain tree beside it.
namespace {

using fuzzing::Require;
using xmptoolkit::Equality;
using xmptoolkit::TreeNode;
using Meta = TXMPMeta<std::string>;
using Value = std::optional<std::string>;

constexpr const char* kRDF = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
constexpr XMP_OptionBits kSimple = 0, kURI = kXMP_PropValueIsURI, kStruct = kXMP_PropValueIsStruct,
                         kBag = kXMP_PropValueIsArray, kSeq = kBag | kXMP_PropArrayIsOrdered,
                         kAlt = kSeq | kXMP_PropArrayIsAlternate;

struct ModelNode {
  std::string mName;  // "prefix:name"; empty for an item
  XMP_OptionBits mForm = kSimple;
  std::string mValue;
  std::vector<ModelNode> mChildren = {}, mQualifiers = {};

  bool IsArray() const { return (mForm & kBag) != 0; }
  bool IsSimple() const { return mForm == kSimple || mForm == kURI; }
};

struct Step {
  enum class Kind { kName, kItem, kQualifier } mKind;
  std::string mName;  // "prefix:name"
  std::size_t mItem;  // 0: the last
};
using Path = std::vector<Step>;

struct Refused {};
void RefuseIf(bool isRefused) {
  if (isRefused) throw Refused();
}

class Model {
 public:
  ModelNode mRoot{"", kStruct, ""};

  const ModelNode* Find(const Path& path) {
    const Place place = Follow(path);
    return place.mSteps == path.size() ? place.mNode : nullptr;
  }

  void Set(const Path& path, const Value& value, XMP_OptionBits options) {
    ModelNode made = Make(value, options);
    const Place place = Follow(path);
    if (place.mSteps != path.size()) return Create(path, place, std::move(made));
    ModelNode& node = *place.mNode;
    CheckQualifier(path.back(), made);
    RefuseIf(made.IsSimple() != node.IsSimple() || (!made.IsSimple() && made.mForm != node.mForm));
    node.mForm = made.mForm;
    node.mValue = made.mValue;
  }

  void Append(const Path& path, XMP_OptionBits arrayOptions, const Value& value,
              XMP_OptionBits options) {
    const XMP_OptionBits form = Completed(arrayOptions);
    RefuseIf(form == kURI || form == kStruct || path.size() == kXMP_MaxNesting);
    ModelNode item = Make(value, options);
    const Place place = Follow(path);
    if (place.mSteps == path.size()) {
      RefuseIf(!place.mNode->IsArray() || (form != 0 && form != place.mNode->mForm));
      place.mNode->mChildren.push_back(std::move(item));
      return;
    }
    RefuseIf(form == 0);
    ModelNode array{"", form, ""};
    array.mChildren.push_back(std::move(item));
    Create(path, place, std::move(array));
  }

  void Delete(const Path& path) {
    const Place place = Follow(path);
    if (place.mSteps != path.size()) return;
    auto& list = path.back().mKind == Step::Kind::kQualifier ? place.mParent->mQualifiers
                                                             : place.mParent->mChildren;
    list.erase(list.begin() + (place.mNode - list.data()));
  }

 private:
  struct Place {
    ModelNode* mNode;    // the last on the way that is there
    ModelNode* mParent;  // what it is in
    std::size_t mSteps;  // how many lead to it
  };

  // Each kind of array is one of the more general ones, too. Whether alternatives are by language
  // follows from their items.
  static XMP_OptionBits Completed(XMP_OptionBits options) {
    constexpr XMP_OptionBits kArrays = kAlt | kXMP_PropArrayIsAltText;
    RefuseIf((options & ~(kURI | kStruct | kArrays)) != 0);
    const XMP_OptionBits array = options & kArrays, other = options & ~kArrays;
    RefuseIf((array != 0 && other != 0) || other == (kURI | kStruct));
    return array == 0 ? other : (std::bit_floor(array) * 2 - kBag) & kAlt;
  }

  static ModelNode Make(const Value& value, XMP_OptionBits options) {
    ModelNode node{"", Completed(options), value.value_or("")};
    RefuseIf(node.IsSimple() != value.has_value() || !fuzzing::IsXMLText(node.mValue));
    return node;
  }

  static void CheckQualifier(const Step& step, const ModelNode& made) {
    if (step.mKind != Step::Kind::kQualifier) return;
    RefuseIf(step.mName == "rdf:type" || (step.mName == "xml:lang" && made.mForm != kSimple));
  }

  Place Follow(const Path& path) {
    RefuseIf(path.size() > kXMP_MaxNesting);
    for (const Step& step : path) RefuseIf(step.mName == "xml:lang" && &step != &path.back());
    Place place{&mRoot, nullptr, 0};
    for (const Step& step : path) {
      ModelNode& node = *place.mNode;
      auto& list = step.mKind == Step::Kind::kQualifier ? node.mQualifiers : node.mChildren;
      std::size_t at = step.mItem == 0 ? list.size() - 1 : step.mItem - 1;
      if (step.mKind == Step::Kind::kItem) {
        RefuseIf(!node.IsArray());
      } else {
        RefuseIf(step.mKind == Step::Kind::kName && node.mForm != kStruct);
        const auto isIt = [&](const ModelNode& each) { return each.mName == step.mName; };
        at = static_cast<std::size_t>(std::find_if(list.begin(), list.end(), isIt) - list.begin());
      }
      if (at >= list.size()) break;
      place = {&list[at], &node, place.mSteps + 1};
    }
    return place;
  }

  static void Create(const Path& path, const Place& place, ModelNode made) {
    for (std::size_t i = place.mSteps; i < path.size(); ++i)
      RefuseIf(path[i].mKind == Step::Kind::kItem ||
               (path[i].mKind == Step::Kind::kQualifier && i > place.mSteps));
    CheckQualifier(path[place.mSteps], made);
    made.mName = path.back().mName;
    for (std::size_t i = path.size() - 1; i > place.mSteps; --i) {
      ModelNode holder{path[i - 1].mName, kStruct, ""};
      holder.mChildren.push_back(std::move(made));
      made = std::move(holder);
    }
    const bool isQualifier = path[place.mSteps].mKind == Step::Kind::kQualifier;
    auto& list = isQualifier ? place.mNode->mQualifiers : place.mNode->mChildren;
    list.insert(made.mName == "xml:lang" ? list.begin() : list.end(), std::move(made));
  }
};

const char* URIOf(char prefix) {
  return prefix == 'q' ? "urn:q#" : prefix == 's' ? "urn:s#" : kRDF;
}

XMP_OptionBits OptionsOf(const ModelNode& node) {
  const bool hasLang = !node.mQualifiers.empty() && node.mQualifiers[0].mName == "xml:lang";
  return node.mForm | (node.mQualifiers.empty() ? 0 : kXMP_PropHasQualifiers) |
         (hasLang ? kXMP_PropHasLang : 0);
}

void RequireSame(const ModelNode& model, const TreeNode& node) {
  const XMP_OptionBits ignored = kXMP_PropArrayIsAltText | kXMP_PropIsQualifier;
  Require((node.Options() & ~ignored) == OptionsOf(model), "forms are the model's");
  Require(node.Value() == model.mValue, "values are the model's");
  Require(node.ChildCount() == model.mChildren.size(), "there are as many parts");
  Require(node.QualifierCount() == model.mQualifiers.size(), "there are as many qualifiers");
  const auto compare = [](const ModelNode& left, const TreeNode& right) {
    if (!left.mName.empty())
      Require(right.Prefix() + ":" + right.LocalName() == left.mName, "names are the model's");
    RequireSame(left, right);
  };
  for (std::size_t i = 0; i < node.ChildCount(); ++i) compare(model.mChildren[i], node.Child(i));
  for (std::size_t i = 0; i < node.QualifierCount(); ++i)
    compare(model.mQualifiers[i], node.Qualifier(i));
}

std::string Serialize(const Meta& meta, XMP_OptionBits options) {
  std::string packet;
  meta.SerializeToBuffer(&packet, options);
  return packet;
}
Meta Parse(const std::string& packet) {
  return Meta(packet.data(), static_cast<XMP_StringLen>(packet.size()));
}

struct Pair {
  Meta mMeta;
  Model mModel;

  void RequireSame() const {
    ::RequireSame(mModel.mRoot, xmptoolkit::RootOf(mMeta));
    const std::string packet = Serialize(mMeta, 0),
                      compact = Serialize(mMeta, kXMP_UseCompactFormat);
    Require(AreEqual(Parse(packet), mMeta, Equality::kFile), "a packet reads as what it was");
    Require(Serialize(Parse(packet), 0) == packet, "writing again gives the same bytes");
    Require(AreEqual(Parse(compact), mMeta, Equality::kMetadata), "a compact packet does, too");
  }
};

std::string PickName(fuzzing::Input& input, bool isQualifier) {
  const unsigned byte = input.Byte();
  if (isQualifier && byte % 4 == 0) return "xml:lang";
  if (byte == 255) return "rdf:type";
  return std::string(byte % 2 == 0 ? "q:" : "s:") + static_cast<char>('a' + byte / 2 % 26);
}

Path PickPath(fuzzing::Input& input) {
  Path path{{Step::Kind::kName, PickName(input, false), 0}};
  unsigned count = input.Byte();
  for (count = count > 250 ? count - 155 : count % 6; count > 0; --count) {
    const unsigned kind = input.Byte();
    if (kind % 3 == 0)
      path.push_back({Step::Kind::kItem, "", kind / 3 % 5});
    else if (kind % 3 == 1)
      path.push_back({Step::Kind::kName, PickName(input, false), 0});
    else
      path.push_back({Step::Kind::kQualifier, PickName(input, true), 0});
  }
  return path;
}

std::string TextOf(const Path& path) {
  std::string text = path[0].mName;
  for (std::size_t i = 1; i < path.size(); ++i) {
    const Step& step = path[i];
    if (step.mKind != Step::Kind::kItem)
      text += (step.mKind == Step::Kind::kName ? "/" : "/?") + step.mName;
    else
      text += step.mItem == 0 ? "[last()]" : "[" + std::to_string(step.mItem) + "]";
  }
  return text;
}

Value PickValue(fuzzing::Input& input) {
  static const char* const kValues[] = {
      "",          "a",    " \n\t\r ", "<&>\"']]>",         "en-US",
      "x-default", "\x01", "\xC3(",    "http://x.example/", "\xEF\xBF\xBE"};
  const unsigned byte = input.Byte();
  if (byte % 4 == 0) return std::nullopt;
  if (byte % 4 == 1) return std::string(input.Bytes(byte / 4 % 16));
  return input.OneOf(kValues);
}

XMP_OptionBits PickOptions(fuzzing::Input& input) {
  constexpr XMP_OptionBits kOptions[] = {kSimple,
                                         kURI,
                                         kStruct,
                                         kBag,
                                         kXMP_PropArrayIsOrdered,
                                         kXMP_PropArrayIsAlternate,
                                         kXMP_PropArrayIsAltText};
  const unsigned byte = input.Byte();
  return byte < 224 ? kOptions[byte % std::size(kOptions)]
                    : kOptions[byte % 7] | kOptions[byte % 5] | (byte & 8);
}

// Runs an operation on both; one refuses when the other does.
template <typename OnMeta, typename OnModel>
void OnBoth(OnMeta onMeta, OnModel onModel) {
  bool isAccepted = true, isExpected = true;
  try {
    onModel();
  } catch (const Refused&) {
    isExpected = false;
  }
  try {
    onMeta();
  } catch (const XMP_Error& error) {
    Require(*error.GetErrMsg() != '\0', "a refusal has a reason");
    isAccepted = false;
  }
  Require(isAccepted || !isExpected, "what should be done is not refused");
  Require(!isAccepted || isExpected, "what should be refused is not done");
}

bool IsAlternative(Model& model, const Path& path) {
  try {
    const ModelNode* node = model.Find(path);
    return node != nullptr && node->mForm == kAlt;
  } catch (const Refused&) {
    return false;
  }
}

void Write(unsigned command, fuzzing::Input& input, Pair& pair) {
  const Path path = PickPath(input);
  const std::string text = TextOf(path);
  const char* const uri = URIOf(path[0].mName[0]);
  if (command == 0) {
    OnBoth([&] { pair.mMeta.DeleteProperty(uri, text.c_str()); },
           [&] { pair.mModel.Delete(path); });
    return;
  }
  const Value value = PickValue(input);
  const XMP_OptionBits options = PickOptions(input);
  if (command != 1 && !value && IsAlternative(pair.mModel, path)) return;
  const bool hasNul = value && value->find('\0') != value->npos;
  const bool isString = hasNul || (value && value->size() % 2 == 0);
  const char* const plain = value && !hasNul ? value->c_str() : nullptr;
  if (command == 1) {
    const XMP_OptionBits arrayOptions = PickOptions(input);
    if (hasNul) return;  // cannot be said in this call
    OnBoth([&] { pair.mMeta.AppendArrayItem(uri, text.c_str(), arrayOptions, plain, options); },
           [&] { pair.mModel.Append(path, arrayOptions, value, options); });
  } else if (command == 2 && path.size() > 1 && path.back().mKind == Step::Kind::kName) {
    const std::string outer = TextOf(Path(path.begin(), path.end() - 1));
    const std::string& name = path.back().mName;
    const char* const fieldURI = URIOf(name[0]);
    const auto set = [&](auto fieldValue) {
      pair.mMeta.SetStructField(uri, outer.c_str(), fieldURI, name.c_str(), fieldValue, options);
    };
    OnBoth([&] { isString ? set(*value) : set(plain); },
           [&] { pair.mModel.Set(path, value, options); });
  } else {
    const auto set = [&](auto propertyValue) {
      pair.mMeta.SetProperty(uri, text.c_str(), propertyValue, options);
    };
    OnBoth([&] { isString ? set(*value) : set(plain); },
           [&] { pair.mModel.Set(path, value, options); });
  }
}

void Read(fuzzing::Input& input, Pair& pair) {
  const Path path = PickPath(input);
  const std::string text = TextOf(path);
  const char* const uri = URIOf(path[0].mName[0]);
  std::string value = "untouched", expected = value;
  XMP_OptionBits options = ~0u, expectedOptions = options;
  bool isThere = false, isExpected = false;
  OnBoth([&] { isThere = pair.mMeta.GetProperty(uri, text.c_str(), &value, &options); },
         [&] {
           const ModelNode* node = pair.mModel.Find(path);
           if (node == nullptr) return;
           isExpected = true;
           expected = node->mValue;
           const bool isQualifier = path.back().mKind == Step::Kind::kQualifier;
           expectedOptions = OptionsOf(*node) | (isQualifier ? kXMP_PropIsQualifier : 0);
         });
  Require(isThere == isExpected && value == expected, "the model's value is found");
  Require(((options ^ expectedOptions) & ~kXMP_PropArrayIsAltText) == 0, "options are the model's");
  XMP_Index count = 0;
  std::size_t expectedCount = 0;
  OnBoth([&] { count = pair.mMeta.CountArrayItems(uri, text.c_str()); },
         [&] {
           const ModelNode* node = pair.mModel.Find(path);
           RefuseIf(node != nullptr && !node->IsArray());
           expectedCount = node == nullptr ? 0 : node->mChildren.size();
         });
  Require(static_cast<std::size_t>(count) == expectedCount, "arrays are as long as the model's");
}

// A path that need not be one: whatever comes of it, it comes as an XMP_Error.
void TryText(fuzzing::Input& input, const Meta& meta) {
  const std::string text(input.Bytes(input.Pick(32)));
  Meta copy(meta);
  try {
    copy.GetProperty("urn:q#", text.c_str(), nullptr, nullptr);
    copy.SetProperty("urn:q#", text.c_str(), "value");
    std::string value;
    Require(copy.GetProperty("urn:q#", text.c_str(), &value, nullptr), "what was set is there");
    Require(value == "value", "what was set is read");
  } catch (const XMP_Error&) {
    Require(AreEqual(copy, meta, Equality::kFile), "a refusal changes nothing");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Meta::RegisterNamespace("urn:q#", "q", nullptr);
  Meta::RegisterNamespace("urn:s#", "s", nullptr);
  fuzzing::Input input(bytes, size);
  Pair pair, other;
  while (!input.IsEmpty()) {
    const unsigned command = input.Pick(16);
    if (command < 10)
      Write(std::min(command % 5, 3u), input, pair);
    else if (command < 12)
      Read(input, pair);
    else if (command == 12)
      TryText(input, pair.mMeta);
    else if (command == 13)
      other = pair;
    else if (command == 14)
      std::swap(pair, other);
    else
      pair.mMeta = Parse(Serialize(pair.mMeta, 0));
  }
  pair.RequireSame();
  other.RequireSame();
  return 0;
}
