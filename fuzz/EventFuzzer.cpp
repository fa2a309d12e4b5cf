#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <zelstoryparser/StoryParser.h>

#include "Support.h"

// Events in any order, to several parsers that are copied and assigned to each other meanwhile.
// Beside each parser runs a model of the format's rules; their trees must always be the same.
namespace {

using namespace zelstoryparser;
using fuzzing::Require;
using fuzzing::Text;
using Attributes = StoryParser::Attributes;
using Tokens = std::vector<Text>;

struct ModelNode;
using ModelLink = std::shared_ptr<ModelNode>;
struct ModelNode {
  Text mKind;
  Tokens mValues;
  std::vector<ModelLink> mChildren;

  bool HasStream(const Text& name) const {
    return std::any_of(mChildren.begin(), mChildren.end(), [&](const ModelLink& child) {
      return child->mKind == u"stream" && child->mValues[1] == name;
    });
  }
  // The order in which a document's children are told.
  int Rank() const {
    if (mKind != u"stream") return 3;
    return mValues[1] == u"header" ? 0 : mValues[1] == u"body" ? 1 : 2;
  }
};

// The attributes that each kind of node keeps; "" is a value that comes later.
const std::map<Text, Tokens> kKept = {
    {u"TavroStory", {u"version", u"documentType", u"template", u""}},
    {u"document", {u"version"}},
    {u"stream", {u"objID", u"name"}},
    {u"commentStream", {u"objID", u"name", u"commentAuthor", u"dependent", u"commentAuthorID"}},
    {u"section", {u"objID"}},
    {u"scene", {u"objID", u"sceneNumber", u""}},
    {u"paragraph", {u"objID", u""}},
    {u"textRun", {u"objID", u""}},
};
const Tokens kKinds = {u"SceneHeading", u"Character",     u"Dialog",    u"Action",
                       u"Shot",         u"Parenthetical", u"Transition"};

class Model {
 public:
  void StartDocument() {
    mFailed = false;
    mRoot = nullptr;
    mOpen.clear();
  }
  void EndDocument() { mOpen.clear(); }
  void Characters(const Text& text) {
    if (!mFailed) mText += text;
  }
  void Fail(const Text& message) {
    mFailed = true;
    mError = message;
  }

  void Start(const Text& name, const Attributes& attributes) {
    mText.clear();
    if (mFailed) return;
    const auto value = [&](const Text& key) {
      return attributes.count(key) != 0 ? attributes.at(key) : Text();
    };
    const ModelLink document = Open(u"document"), stream = Open(u"stream"), scene = Open(u"scene"),
                    comments = Open(u"commentStream"), section = Open(u"section"),
                    paragraph = Open(u"paragraph");
    if (name == u"TavroStory") {
      mRoot = Make(name, attributes);
      const Text version = value(u"version");
      if (version != u"1.0" && !version.starts_with(u"1.0."))
        Fail(u"Wrong Version.  The parser doesn't support version:  " + version);
    } else if (name == u"Tag") {
      if (mRoot) mRoot->mValues.push_back(value(u"label"));
    } else if (name == u"document") {
      if (!mRoot || document || !mRoot->mChildren.empty())
        return Fail(u"We found a Document, but we already had one, are there two?");
      Begin(name, attributes, mRoot);
    } else if (name == u"stream") {
      if (!document || stream)
        return Fail(u"We found a Stream, but we already found one.  Are there two?");
      const Text slot = value(u"name");
      const bool isLinked = slot == u"body" || slot == u"header" || slot == u"footer";
      const bool isTaken = isLinked && document->HasStream(slot);
      Begin(name, attributes, isLinked && !isTaken ? document : nullptr);
      const Text what = slot == u"body" ? u"Stream" : slot == u"header" ? u"Header" : u"Footer";
      const Text where = slot == u"body" ? u"Body" : slot == u"header" ? u"Header" : u"Footer";
      if (isTaken) Fail(u"We found a " + what + u", but it's not part of a " + where + u"Stream?");
    } else if (name == u"commentStream") {
      if (!document) return Fail(u"We found a CommentStream, but it's not part of Document?");
      Begin(name, attributes, document);
    } else if (name == u"section") {
      const bool isOfStream = stream && stream->mChildren.empty();
      if (!isOfStream && (!comments || !comments->mChildren.empty() || section))
        return Fail(u"We found a Section, but it's not part of a Stream or CommentStream?");
      Begin(name, attributes, isOfStream ? stream : comments);
    } else if (name == u"scene") {
      if (!section) return Fail(u"We founda a Scene, but it's not part of a Section?");
      Begin(name, attributes, section);
    } else if (name == u"paragraph" && scene) {
      const auto kind = std::find(kKinds.begin(), kKinds.end(), value(u"element")) - kKinds.begin();
      const std::string code = std::to_string(200 + kind);
      Begin(name, attributes, scene)->mValues.back() = Text(code.begin(), code.end());
      if (kind == 0) scene->mValues.back() = value(u"shotDuration");
    } else if (name == u"textRun" && paragraph) {
      mRun = Begin(name, attributes, paragraph);
    }
  }

