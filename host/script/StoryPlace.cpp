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
  if (element == u"stream") {
    const std::string name = textOf(u"name");
    EnterStream(name.empty() ? "unnamed stream" : name);
  } else if (element == u"commentStream") {
    EnterStream("comment stream " + std::to_string(++mCommentStreams));
  } else if (element == u"scene") {
    const std::string number = textOf(u"sceneNumber");
    ++mPosition;
    mScene = number.empty() ? "scene at position " + std::to_string(mPosition) : "scene " + number;
    mParagraph = 0;
  } else if (element == u"paragraph") {
    ++mParagraph;
    mInParagraph = true;
  }
}

void StoryPlace::Leave(const UTF16String& element) {
  if (element == u"stream" || element == u"commentStream") mStream.clear();
  if (element == u"scene") mScene.clear();
  if (element == u"paragraph") mInParagraph = false;
}

std::string StoryPlace::Describe() const {
  if (mStream.empty() || mScene.empty()) return mStream;
  const std::string scene = mStream + ", " + mScene;
  return mInParagraph ? scene + ", paragraph " + std::to_string(mParagraph) : scene;
}

void StoryPlace::EnterStream(std::string stream) {
  mStream = std::move(stream);
  mScene.clear();
  mPosition = 0;
}

}  // namespace zelstoryhost
