#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <string>

#include <zelstoryparser/StoryParser.h>

#include "Support.h"
#include "support/Story.h"

// Sends events in any order to several parsers, which are copied and assigned to each other between
// events. Each parser has a model of the format's rules; their trees must always be equal.
namespace {

using namespace zelstoryparser;
using fuzzing::Require;
using fuzzing::Words;
using Text = UTF16String;
using Attributes = StoryParser::Attributes;

struct ModelNode;
using Link = std::shared_ptr<ModelNode>;
struct ModelNode {
  Text mKind, mName, mID;  // the name is as in a dump
  std::vector<std::pair<Text, Text>> mValues;
  std::vector<Link> mChildren;

  bool HasStream(const Text& name) const {
    return std::any_of(mChildren.begin(), mChildren.end(), [&](const Link& child) {
      return child->mKind == u"stream" && child->mName == name;
    });
  }
};

const auto kNames = Words(
    "TavroStory document stream section scene paragraph textRun commentStream metaData Tag x X");
const auto kAttributes = Words(
    "version documentType template name commentAuthor dependent commentAuthorID sceneNumber "
    "shotDuration label objID element");
const auto kValues = Words(
    "1.0 body header footer SceneHeading Dialog Action 1.0.7 1. Transition Body x shot Shot "
    "Character Parenthetical");
const auto kKinds = Words("SceneHeading Character Dialog Action Shot Parenthetical Transition");

// What nodes keep besides their identifiers: the word in a dump, and the attribute if there is one.
std::map<Text, std::vector<Text>> gKept = {
    {u"TavroStory", Words("version=version type=documentType template=template meta=")},
    {u"document", Words("version=version")},
    {u"scene", Words("number=sceneNumber duration=")},
    {u"commentStream",
     Words("name=name author=commentAuthor dependent=dependent authorID=commentAuthorID")}};

class Model {
 public:
  void StartDocument() { mOpen.clear(), mRoot = nullptr, mFailed = false; }
  void EndDocument() { mOpen.clear(); }
  void Characters(const Text& text) { mText += mFailed ? u"" : text; }
  void Fail(const Text&) { mFailed = true; }

  void Start(const Text& name, Attributes attributes) {
    mText.clear();
    if (mFailed) return;
    const Link document = mOpen[u"document"], stream = mOpen[u"stream"],
               section = mOpen[u"section"], comments = mOpen[u"commentStream"],
               scene = mOpen[u"scene"], paragraph = mOpen[u"paragraph"];
    const auto begin = [&](Text dumpName, Link parent, bool isAllowed) {
      mFailed = !isAllowed;
      if (isAllowed) Begin(name, dumpName, parent, attributes);
    };
    const Text slot = attributes[u"name"];
    const bool isLinked = slot == u"body" || slot == u"header" || slot == u"footer";
    const bool isOfStream = stream && stream->mChildren.empty();
    if (name == u"document") begin(name, mRoot, mRoot && !document && mRoot->mChildren.empty());
    if (name == u"stream")
      begin(slot, isLinked ? document : nullptr, document && !stream && !document->HasStream(slot));
    if (name == u"commentStream") begin(u"comments", document, document != nullptr);
    if (name == u"section")
      begin(name, isOfStream ? stream : comments,
            isOfStream || (!section && comments && comments->mChildren.empty()));
    if (name == u"scene") begin(name, section, section != nullptr);
    if (name == u"textRun" && paragraph) begin(u"", paragraph, true), mRun = mOpen[name];
    if (name == u"Tag" && mRoot) mRoot->mValues.emplace_back(u" tag=", attributes[u"label"]);
    if (name == u"paragraph" && scene) {
      const auto kind = std::find(kKinds.begin(), kKinds.end(), attributes[u"element"]);
      begin(Utf16(std::to_string(200 + (kind - kKinds.begin()))), scene, true);
      if (kind == kKinds.begin()) scene->mValues[1].second = attributes[u"shotDuration"];
    }
    if (name == u"TavroStory") {
      begin(u"story", nullptr, true), mRoot = mOpen[name];
      mFailed = !(attributes[u"version"] + u".").starts_with(u"1.0.");
    }
  }

  void End(const Text& name) {
    if (mFailed) return;
    mOpen.erase(name);
    const bool isMetaData = name == u"metaData";
    mFailed = isMetaData && (!mRoot || !mRoot->mValues[3].second.empty());
    if (mFailed || (!isMetaData && (name != u"textRun" || !mRun))) return;
    Text& target = isMetaData ? mRoot->mValues[3].second : mRun->mName;
    if (target.empty()) target.swap(mText), mText.clear();
  }

  bool mFailed = false;
  Link mRoot;

 private:
  void Begin(const Text& kind, const Text& dumpName, const Link& parent, Attributes& attributes) {
    const Link node = mOpen[kind] =
        std::make_shared<ModelNode>(ModelNode{kind, dumpName, {}, {}, {}});
    if (kind != u"TavroStory" && kind != u"document") node->mID = attributes[u"objID"];
    for (const Text& entry : gKept[kind]) {
      const std::size_t end = entry.find(u'=') + 1;
      node->mValues.emplace_back(u' ' + entry.substr(0, end), attributes[entry.substr(end)]);
    }
    if (parent) parent->mChildren.push_back(node);
  }

