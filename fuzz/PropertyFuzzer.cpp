#include <algorithm>
#include <bit>
#include <optional>
#include <string>
#include <vector>

#include "Packets.h"
#include "TextRules.h"

// Runs a sequence of property operations on an XMP object and on a plain tree, the model. Both must
// accept or refuse each operation, and both must stay equal.
namespace {

using fuzzing::Equality;
using fuzzing::Meta;
using fuzzing::Require;
using fuzzing::RequireRoundTrip;
using xmptoolkit::TreeNode;
using Value = std::optional<std::string>;
constexpr XMP_OptionBits kURI = kXMP_PropValueIsURI, kStruct = kXMP_PropValueIsStruct,
                         kArray = kXMP_PropValueIsArray, kAnyArray = 0x1E00,
                         kByLanguage = kXMP_PropArrayIsAltText;  // follows from an array's items

struct Step {
  std::string mText;  // "q:name", "/q:field", "/?q:qualifier", "[1]", "[last()]"

  bool IsItem() const { return mText[0] == '['; }
  bool IsQualifier() const { return mText.starts_with("/?"); }
  bool IsField() const { return mText[0] == '/' && !IsQualifier(); }
  std::string Name() const { return IsItem() ? "" : mText.substr(mText.find_first_not_of("/?")); }
};
using Path = std::vector<Step>;

struct ModelNode {
  std::string mName = "";  // "prefix:name"; empty for an item
  XMP_OptionBits mForm = 0;
  std::string mValue = "";
  std::vector<ModelNode> mChildren = {}, mQualifiers = {};

  bool IsArray() const { return (mForm & kArray) != 0; }
  bool IsSimple() const { return (mForm & ~kURI) == 0; }
  auto& List(const Step& step) { return step.IsQualifier() ? mQualifiers : mChildren; }
};

struct Place {
  ModelNode* mNode;    // the last existing node on the path
  ModelNode* mParent;  // its parent
  std::size_t mSteps;  // the number of steps to it
};

struct Refused {};
void RefuseIf(bool isRefused) {
  if (isRefused) throw Refused();
}

Place Follow(ModelNode& root, const Path& path) {
  RefuseIf(path.size() > kXMP_MaxNesting);
  for (const Step& step : path) RefuseIf(step.mText == "/?xml:lang" && &step != &path.back());
  Place place{&root, nullptr, 0};
  for (const Step& step : path) {
    ModelNode& node = *place.mNode;
    RefuseIf(step.IsItem() ? !node.IsArray() : !step.IsQualifier() && node.mForm != kStruct);
    auto& list = node.List(step);
    std::size_t at = 0;
    while (at < list.size() && list[at].mName != step.Name()) ++at;
    if (step.IsItem())
      at = (step.mText == "[last()]" ? list.size() : std::stoul(step.mText.substr(1))) - 1;
    if (at >= list.size()) break;
    place = {&list[at], &node, place.mSteps + 1};
  }
  return place;
}

XMP_OptionBits FormOf(XMP_OptionBits options) {
  const XMP_OptionBits array = options & kAnyArray, other = options & ~kAnyArray;
  RefuseIf(array != 0 ? other != 0 : other != 0 && other != kURI && other != kStruct);
  // Each kind of array is also one of the more general kinds.
  return array == 0 ? other : (std::bit_floor(array) * 2 - kArray) & ~kByLanguage;
}

ModelNode Make(const Value& value, XMP_OptionBits options) {
  ModelNode node{"", FormOf(options), value.value_or("")};
  RefuseIf(node.IsSimple() != value.has_value() || !fuzzing::IsXMLText(node.mValue));
  return node;
}

void CheckQualifier(const Step& step, const ModelNode& made) {
  RefuseIf(step.mText == "/?rdf:type" || (step.mText == "/?xml:lang" && made.mForm != 0));
}

void Create(const Path& path, const Place& place, ModelNode made) {
  const Step& first = path[place.mSteps];
  for (const Step& step : path)
    RefuseIf(&step >= &first && (step.IsItem() || (step.IsQualifier() && &step != &first)));
  CheckQualifier(first, made);
  made.mName = path.back().Name();
  for (std::size_t i = path.size() - 1; i > place.mSteps; --i)
    made = ModelNode{path[i - 1].Name(), kStruct, "", {made}};
  auto& list = place.mNode->List(first);
  list.insert(made.mName == "xml:lang" ? list.begin() : list.end(), made);
}

void Set(ModelNode& root, const Path& path, const Value& value, XMP_OptionBits options) {
  const ModelNode made = Make(value, options);
  const Place place = Follow(root, path);
  if (place.mSteps < path.size()) return Create(path, place, made);
  ModelNode& node = *place.mNode;
  CheckQualifier(path.back(), made);
  RefuseIf(made.IsSimple() != node.IsSimple() || (!made.IsSimple() && made.mForm != node.mForm));
  node.mForm = made.mForm;
  node.mValue = made.mValue;
}

void Append(ModelNode& root, const Path& path, XMP_OptionBits arrayOptions, const Value& value,
            XMP_OptionBits options) {
  const ModelNode array{"", FormOf(arrayOptions), "", {Make(value, options)}};
  RefuseIf((array.mForm != 0 && !array.IsArray()) || path.size() == kXMP_MaxNesting);
  const Place place = Follow(root, path);
  const bool isThere = place.mSteps == path.size();
  RefuseIf(isThere ? !place.mNode->IsArray() : array.mForm == 0);
  if (!isThere) return Create(path, place, array);
  RefuseIf(array.mForm != 0 && array.mForm != place.mNode->mForm);
  place.mNode->mChildren.push_back(array.mChildren[0]);
}

void Delete(ModelNode& root, const Path& path) {
  const Place place = Follow(root, path);
  if (place.mSteps < path.size()) return;
  auto& list = place.mParent->List(path.back());
  list.erase(list.begin() + (place.mNode - list.data()));
}

XMP_OptionBits OptionsOf(const ModelNode& node, bool isQualifier) {
  const bool isQualified = !node.mQualifiers.empty();
  const bool hasLang = isQualified && node.mQualifiers[0].mName == "xml:lang";
  return node.mForm | (isQualified ? kXMP_PropHasQualifiers : 0) |
         (hasLang ? kXMP_PropHasLang : 0) | (isQualifier ? kXMP_PropIsQualifier : 0);
}

void RequireSame(const ModelNode& model, const TreeNode& node, bool isQualifier = false) {
  Require((node.Options() & ~kByLanguage) == OptionsOf(model, isQualifier), "forms are the same");
  Require(node.Value() == model.mValue, "values are the same");
  const bool hasName = !model.mName.empty();
  Require(!hasName || node.Prefix() + ":" + node.LocalName() == model.mName, "names are the same");
  Require(node.ChildCount() == model.mChildren.size(), "there are as many parts");
  Require(node.QualifierCount() == model.mQualifiers.size(), "there are as many qualifiers");
  for (std::size_t i = 0; i < node.ChildCount(); ++i)
    RequireSame(model.mChildren[i], node.Child(i));
  for (std::size_t i = 0; i < node.QualifierCount(); ++i)
    RequireSame(model.mQualifiers[i], node.Qualifier(i), true);
}

struct Pair {
  Meta mMeta;
  ModelNode mModel{"", kStruct};

