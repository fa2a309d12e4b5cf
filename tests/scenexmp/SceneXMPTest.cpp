#include <gtest/gtest.h>

#include <zelcore/config/Localizer.h>
#include <zelstoryparser/SceneXMP.h>

#include "support/AllocationCountdown.h"
#include "support/PacketText.h"
#include "support/StoryBuilder.h"

namespace zelstoryparser {
namespace {

// Paths from "H A Q 2": those of the heading, the action, the sequence, and of its first two items.
std::string PathsOf(const std::string& words) {
  std::string text;
  for (const char word : words) {
    if (word == 'H') text += "xmpScript:sceneSetting xmpDM:shotLocation xmpScript:sceneTimeOfDay ";
    if (word == 'A') text += "xmpScript:action ";
    if (word == 'Q') text += "xmpScript:dialogSequence ";
    for (char item = '1'; item <= word && word <= '9'; ++item) {
      const std::string path = std::string("xmpScript:dialogSequence[") + item + "]/xmpScript:";
      text += path + "character " + path + "dialog ";
    }
  }
  return text;
}

class SceneXMP : public LeavesNothing {
 protected:
  static void SetUpTestSuite() { MakePacket(""); }  // the registry of namespaces keeps memory
};

TEST_F(SceneXMP, SceneIsWritten) {
  for (const Row& row : Rows(R"(
      => H:INT. H - N / A:R / C:C / D:x => d:shotLocation='H' s:action='R' s:dialogSequence=[{character='C' dialog='x'}] s:sceneSetting='INT' s:sceneTimeOfDay='N' => H A Q 1
      d:shotLocation=old; s:action=old; A:x; B:y; C:z => H:L - N / A:R / C:C / D:x => d:shotLocation='L' s:action='R' s:dialogSequence=[{character='C' dialog='x'}] s:sceneTimeOfDay='N' => H A 3
      => => => A
      s:action=a; s:sceneSetting=s; d:scene=9; A:x; B:y => => d:scene='9' s:action='a' s:sceneSetting='s' => A 2
      => C:A / D:x / C:B / D:y => s:dialogSequence=[{character='A' dialog='x'} {character='B' dialog='y'}] => A Q 2
      : => C:A / D:x / C:B / D:y => s:dialogSequence=[{character='A' dialog='x'} {character='B' dialog='y'}] => A 2
      s:sceneTimeOfDay=Day; d:shotLocation=old => H:EXT. => d:shotLocation='old' s:sceneSetting='EXT' s:sceneTimeOfDay='Day' => H A
      s:sceneSetting=INT => H:... => s:sceneSetting='INT' => H A
      => A:<&>" é𝄞\n\t' => s:action='<&>" é𝄞\n\t'' => A)")) {
    const ScenePtr scene = MakeScene(row[1]);
    Packet packet = MakePacket(row[0]);
    Paths paths = {zelmetadata::Path()};
    EXPECT_EQ(Utf8(WriteSceneMetadataIntoXMP(scene, packet, paths)), "");
    EXPECT_EQ(PacketText(packet), row[2]) << row[0];
    EXPECT_EQ(PathsText(paths), " " + PathsOf(row[3])) << row[0];
    EXPECT_EQ(Utf8(WriteSceneMetadataIntoXMP(scene, packet, paths)), "");  // again
    EXPECT_EQ(PacketText(packet), row[2]) << row[0];
    EXPECT_TRUE(PathsText(paths).starts_with(" " + PathsOf(row[3]))) << row[0];
    EXPECT_EQ(scene->mRefCount, 1);
  }
}

TEST_F(SceneXMP, MetadataIsClearedAndFound) {
  for (const Row& row : Rows(R"(=> no ;; s:sceneSetting=; s:action=; d:shotLocation= => no
      s:sceneSetting=\t => yes ;; d:shotLocation=x => yes ;; s:shotLocation=x => no => => s:shotLocation='x'
      d:sceneSetting=x => no => => d:sceneSetting='x' ;; s:sceneTimeOfDay=x => yes ;; s:action=x => yes
      d:scene=9; s:action=x; s:other=o => yes => => d:scene='9' s:other='o'
      A:; :x => no => 2 ;; A:; B:x => yes => 2
      s:sceneSetting=x; d:shotLocation=x; s:sceneTimeOfDay=x; s:action=x; A:x => yes => 1)")) {
    Packet packet = MakePacket(row[0]);
    const std::string before = PacketText(packet);
    EXPECT_EQ(HasAnyStoryRelatedMetadata(packet), row[1] == "yes") << before;
    EXPECT_EQ(PacketText(packet), before);
    Paths paths;
    EXPECT_EQ(Utf8(ClearSceneMetadataFromXMP(packet, paths)), "");
    EXPECT_EQ(PathsText(paths), PathsOf("H A" + row[2])) << before;
    EXPECT_EQ(PacketText(packet), row[3]);
    EXPECT_FALSE(HasAnyStoryRelatedMetadata(packet));
    EXPECT_EQ(Utf8(ClearSceneMetadataFromXMP(packet, paths)), "");
    EXPECT_EQ(PathsText(paths), PathsOf("H A" + row[2] + "H A"));
  }
  Packet packet = MakePacket("s:dialogSequence=text");
  packet.SetProperty(kScript, "sceneSetting", nullptr, kXMP_PropValueIsStruct);
  EXPECT_FALSE(HasAnyStoryRelatedMetadata(packet));  // neither is what is meant
}

TEST_F(SceneXMP, RefusalsAreLocalised) {
  const ScenePtr scene = MakeScene("H:INT. A - B / A:a / C:C / D:d");
  Paths paths;
  Packet packet = MakePacket("");
  packet.SetProperty(kScript, "action", nullptr, kXMP_PropValueIsStruct);
  auto& localizer = zelcore::config::Localizer::Get();
  localizer.InstallTranslation("$$$/zelstoryparser/ActionTextError", u"Aktion!");
  EXPECT_EQ(Utf8(WriteSceneMetadataIntoXMP(scene, packet, paths)), "Aktion!");
  localizer.RemoveTranslations();
  EXPECT_EQ(Utf8(WriteSceneMetadataIntoXMP(scene, packet, paths)),
            "Error writing action text to XMP");
  EXPECT_EQ(PathsText(paths), PathsOf("H H"));

  Packet noArray = MakePacket("s:dialogSequence=text; s:action=old");
  EXPECT_THROW(WriteSceneMetadataIntoXMP(scene, noArray, paths), XMP_Error);
  EXPECT_EQ(PacketText(noArray),
            "d:shotLocation='A' s:action='a' s:dialogSequence='text' "
            "s:sceneSetting='INT' s:sceneTimeOfDay='B'");
  EXPECT_THROW(ClearSceneMetadataFromXMP(noArray, paths), XMP_Error);
  EXPECT_EQ(PathsText(paths), PathsOf("H H H A H A"));
  EXPECT_EQ(PacketText(noArray), "s:dialogSequence='text'");
}

// The shot of a scene as "id: packet".
std::string Shot(const ScenePtr& scene, std::int32_t ordinal) {
  std::vector<ShotXMP> shots(1);
  EXPECT_TRUE(GetSceneXMP(nullptr, scene, ordinal, shots));
  EXPECT_TRUE(GetSceneXMP(StoryPtr(new TavroStory), scene, ordinal, shots));
  EXPECT_TRUE(shots[0].mShotID.empty() && shots[0].mXMPPacket.empty());
  EXPECT_EQ(scene->mRefCount, 1);
  if (shots.size() == 1) return "";
  EXPECT_TRUE(shots.size() == 3 && shots[1].mXMPPacket == shots[2].mXMPPacket);
  return Utf8(shots[1].mShotID) + ": " + PacketText(shots[1].mXMPPacket);
}

TEST_F(SceneXMP, ShotIsMade) {
  for (const Row& row : Rows(R"(
      => 1 ;; S:a / P:b / T:c => 1 ;; C:A => 1 ;; D:A => 1 ;; A#:a / A#id:b => 1
      T# id: / A#no:a => 1 => => \sid: d:scene='1' d:shotName='1' s:action='a'
      H:INT. L - T => 12A => 1:30 => p: d:duration={scale='1/1' value='5400'} d:scene='12A' d:shotLocation='L' d:shotName='INT - L - T - 12A' s:sceneSetting='INT' s:sceneTimeOfDay='T'
      H:HOUSE => 2 => => p: d:scene='2' d:shotLocation='HOUSE' d:shotName='HOUSE - 2'
      H:HOUSE - NIGHT => 2 => => p: d:scene='2' d:shotLocation='HOUSE' d:shotName='HOUSE - NIGHT - 2' s:sceneTimeOfDay='NIGHT'
      H:INT. => 2 => => p: d:scene='2' d:shotName='INT - 2' s:sceneSetting='INT'
      H:... => \s => 0:0 => p: d:scene=' ' d:shotName=' '
      C:A / D:x / C:é𝄞 / D:<&> => 5 => => p: d:scene='5' d:shotName='5' s:dialogSequence=[{character='A' dialog='x'} {character='é𝄞' dialog='<&>'}])")) {
    EXPECT_EQ(Shot(MakeScene(row[0], row[1], row[2]), 9), row[3]) << row[0];
  }
  for (const Row& row : Rows("7 => 007 ;; 42 => 042 ;; 123 => 123 ;; 1234 => 1234 ;; 0 => 000\n"
                             "-7 => 0-7 ;; -42 => -42 ;; -2147483648 => -2147483648")) {
    const ScenePtr scene = MakeScene("A#id:a");
    scene->mParagraphs.insert(scene->mParagraphs.begin(), nullptr);
    EXPECT_EQ(Shot(scene, std::stoi(row[0])),
              "id: d:scene='" + row[1] + "' d:shotName='" + row[1] + "' s:action='a'");
  }
}

TEST_F(SceneXMP, FailedAllocationsLeaveNothingBehind) {
  const ScenePtr scene = MakeScene(
      "H:INT. A HOUSE OF SOME SIZE - LATE AT NIGHT / A:R / C:C / D:A speech that is no short "
      "string.",
      "", "1:2:3");
  const Packet before = MakePacket("A:x; B:y");
  Packet packet;
  Paths paths;
  const auto start = [&] {
    paths = {zelmetadata::Path()};
    packet = before;
  };
  const auto check = [&](bool) {
    EXPECT_TRUE((" " + PathsOf("H A 2")).starts_with(PathsText(paths))) << PathsText(paths);
    start();  // whatever was left of it, the object takes new metadata
    EXPECT_EQ(Utf8(WriteSceneMetadataIntoXMP(scene, packet, paths)), "");
    EXPECT_EQ(PathsText(paths), " " + PathsOf("H A 2"));
  };
  FailEachAllocation([&] { start(), WriteSceneMetadataIntoXMP(scene, packet, paths); }, check);
  FailEachAllocation([&] { start(), ClearSceneMetadataFromXMP(packet, paths); }, check);
  FailEachAllocation([&] { HasAnyStoryRelatedMetadata(packet = before); }, [](bool) {});
  std::vector<ShotXMP> shots;
  FailEachAllocation([&] { GetSceneXMP(nullptr, scene, 1, shots); },
                     [&](bool failed) { EXPECT_EQ(shots.size(), failed ? 0u : 1u); });
  EXPECT_EQ(scene->mRefCount, 1);
}

}  // namespace
}  // namespace zelstoryparser
