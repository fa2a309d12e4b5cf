#pragma once

#include <zelstoryparser/StoryTree.h>

#include "support/Table.h"
#include "support/Text.h"

using ScenePtr = boost::intrusive_ptr<zelstoryparser::Scene>;
using StoryPtr = boost::intrusive_ptr<zelstoryparser::TavroStory>;

// A scene from "H:INT. HOUSE - NIGHT / A:Rain." Each paragraph begins with its kind's letter,
// perhaps with #id ("p" without, "#" for none); "|" parts two runs, and no text makes no run.
inline ScenePtr MakeScene(std::string_view paragraphs, std::string_view number = "",
                          std::string_view duration = "") {
  ScenePtr scene(new zelstoryparser::Scene);
  scene->mSceneNumber = Utf16(number);
  scene->mShotDuration = Utf16(duration);
  if (paragraphs.empty()) return scene;
  table::Split(paragraphs, " /", [&](std::string_view source) {
    auto& paragraph = scene->mParagraphs.emplace_back(new zelstoryparser::Paragraph);
    const std::size_t colon = source.find(':');
    paragraph->mElementType = 200 + static_cast<int>(std::string_view("HCDASPTU").find(source[0]));
    paragraph->mObjectID = Utf16(colon == 1 ? "p" : source.substr(2, colon - 2));
    if (colon + 1 == source.size()) return;
    table::Split(source.substr(colon + 1), "|", [&](std::string_view run) {
      paragraph->mTextRuns.emplace_back(new zelstoryparser::TextRun)->mText = Utf16(run);
    });
  });
  return scene;
}