  void RequireSame() const {
    ::RequireSame(mModel, xmptoolkit::RootOf(mMeta));
    RequireRoundTrip(mMeta, 0, Equality::kFile);
  }
};

template <typename OnMeta, typename OnModel>
void OnBoth(OnMeta onMeta, OnModel onModel) {
  bool isExpected = true;
  try {
    onModel();
  } catch (const Refused&) {
    isExpected = false;
  }
  const bool isAccepted = fuzzing::IsAccepted(onMeta);
  Require(isAccepted || !isExpected, "what should be done is not refused");
  Require(!isAccepted || isExpected, "what should be refused is not done");
}

std::string PickName(fuzzing::Input& input, bool isQualifier) {
  const unsigned byte = input.Byte();
  if (isQualifier && byte % 4 == 0) return "xml:lang";
  if (byte == 255) return "rdf:type";
  return std::string(byte % 2 == 0 ? "q:" : "s:") + static_cast<char>('a' + byte / 2 % 26);
}

Path PickPath(fuzzing::Input& input) {
  Path path{{PickName(input, false)}};
  unsigned count = input.Byte();
  for (count = count > 250 ? count - 155 : count % 6; count > 0; --count) {
    const unsigned kind = input.Byte(), item = kind / 3 % 5;
    path.push_back({kind % 3 == 1   ? "/" + PickName(input, false)
                    : kind % 3 == 2 ? "/?" + PickName(input, true)
                    : item == 0     ? "[last()]"
                                    : "[" + std::to_string(item) + "]"});
  }
  return path;
}

Value PickValue(fuzzing::Input& input) {
  constexpr const char* kValues[] = {
      "",     "a",     " \n\t\r ", "<&>\"']]>",    "x-default",
      "\x01", "\xC3(", "en-US",    "\xEF\xBF\xBE", "http://x.example/"};
  const unsigned byte = input.Byte();
  if (byte % 4 == 0) return std::nullopt;
  if (byte % 4 == 1) return std::string(input.Bytes(byte / 4 % 16));
  return kValues[byte / 4 % std::size(kValues)];
}

XMP_OptionBits PickOptions(fuzzing::Input& input) {
  constexpr XMP_OptionBits kOptions[] = {0, kURI, kStruct, kArray, 0x400, 0x800, kByLanguage};
  const unsigned byte = input.Byte();
  return kOptions[byte % 7] | (byte < 224 ? 0 : kOptions[byte % 5] | (byte & 8));
}

const char* URIOf(const Step& step) {
  const char prefix = step.Name()[0];
  if (prefix == 'r') return "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
  return prefix == 'q' ? "urn:q#" : "urn:s#";
}

void Write(unsigned command, fuzzing::Input& input, Pair& pair) {
  const Path path = PickPath(input);
  const Step& last = path.back();
  std::string text, outer;
  for (const Step& step : path) outer = text, text += step.mText;
  const char* const uri = URIOf(path[0]);
  Meta& meta = pair.mMeta;
  ModelNode& model = pair.mModel;
  if (command == 0)
    return OnBoth([&] { meta.DeleteProperty(uri, text.c_str()); }, [&] { Delete(model, path); });
  const Value value = PickValue(input);
  const XMP_OptionBits options = PickOptions(input);
  const bool hasNUL = value && value->find('\0') != value->npos;  // which a C string cannot hold
  const bool isString = value && (hasNUL || value->size() % 2 == 0);
  const char* const plain = value ? value->c_str() : nullptr;
  if (command == 1) {
    const XMP_OptionBits kind = PickOptions(input);
    if (hasNUL) return;
    return OnBoth([&] { meta.AppendArrayItem(uri, text.c_str(), kind, plain, options); },
                  [&] { Append(model, path, kind, value, options); });
  }
  const auto set = [&](const auto& what) {
    if (command == 2 && last.IsField())
      return meta.SetStructField(uri, outer.c_str(), URIOf(last), last.Name().c_str(), what,
                                 options);
    meta.SetProperty(uri, text.c_str(), what, options);
  };
  OnBoth([&] { isString ? set(*value) : set(plain); }, [&] { Set(model, path, value, options); });
}

void Read(fuzzing::Input& input, Pair& pair) {
  const Path path = PickPath(input);
  std::string text, value = "untouched", expected = value;
  for (const Step& step : path) text += step.mText;
  XMP_OptionBits options = 0, expectedOptions = 0;
  XMP_Index count = 0;
  const ModelNode* node = nullptr;
  const auto find = [&] {
    const Place place = Follow(pair.mModel, path);
    if (place.mSteps == path.size()) node = place.mNode;
  };
  OnBoth([&] { pair.mMeta.GetProperty(URIOf(path[0]), text.c_str(), &value, &options); }, find);
  if (node != nullptr) {
    expected = node->mValue;
    expectedOptions = OptionsOf(*node, path.back().IsQualifier());
  }
  Require(value == expected, "the model's value is found");
  Require((options & ~kByLanguage) == expectedOptions, "the model's options are found");
  OnBoth([&] { count = pair.mMeta.CountArrayItems(URIOf(path[0]), text.c_str()); },
         [&] { find(), RefuseIf(node != nullptr && !node->IsArray()); });
  const bool hasItems = node != nullptr && node->IsArray();
  Require(static_cast<std::size_t>(count) == (hasItems ? node->mChildren.size() : 0), "counts");
}

// Tries a text that need not be a path.
void TryText(fuzzing::Input& input, const Meta& meta) {
  const std::string text(input.Bytes(input.Byte() % 32));
  Meta copy(meta);
  std::string value;
  const bool isSet =
      fuzzing::IsAccepted([&] { copy.SetProperty("urn:q#", text.c_str(), "value"); });
  if (!isSet) return Require(AreEqual(copy, meta, Equality::kFile), "a refusal changes nothing");
  const bool isThere = copy.GetProperty("urn:q#", text.c_str(), &value, nullptr);
  Require(isThere && value == "value", "what was set is there");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  Meta::RegisterNamespace("urn:q#", "q", nullptr);
  Meta::RegisterNamespace("urn:s#", "s", nullptr);
  fuzzing::Input input(bytes, size);
  Pair pair, other;
  while (!input.IsEmpty()) {
    const unsigned command = input.Byte() % 16;
    if (command < 10) Write(std::min(command % 5, 3u), input, pair);
    if (command == 10 || command == 11) Read(input, pair);
    if (command == 12) TryText(input, pair.mMeta);
    if (command == 13) other = pair;
    if (command == 14) std::swap(pair, other);
    if (command == 15) pair.mMeta = fuzzing::Parse(fuzzing::Serialize(pair.mMeta));
  }
  pair.RequireSame();
  other.RequireSame();
  return 0;
}
