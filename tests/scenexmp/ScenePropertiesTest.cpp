#include <gtest/gtest.h>

#include "scenexmp/DialogSequence.h"
#include "scenexmp/SceneProperties.h"
#include "scenexmp/SceneText.h"
#include "scenexmp/ShotProperties.h"
#include "support/PacketText.h"
#include "support/StoryBuilder.h"

namespace zelstoryparser {
namespace {

TEST(SceneText, IsGathered) {
  for (const Row& row : Rows(R"(
      => || ;; H:A / H:B|C => BC|| ;; H:A / H: => || ;; A:x / S:- / A:y|z => |x  yz|
      A: / A:x / A: / A:y => |x    y| ;; C:A / D:x / C:B / D:y / D:z => ||A:x,B:y  z,
      C:A / C:B / D:x => ||B:x, ;; D:x / C:A / D:y => ||A:x  y, ;; D:x / C:A => ||A:x, ;; D:x / D:y => ||
      C:A / P:p / D:x / T:t / U:u / S:s / D:y => ||A:x  y, ;; C:A / D:x / C: / D:y / C:B / D:z => ||A:x,B:y  z,
      C:A / D: / D: => || ;; C:A|B / A:a / H:h / D:x => h|a|AB:x,)")) {
    const ScenePtr scene = MakeScene(row[0]);
    for (auto& paragraph : scene->mParagraphs) paragraph->mTextRuns.push_back(nullptr);
    scene->mParagraphs.insert(scene->mParagraphs.begin(), nullptr);
    scene->mParagraphs.push_back(nullptr);
    const SceneText text = CollectSceneText(*scene);
    std::string found = Utf8(text.mHeading) + "|" + Utf8(text.mAction) + "|";
    for (const auto& [character, dialog] : text.mPairs)
      found += Utf8(character + u":" + dialog + u",");
    EXPECT_EQ(found, row[1]) << row[0];
  }
}

TEST(SceneProperties, WriteOnlyWhatThereIs) {
  Packet packet = MakePacket("d:shotLocation=OLD");
  EXPECT_TRUE(WriteSceneHeadingProperties(u"INT", u"", u"NIGHT", packet));
  EXPECT_TRUE(WriteActionProperty(u"", packet) && WriteDialogSequence({}, packet));
  EXPECT_TRUE(RemoveActionProperty(packet) && RemoveDialogSequence(packet));
  EXPECT_EQ(PacketText(packet),
            "d:shotLocation='OLD' s:sceneSetting='INT' s:sceneTimeOfDay='NIGHT'");
  EXPECT_TRUE(RemoveSceneHeadingProperties(packet) && RemoveSceneHeadingProperties(packet));
  EXPECT_TRUE(WriteDialogSequence({{u"A", u"\xD834\xDD1E"}}, packet));
  EXPECT_TRUE(WriteDialogSequence({{u"", u""}}, packet));
  EXPECT_TRUE(WriteSceneNumberProperty(u"", packet) && WriteShotNameProperty(u"", packet));
  EXPECT_EQ(PacketText(packet),
            "d:scene='' s:dialogSequence=[{character='A' dialog='𝄞'} {character='' dialog=''}]");
}

TEST(ShotDuration, IsHoursMinutesSeconds) {
  for (const Row& row : Rows(R"(
      1:30 => 5400 ;; 00:01:30 => 90 ;; 90 => 324000 ;; :5 => 300 ;; ::5 => 5 ;; 0:00:00 ;; => ;; : ;; :: ;; x
      1:x:5 => 3605 ;; 0:0:-5 => -5 ;; 1:-60:0 => 0 ;; 0:0:5:9 => 5 ;; 0:0:5:9:x => 5 ;; \t\s0:1 :2x => 62
      0:1.9:0 => 60 ;; +1:+1:+1 => 3661 ;; 1: => 3600 ;; 0:0:2147483648 ;; 0:0:2147483647 => 2147483647
      99999999999:0:7 => 7 ;; 1:0:2147483647 => 2147487247 ;; 596524:0:0 => 2147486400
      2147483647:2147483647:2147483647 => 7861937631667
      -2147483648:-2147483648:-2147483648 => -7861937635328)")) {
    Packet packet = MakePacket("");
    EXPECT_TRUE(WriteShotDurationProperty(Utf16(row[0]), packet)) << row[0];
    const std::string expected = "d:duration={scale='1/1' value='" + row[1] + "'}";
    EXPECT_EQ(PacketText(packet), row[1].empty() ? "" : expected) << row[0];
  }
}

TEST(SceneProperties, RefusalsAreAnsweredFalse) {
  Packet packet = MakePacket("s:dialogSequence=text; d:duration=text");
  packet.SetProperty(kScript, "sceneSetting", nullptr, kXMP_PropValueIsArray);
  packet.SetProperty(kScript, "action", nullptr, kXMP_PropValueIsStruct);
  const std::string before = PacketText(packet);
  EXPECT_FALSE(WriteSceneHeadingProperties(u"INT", u"HOUSE", u"", packet));
  EXPECT_FALSE(WriteActionProperty(u"a", packet) || WriteDialogSequence({{u"A", u"x"}}, packet));
  EXPECT_FALSE(WriteShotDurationProperty(u"1", packet) || WriteShotNameProperty(u"a\x01", packet));
  EXPECT_EQ(PacketText(packet), before);
}

TEST(SceneProperties, ReadDialogSequenceTakesWholePairs) {
  CharacterDialogPairs pairs = {{u"old", u"old"}};
  XMP_OptionBits options = 0;
  EXPECT_TRUE(ReadDialogSequence(MakePacket("A:x; B:; :y; :; C:z"), options, pairs));
  EXPECT_EQ(pairs, (CharacterDialogPairs{{u"A", u"x"}, {u"C", u"z"}}));
  EXPECT_TRUE(ReadDialogSequence(MakePacket("A:"), options, pairs));
  EXPECT_TRUE(pairs.empty());
  for (const char* nothing : {"", ":", "s:dialogSequence=x"}) {
    EXPECT_FALSE(ReadDialogSequence(MakePacket(nothing), options, pairs)) << nothing;
  }
}

}  // namespace
}  // namespace zelstoryparser