  void End(const Text& name) {
    if (mFailed) return;
    mOpen.erase(name);
    if (name != u"textRun" && name != u"metaData") return;
    if (name == u"metaData" && (!mRoot || !mRoot->mValues[3].empty()))
      return Fail(u"Metadata already exists.  Are there two?");
    Text* target = name == u"metaData" ? &mRoot->mValues[3] : mRun ? &mRun->mValues[1] : nullptr;
    if (target == nullptr || !target->empty()) return;
    *target = mText;
    mText.clear();
  }

  bool mFailed = false;
  Text mError;
  ModelLink mRoot;

 private:
  ModelLink Open(const Text& kind) const {
    return mOpen.count(kind) != 0 ? mOpen.at(kind) : nullptr;
  }
  static ModelLink Make(const Text& kind, const Attributes& attributes) {
    auto node = std::make_shared<ModelNode>(ModelNode{kind, {}, {}});
    for (const Text& key : kKept.at(kind)) {
      const bool isThere = !key.empty() && attributes.count(key) != 0;
      node->mValues.push_back(isThere ? attributes.at(key) : Text());
    }
    return node;
  }
  ModelLink Begin(const Text& kind, const Attributes& attributes, const ModelLink& parent) {
    const ModelLink node = mOpen[kind] = Make(kind, attributes);
    if (parent) parent->mChildren.push_back(node);
    return node;
  }

  Text mText;
  ModelLink mRun;
  std::map<Text, ModelLink> mOpen;
};

void Tell(const ModelNode& node, Tokens& tokens) {
  tokens.insert(tokens.end(), {u"(", node.mKind});
  tokens.insert(tokens.end(), node.mValues.begin(), node.mValues.end());
  std::vector<ModelLink> children = node.mChildren;
  if (node.mKind == u"document") {
    std::stable_sort(children.begin(), children.end(), [](const auto& left, const auto& right) {
      return left->Rank() < right->Rank();
    });
  }
  for (const ModelLink& child : children) Tell(*child, tokens);
  tokens.push_back(u")");
}

// Tells a tree in the same way, and tests what holds for every node.
class Teller {
 public:
  explicit Teller(bool isOnlyTree) : mIsOnlyTree(isOnlyTree) {}

  template <typename Node>
  void Link(const boost::intrusive_ptr<Node>& node) {
    if (!node) return;
    Require(mSeen.insert(node.get()).second, "a node has one parent");
    Require(!node->mDeleting && !node->mNoAutoDelete, "a node's flags are clear");
    Require(node->mRefCount >= 1, "a linked node has a holder");
    Require(!mIsOnlyTree || node->mRefCount == 1, "a node is held by its parent alone");
    mTokens.push_back(u"(");
    Tell(*node);
    mTokens.push_back(u")");
  }
  Tokens mTokens;

 private:
  template <typename Node>
  void LinkAll(const std::vector<boost::intrusive_ptr<Node>>& nodes) {
    for (const auto& node : nodes) {
      Require(node != nullptr, "a list holds no null");
      Link(node);
    }
  }
  void Add(std::initializer_list<Text> tokens) { mTokens.insert(mTokens.end(), tokens); }

  void Tell(const TavroStory& node) {
    Add({u"TavroStory", node.mVersion, node.mDocumentType, node.mTemplate, node.mMetaData});
    mTokens.insert(mTokens.end(), node.mTags.begin(), node.mTags.end());
    Link(node.mDocument);
  }
  void Tell(const Document& node) {
    Add({u"document", node.mVersion});
    Link(node.mHeaderStream);
    Link(node.mBodyStream);
    Link(node.mFooterStream);
    LinkAll(node.mCommentStreams);
  }
  void Tell(const Stream& node) {
    Add({u"stream", node.mObjectID.AsString(), node.mName});
    Link(node.mSection);
  }
  void Tell(const CommentStream& node) {
    Add({u"commentStream", node.mObjectID.AsString(), node.mName, node.mCommentAuthor,
         node.mDependent, node.mCommentAuthorID});
    Link(node.mSection);
  }
  void Tell(const Section& node) {
    Add({u"section", node.mObjectID.AsString()});
    LinkAll(node.mScenes);
  }
  void Tell(const Scene& node) {
    Add({u"scene", node.mObjectID.AsString(), node.mSceneNumber, node.mShotDuration});
    LinkAll(node.mParagraphs);
  }
  void Tell(const Paragraph& node) {
    const std::string code = std::to_string(node.mElementType);
    Add({u"paragraph", node.mObjectID.AsString(), Text(code.begin(), code.end())});
    LinkAll(node.mTextRuns);
  }
  void Tell(const TextRun& node) { Add({u"textRun", node.mObjectID.AsString(), node.mText}); }

