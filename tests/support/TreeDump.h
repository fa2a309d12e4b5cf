#pragma once

#include <zelstoryparser/StoryTree.h>

#include "support/Text.h"

// Nodes as a text: name#id key=value>child, or {children}. What is empty or null is left out; a
// paragraph's name is its code, a run's name its text in quotes.
namespace treedump {

using namespace zelstoryparser;

// Gathers the texts of several nodes. One node's content stands in an Out of its own.
class Out {
 public:
  Out& Value(const char* key, const UTF16String& value) {
    if (!value.empty()) mText += key + Utf8(value);
    return *this;
  }
  template <typename Node>
  Out& Add(const boost::intrusive_ptr<Node>& node, const std::string& slot = "") {
    if (!node) return *this;
    Out below;
    std::string name = slot;
    std::string values = Describe(*node, name, below);
    if constexpr (requires { node->mObjectID; })
      values = Out().Value("#", node->mObjectID.AsString()).mText + values;
    const bool hasSeveral = below.mCount > 1;
    mText += (mCount++ == 0 ? "" : " ") + name + values +
             (below.mCount == 0 ? ""
              : hasSeveral      ? "{"
                                : ">");
    mText += below.mText + (hasSeveral ? "}" : "");
    return *this;
  }
  template <typename Node>
  Out& Add(const std::vector<boost::intrusive_ptr<Node>>& nodes) {
    for (const auto& node : nodes) Add(node);
    return *this;
  }
  std::string mText;

 private:
  static std::string Describe(const TextRun& run, std::string& name, Out&) {
    name = "'" + Utf8(run.mText) + "'";
    return "";
  }
  static std::string Describe(const Paragraph& node, std::string& name, Out& below) {
    name = std::to_string(node.mElementType);
    return below.Add(node.mTextRuns), "";
  }
  static std::string Describe(const Scene& node, std::string& name, Out& below) {
    name = "scene";
    below.Add(node.mParagraphs);
    return Out().Value(" number=", node.mSceneNumber).Value(" duration=", node.mShotDuration).mText;
  }
  static std::string Describe(const Section& node, std::string& name, Out& below) {
    name = "section";
    return below.Add(node.mScenes), "";
  }
  static std::string Describe(const Stream& node, std::string& name, Out& below) {
    below.Add(node.mSection);
    return Out().Value(" name=", Utf8(node.mName) == name ? UTF16String() : node.mName).mText;
  }
  static std::string Describe(const CommentStream& node, std::string& name, Out& below) {
    name = "comments";
    Out values = Out().Value(" name=", node.mName).Value(" author=", node.mCommentAuthor);
    below.Add(node.mSection);
    return values.Value(" dependent=", node.mDependent)
        .Value(" authorID=", node.mCommentAuthorID)
        .mText;
  }
  static std::string Describe(const Document& node, std::string& name, Out& below) {
    name = "document";
    below.Add(node.mHeaderStream, "header")
        .Add(node.mBodyStream, "body")
        .Add(node.mFooterStream, "footer");
    below.Add(node.mCommentStreams);
    return Out().Value(" version=", node.mVersion).mText;
  }
  static std::string Describe(const TavroStory& node, std::string& name, Out& below) {
    name = "story";
    Out values = Out().Value(" version=", node.mVersion).Value(" type=", node.mDocumentType);
    values.Value(" template=", node.mTemplate).Value(" meta=", node.mMetaData);
    for (const UTF16String& tag : node.mTags) values.Value(" ", u"tag=" + tag);
    return below.Add(node.mDocument), values.mText;
  }
  int mCount = 0;
};

}  // namespace treedump

template <typename Node>
std::string DumpTree(const boost::intrusive_ptr<Node>& node) {
  return node ? treedump::Out().Add(node).mText : "null";
}