  Text mText;
  Link mRun;
  std::map<Text, Link> mOpen;
};

// Returns a node as DumpTree prints it. The streams of a document come in the order of their slots.
Text Dump(const ModelNode& node) {
  Text text = node.mKind == u"textRun" ? u"'" + node.mName + u"'" : node.mName;
  if (!node.mID.empty()) text += u"#" + node.mID;
  for (const auto& [word, value] : node.mValues)
    text += value.empty() && word != u" tag=" ? u"" : word + value;
  std::vector<Link> children;
  for (const Text slot : {u"header", u"body", u"footer", u""}) {
    for (const Link& child : node.mChildren)
      if (slot == (child->mKind == u"stream" ? child->mName : u"")) children.push_back(child);
  }
  const bool isList = children.size() > 1;
  for (const Link& child : children)
    text += (!isList ? u">" : child == children[0] ? u"{" : u" ") + Dump(*child);
  return isList ? text + u"}" : text;
}

// Checks the invariants of every node in a tree, which has one holder or is also held by parsers.
template <typename Node>
void TestNode(const boost::intrusive_ptr<Node>& node, bool isAlone, std::set<const void*>& seen) {
  if (!node) return;
  Require(seen.insert(node.get()).second, "a node has one parent");
  Require(!node->mDeleting && !node->mNoAutoDelete, "a node's flags are clear");
  Require(isAlone ? node->mRefCount == 1 : node->mRefCount >= 1, "holders are counted");
  const auto test = [&](const auto& child) { TestNode(child, isAlone, seen); };
  const auto testAll = [&](const auto& list) {
    for (const auto& child : list) {
      Require(child != nullptr, "a list holds no null");
      test(child);
    }
  };
  if constexpr (requires { node->mDocument; }) test(node->mDocument);
  if constexpr (requires { node->mBodyStream; }) {
    test(node->mHeaderStream), test(node->mBodyStream), test(node->mFooterStream);
    testAll(node->mCommentStreams);
  }
  if constexpr (requires { node->mSection; }) test(node->mSection);
  if constexpr (requires { node->mScenes; }) testAll(node->mScenes);
  if constexpr (requires { node->mParagraphs; }) testAll(node->mParagraphs);
  if constexpr (requires { node->mTextRuns; }) testAll(node->mTextRuns);
}

void RequireSame(const boost::intrusive_ptr<TavroStory>& story, const Link& model, bool isAlone) {
  std::set<const void*> seen;
  TestNode(story, isAlone, seen);
  Require(DumpTree(story) == (model ? Utf8(Dump(*model)) : "null"), "the tree is the model's");
}

struct Pair {
  struct : StoryParser {
    using StoryParser::SetParseError;
  } mParser;
  Model mModel;

  void RequireSame() {
    Require(mParser.IsParseError() == mModel.mFailed, "errors are the model's");
    ::RequireSame(mParser.GetStory(), mModel.mRoot, false);
  }
};

void PlayEvent(unsigned event, fuzzing::Input& input, Pair& pair) {
  const auto both = [&](auto onParser, auto onModel, const auto&... arguments) {
    (pair.mParser.*onParser)(arguments...);
    (pair.mModel.*onModel)(arguments...);
  };
  if (event == 10) return both(&StoryParser::StartDocument, &Model::StartDocument);
  if (event == 11) return both(&StoryParser::EndDocument, &Model::EndDocument);
  if (event < 8) {
    const Text name = input.OneOf(kNames);
    if (event >= 5) return both(&StoryParser::EndElement, &Model::End, name);
    Attributes attributes;
    for (unsigned count = input.Byte() % 6; count > 0; --count) {
      const Text attribute = input.OneOf(kAttributes);
      const unsigned value = input.Byte();
      attributes[attribute] =
          value < 32 ? kValues[value % kValues.size()] : fuzzing::RawText(input.Bytes(value % 16));
    }
    return both(&StoryParser::StartElement, &Model::Start, name, attributes);
  }
  if (event == 9) pair.mParser.StartCDATA();
  const Text text = fuzzing::RawText(input.Bytes(event == 12 ? 4 : input.Byte() % 32));
  if (event == 12) return both(&decltype(pair.mParser)::SetParseError, &Model::Fail, text);
  both(&StoryParser::Characters, &Model::Characters, text);
  if (event == 9) pair.mParser.EndCDATA();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzzing::Input input(bytes, size);
  std::vector<Pair> pairs(4);
  std::map<Link, boost::intrusive_ptr<TavroStory>> held;
  while (!input.IsEmpty()) {
    const unsigned command = input.Byte();
    Pair& pair = pairs[command >> 6];
    const Pair& other = pairs[(command >> 4) & 3];  // may be the same one
    const unsigned event = command & 15;
    if (event < 13) PlayEvent(event, input, pair);
    if (event == 13) pair = other;
    if (event == 14) pair = Pair(other);
    if (event != 15) continue;
    pair.RequireSame();
    if (pair.mModel.mRoot) held[pair.mModel.mRoot] = pair.mParser.GetStory();
  }
  for (Pair& pair : pairs) pair.RequireSame();
  pairs.clear();
  for (auto& [model, story] : held) {
    RequireSame(story, model, true);
    const auto document = story->mDocument;
    story = nullptr;
    Require(!document || document->mRefCount == 1, "a part lives on with its holder alone");
  }
  return 0;
}