  const bool mIsOnlyTree;
  std::set<const void*> mSeen;
};

void RequireSame(const boost::intrusive_ptr<TavroStory>& story, const ModelLink& model,
                 bool isOnlyTree) {
  Require((story == nullptr) == (model == nullptr), "there is a root when the model has one");
  if (!story) return;
  Teller teller(isOnlyTree);
  teller.Link(story);
  Tokens tokens;
  Tell(*model, tokens);
  Require(teller.mTokens == tokens, "the tree is the model's");
}

struct Parser : StoryParser {
  using StoryParser::SetParseError;
};
struct Pair {
  std::optional<Parser> mParser{std::in_place};
  Model mModel;

  void RequireSame() {
    Require(mParser->IsParseError() == mModel.mFailed, "errors are the model's");
    Require(mParser->GetErrorString() == mModel.mError, "messages are the model's");
    ::RequireSame(mParser->GetStory(), mModel.mRoot, false);
  }
};

const Tokens kNames = {u"TavroStory", u"document",  u"stream",  u"section",
                       u"scene",      u"paragraph", u"textRun", u"commentStream",
                       u"metaData",   u"Tag",       u"Scene",   u"x"};
const Tokens kAttributes = {u"version",       u"documentType", u"template",        u"name",
                            u"commentAuthor", u"dependent",    u"commentAuthorID", u"sceneNumber",
                            u"shotDuration",  u"label",        u"objID",           u"element"};
const Tokens kValues = {u"1.0",          u"body",       u"header",    u"footer",
                        u"SceneHeading", u"Dialog",     u"Action",    u"1.0.7",
                        u"1.",           u"Transition", u"body ",     u"",
                        u"shot",         u"Shot",       u"Character", u"Parenthetical"};

Attributes PickAttributes(fuzzing::Input& input) {
  Attributes attributes;
  for (unsigned count = input.Pick(6); count > 0; --count) {
    const Text key = input.OneOf(kAttributes);
    const unsigned value = input.Byte();
    attributes[key] =
        value < 32 ? kValues[value % kValues.size()] : fuzzing::RawText(input.Bytes(value % 16));
  }
  return attributes;
}

void PlayEvent(unsigned command, fuzzing::Input& input, Pair& pair) {
  if (command < 5) {
    const Text name = input.OneOf(kNames);
    const Attributes attributes = PickAttributes(input);
    pair.mParser->StartElement(name, attributes);
    pair.mModel.Start(name, attributes);
  } else if (command < 8) {
    const Text name = input.OneOf(kNames);
    pair.mParser->EndElement(name);
    pair.mModel.End(name);
  } else if (command < 10) {
    const Text text = fuzzing::RawText(input.Bytes(input.Pick(32)));
    if (command == 9) pair.mParser->StartCDATA();
    pair.mParser->Characters(text);
    if (command == 9) pair.mParser->EndCDATA();
    pair.mModel.Characters(text);
  } else if (command == 10) {
    pair.mParser->StartDocument();
    pair.mModel.StartDocument();
  } else if (command == 11) {
    pair.mParser->EndDocument();
    pair.mModel.EndDocument();
  } else if (command == 12) {
    const Text message = fuzzing::RawText(input.Bytes(4));
    pair.mParser->SetParseError(message);
    pair.mModel.Fail(message);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzzing::Input input(bytes, size);
  std::vector<Pair> pairs(4);
  std::map<ModelLink, boost::intrusive_ptr<TavroStory>> held;
  while (!input.IsEmpty()) {
    const unsigned command = input.Byte();
    Pair& pair = pairs[command >> 6];
    Pair& other = pairs[(command >> 4) & 3];
    if ((command & 15) == 13) {
      pair = other;  // or itself
    } else if ((command & 15) == 14) {
      const Model model = other.mModel;
      const Parser copy(*other.mParser);
      pair.mParser.emplace(copy);
      pair.mModel = model;
    } else if ((command & 15) == 15) {
      pair.RequireSame();
      if (pair.mModel.mRoot) held[pair.mModel.mRoot] = pair.mParser->GetStory();
    } else {
      PlayEvent(command & 15, input, pair);
    }
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
