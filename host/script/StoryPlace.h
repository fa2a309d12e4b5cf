#pragma once

#include <string>

#include <zelstoryparser/StoryParser.h>

namespace zelstoryhost {

// Follows the tags of a document to describe the reader's place in the story. Do not report tags
// after the parser's first error.
class StoryPlace {
 public:
  void Enter(const zelstoryparser::UTF16String& element,
             const zelstoryparser::StoryParser::Attributes& attributes);
  void Leave(const zelstoryparser::UTF16String& element);

  // "body, scene 12A, paragraph 7", or "scene at position 3" for a scene without a number. Empty
  // outside of streams.
  std::string Describe() const;

 private:
  void EnterStream(std::string stream);

  std::string mStream;  // empty outside of streams
  int mCommentStreams = 0;
  std::string mScene;  // empty outside of scenes
  int mPosition = 0;
  int mParagraph = 0;
  bool mInParagraph = false;
};

}  // namespace zelstoryhost
