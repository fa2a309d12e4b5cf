#pragma once

#include <string>

#include <zelstoryparser/StoryParser.h>

namespace zelstoryhost {

// Describes a place in a story for people. It follows the tags of a document that is read (do not
// report any after the parser's first error), or the nodes of a tree that is written.
class StoryPlace {
 public:
  void Enter(const zelstoryparser::UTF16String& element,
             const zelstoryparser::StoryParser::Attributes& attributes);
  void Leave(const zelstoryparser::UTF16String& element);

  void EnterStream(const std::string& name);
  void EnterCommentStream();
  void EnterScene(const std::string& number);
  void EnterParagraph();
  void LeaveScene() { mScene.clear(); }
  void LeaveParagraph() { mInParagraph = false; }

  bool IsInBody() const { return mStream == "body"; }

  // "body, scene 12A, paragraph 7", or "scene at position 3" for a scene without a number. Empty
  // outside of streams.
  std::string Describe() const;

 private:
  void BeginStream(std::string stream);

  std::string mStream;  // empty outside of streams
  int mCommentStreams = 0;
  std::string mScene;  // empty outside of scenes
  int mPosition = 0;
  int mParagraph = 0;
  bool mInParagraph = false;
};

}  // namespace zelstoryhost
