#include "scenexmp/SceneText.h"

#include <utility>

#include "scenexmp/ParseHeading.h"
#include "scenexmp/ShotProperties.h"

namespace zelstoryparser {

void AppendParagraphText(boost::intrusive_ptr<Paragraph> paragraph, UTF16String& text) {
  if (!text.empty()) text += u"  ";
  for (const boost::intrusive_ptr<TextRun>& run : paragraph->mTextRuns) {
    if (run) text += run->mText;
  }
}

void CloseCharacterDialogPair(UTF16String& character, UTF16String& dialog,
                              CharacterDialogPairs& pairs) {
  if (character.empty()) return;
  if (!dialog.empty()) pairs.emplace_back(std::move(character), std::move(dialog));
  character.clear();
  dialog.clear();
}

SceneText GatherParagraphs(const Scene& scene) {
  SceneText text;
  UTF16String character;
  UTF16String dialog;
  for (const boost::intrusive_ptr<Paragraph>& paragraph : scene.mParagraphs) {
    if (!paragraph) continue;
    switch (paragraph->mElementType) {
      case kSceneHeading:
        text.mHeading.clear();
        AppendParagraphText(paragraph, text.mHeading);
        break;
      case kCharacter:
        CloseCharacterDialogPair(character, dialog, text.mPairs);
        AppendParagraphText(paragraph, character);
        break;
      case kDialog:
        AppendParagraphText(paragraph, dialog);
        break;
      case kAction:
        AppendParagraphText(paragraph, text.mAction);
        break;
      default:
        break;
    }
  }
  CloseCharacterDialogPair(character, dialog, text.mPairs);
  return text;
}

SceneText CollectSceneText(const Scene& scene) {
  return CollectSceneText(scene, ExactHeadingRules());
}

SceneText CollectSceneText(const Scene& scene, const HeadingRules& rules) {
  SceneText text = GatherParagraphs(scene);
  if (!text.mHeading.empty()) {
    SplitHeading(text.mHeading, rules, text.mSetting, text.mLocation, text.mTimeOfDay);
  }
  text.mDuration = ReadShotDuration(scene.mShotDuration);
  return text;
}

}  // namespace zelstoryparser
