#pragma once

#include <zelstoryparser/StoryTree.h>

#include "support/Text.h"

// Nodes as a text: name#id key=value>child, or {children}. What is empty or null is left out; a
// paragraph's name is its code, a run's name its text in quotes.
namespace treedump {

using namespace zelstoryparser;

inline std::string Value(const char* key, const UTF16String& value) {
  return value.empty() ? "" : key + Utf8(value);
}

class Out {
 public:
  template <typename Node>
  Out& Add(const boost::intrusive_ptr<Node>& node, const std::string& slot = "") {
    if (!node) return *this;
    Out below;
    auto [name, values] = below.Describe(*node, slot);
    if constexpr (requires { node->mObjectID; }) name += Value("#", node->mObjectID.AsString());
    if (below.mCount == 1) values += ">" + below.mText;
    if (below.mCount > 1) values += "{" + below.mText + "}";
    mText += (mCount++ == 0 ? "" : " ") + name + values;
    return *this;
  }
  std::string mText;

 private:
  using Words = std::pair<std::string, std::string>;  // a node's name and its values

  template <typename Node>
  void AddAll(const std::vector<boost::intrusive_ptr<Node>>& nodes) {
    for (const auto& node : nodes) Add(node);
  }
  Words Describe(const TextRun& run, const std::string&) {
    return {"'" + Utf8(run.mText) + "'", ""};
  }
  Words Describe(const Paragraph& node, const std::string&) {
    AddAll(node.mTextRuns);
    return {std::to_string(node.mElementType), ""};
  }
  Words Describe(const Scene& node, const std::string&) {
    AddAll(node.mParagraphs);
    return {"scene",
            Value(" number=", node.mSceneNumber) + Value(" duration=", node.mShotDuration)};
  }
  Words Describe(const Section& node, const std::string&) {
    AddAll(node.mScenes);
    return {"section", ""};
  }
  Words Describe(const Stream& node, const std::string& slot) {
    Add(node.mSection);
    return {slot, Utf8(node.mName) == slot ? "" : Value(" name=", node.mName)};
  }
  Words Describe(const CommentStream& node, const std::string&) {
    Add(node.mSection);
    return {"comments", Value(" name=", node.mName) + Value(" author=", node.mCommentAuthor) +
                            Value(" dependent=", node.mDependent) +
                            Value(" authorID=", node.mCommentAuthorID)};
  }
  Words Describe(const Document& node, const std::string&) {
    Add(node.mHeaderStream, "header")
        .Add(node.mBodyStream, "body")
        .Add(node.mFooterStream, "footer");
    AddAll(node.mCommentStreams);
    return {"document", Value(" version=", node.mVersion)};
  }
  Words Describe(const TavroStory& node, const std::string&) {
    Add(node.mDocument);
    std::string values = Value(" version=", node.mVersion) + Value(" type=", node.mDocumentType) +
                         Value(" template=", node.mTemplate) + Value(" meta=", node.mMetaData);
    for (const UTF16String& tag : node.mTags) values += " tag=" + Utf8(tag);
    return {"story", values};
  }
  int mCount = 0;
};

}  // namespace treedump

template <typename Node>
std::string DumpTree(const boost::intrusive_ptr<Node>& node) {
  return node ? treedump::Out().Add(node).mText : "null";
}
