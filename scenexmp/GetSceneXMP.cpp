#include <array>
#include <string>
#include <utility>

#include <zelstoryparser/SceneXMP.h>

#include "scenexmp/DialogSequence.h"
#include "scenexmp/ParseHeading.h"
#include "scenexmp/SceneProperties.h"
#include "scenexmp/SceneText.h"
#include "scenexmp/ShotProperties.h"

namespace zelstoryparser {
namespace {

UTF16String SceneNumber(const Scene& scene, std::int32_t sceneOrdinal) {
  if (!scene.mSceneNumber.empty()) return scene.mSceneNumber;
  constexpr std::size_t kWidth = 3;
  std::string digits = std::to_string(sceneOrdinal);
  if (digits.size() < kWidth) digits.insert(0, kWidth - digits.size(), '0');
  return zelcore::utility::AsciiToUTF16(digits);
}

// Returns the identifier of the first paragraph, of any kind.
UTF16String ShotID(const Scene& scene) {
  for (const boost::intrusive_ptr<Paragraph>& paragraph : scene.mParagraphs) {
    if (paragraph) return paragraph->mObjectID.AsString();
  }
  return {};
}

// Joins the parts that are not empty.
UTF16String JoinName(const std::array<UTF16String, 4>& parts) {
  UTF16String name;
  for (const UTF16String& part : parts) {
    if (!part.empty() && !name.empty()) name += u" - ";
    name += part;
  }
  return name;
}

// Leaves out a property that the toolkit refuses; the record is made anyway.
void BuildShotXMP(const UTF16String& shotID, const UTF16String& sceneNumber,
                  const UTF16String& duration, const SceneText& text, const HeadingRules& rules,
                  std::vector<ShotXMP>& shots) {
  if (shotID.empty()) return;
  if (text.mAction.empty() && text.mPairs.empty() && text.mHeading.empty()) return;

  TXMPMeta<std::string> xmp;
  UTF16String setting;
  UTF16String location;
  UTF16String timeOfDay;
  if (!text.mHeading.empty()) {
    SplitHeading(text.mHeading, rules, setting, location, timeOfDay);
    WriteSceneHeadingProperties(setting, location, timeOfDay, xmp);
  }
  WriteShotNameProperty(JoinName({setting, location, timeOfDay, sceneNumber}), xmp);
  WriteSceneNumberProperty(sceneNumber, xmp);
  WriteShotDurationProperty(duration, xmp);
  WriteActionProperty(text.mAction, xmp);
  WriteDialogSequence(text.mPairs, xmp);

  ShotXMP shot;
  shot.mShotID = shotID;
  xmp.SerializeToBuffer(&shot.mXMPPacket, 0, 0, "", "", 0);
  shots.push_back(std::move(shot));
}

}  // namespace

bool GetSceneXMP(boost::intrusive_ptr<TavroStory> story, boost::intrusive_ptr<Scene> scene,
                 std::int32_t sceneOrdinal, std::vector<ShotXMP>& shots) {
  return GetSceneXMP(story, scene, sceneOrdinal, ExactHeadingRules(), shots);
}

bool GetSceneXMP(boost::intrusive_ptr<TavroStory> /*story*/, boost::intrusive_ptr<Scene> scene,
                 std::int32_t sceneOrdinal, const HeadingRules& rules,
                 std::vector<ShotXMP>& shots) {
  RegisterStoryNamespaces();
  BuildShotXMP(ShotID(*scene), SceneNumber(*scene, sceneOrdinal), scene->mShotDuration,
               GatherParagraphs(*scene), rules, shots);
  return true;
}

}  // namespace zelstoryparser
