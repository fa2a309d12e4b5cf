#include "script/StoryPlace.h"

#include <utility>

#include <zelstoryhost/Text.h>

namespace zelstoryhost {

using zelstoryparser::UTF16String;

void StoryPlace::Enter(const UTF16String& element,
                       const zelstoryparser::StoryParser::Attributes& attributes) {
  const auto textOf = [&attributes](const char16_t* name) {
    const auto attribute = attributes.find(name);
    return attribute == attributes.end() ? std::string() : ToUTF8(attribute->second);
  };
  if (element == u"stream") EnterStream(textOf(u"name"));
  if (element == u"commentStream") EnterCommentStream();
  if (element == u"scene") EnterScene(textOf(u"sceneNumber"));
  if (element == u"paragraph") EnterParagraph();
}

void StoryPlace::EnterStream(const std::string& name) {
  BeginStream(name.empty() ? "unnamed stream" : name);
}

void StoryPlace::EnterCommentStream() {
  BeginStream("comment stream " + std::to_string(++mCommentStreams));
}

void StoryPlace::EnterScene(const std::string& number) {
  ++mPosition;
  mScene = number.empty() ? "scene at position " + std::to_string(mPosition) : "scene " + number;
  mParagraph = 0;
}

void StoryPlace::EnterParagraph() {
  ++mParagraph;
  mInParagraph = true;
}

void StoryPlace::Leave(const UTF16String& element) {
  if (element == u"stream" || element == u"commentStream") mStream.clear();
  if (element == u"scene") LeaveScene();
  if (element == u"paragraph") LeaveParagraph();
}

std::string StoryPlace::Describe() const {
  if (mStream.empty() || mScene.empty()) return mStream;
  const std::string scene = mStream + ", " + mScene;
  return mInParagraph ? scene + ", paragraph " + std::to_string(mParagraph) : scene;
}

void StoryPlace::BeginStream(std::string stream) {
  mStream = std::move(stream);
  mScene.clear();
  mPosition = 0;
}

}  // namespace zelstoryhost
