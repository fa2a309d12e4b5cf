#include <array>
#include <string>
#include <utility>

#include <zelstoryparser/SceneXMP.h>

#include "scenexmp/DialogSequence.h"
#include "scenexmp/SceneHeading.h"
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
                  const UTF16String& duration, const UTF16String& heading,
                  const UTF16String& action, const CharacterDialogPairs& pairs,
                  std::vector<ShotXMP>& shots) {
  if (shotID.empty()) return;
  if (action.empty() && pairs.empty() && heading.empty()) return;

  TXMPMeta<std::string> xmp;
  UTF16String setting;
  UTF16String location;
  UTF16String timeOfDay;
  if (!heading.empty()) {
    ParseSceneHeading(heading, setting, location, timeOfDay);
    WriteSceneHeadingProperties(setting, location, timeOfDay, xmp);
  }
  WriteShotNameProperty(JoinName({setting, location, timeOfDay, sceneNumber}), xmp);
  WriteSceneNumberProperty(sceneNumber, xmp);
  WriteShotDurationProperty(duration, xmp);
  WriteActionProperty(action, xmp);
  WriteDialogSequence(pairs, xmp);

  ShotXMP shot;
  shot.mShotID = shotID;
  xmp.SerializeToBuffer(&shot.mXMPPacket, 0, 0, "", "", 0);
  shots.push_back(std::move(shot));
}

}  // namespace

bool GetSceneXMP(boost::intrusive_ptr<TavroStory> /*story*/, boost::intrusive_ptr<Scene> scene,
                 std::int32_t sceneOrdinal, std::vector<ShotXMP>& shots) {
  RegisterStoryNamespaces();
  const SceneText text = GatherParagraphs(*scene);
  BuildShotXMP(ShotID(*scene), SceneNumber(*scene, sceneOrdinal), scene->mShotDuration,
               text.mHeading, text.mAction, text.mPairs, shots);
  return true;
}

}  // namespace zelstoryparser
