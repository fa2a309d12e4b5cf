#include <gtest/gtest.h>

#include <zelcore/config/Localizer.h>
#include <zelstoryparser/SceneXMP.h>

#include "scenexmp/SceneHeading.h"
#include "scenexmp/SceneText.h"
#include "support/PacketText.h"
#include "support/Story.h"

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

TEST(SceneText, IsGathered) {
  for (const Row& row : Rows(R"(
      => || ;; H:A / H:B|C => BC|| ;; H:A / H: => || ;; A:x / S:- / A:y|z => |x  yz| ;; A: / A:x / A: / A:y => |x    y|
      C:A / D:x / C:B / D:y / D:z => ||A:x,B:y  z, ;; C:A / C:B / D:x => ||B:x, ;; D:x / C:A / D:y => ||A:x  y,
      D:x / C:A => ||A:x, ;; D:x / D:y => || ;; C:A / P:p / D:x / T:t / U:u / S:s / D:y => ||A:x  y,
      C:A / D:x / C: / D:y / C:B / D:z => ||A:x,B:y  z, ;; C:A / D: / D: => || ;; C:A|B / A:a / H:h / D:x => h|a|AB:x,)")) {
    const ScenePtr scene = MakeScene(row[0]);
    for (auto& paragraph : scene->mParagraphs) {
      if (!paragraph->mTextRuns.empty()) paragraph->mTextRuns.push_back(nullptr);
    }
    scene->mParagraphs.insert(scene->mParagraphs.begin(), nullptr);
    scene->mParagraphs.push_back(nullptr);
    const SceneText text = CollectSceneText(*scene);
    std::string found = Utf8(text.mHeading) + "|" + Utf8(text.mAction) + "|";
    for (const auto& [character, dialog] : text.mPairs)
      found += Utf8(character + u":" + dialog + u",");
    EXPECT_EQ(found, row[1]) << row[0];
  }
}

TEST(SceneXMP, SceneIsWritten) {
  for (const Row& row : Rows(R"(
      => H:INT. H - N / A:R / C:C / D:x => d:shotLocation='H' s:action='R' s:dialogSequence=seq({s:character='C' s:dialog='x'}) s:sceneSetting='INT' s:sceneTimeOfDay='N' => H A Q 1
      d:shotLocation=old; s:action=old; A:x; B:y; C:z => H:L - N / A:R / C:C / D:x => d:shotLocation='L' s:action='R' s:dialogSequence=seq({s:character='C' s:dialog='x'}) s:sceneTimeOfDay='N' => H A 3
      => => => A ;; s:action=a; s:sceneSetting=s; d:scene=9; A:x; B:y => => d:scene='9' s:action='a' s:sceneSetting='s' => A 2
      => C:A / D:x / C:B / D:y => s:dialogSequence=seq({s:character='A' s:dialog='x'} {s:character='B' s:dialog='y'}) => A Q 2
      : => C:A / D:x / C:B / D:y => s:dialogSequence=seq({s:character='A' s:dialog='x'} {s:character='B' s:dialog='y'}) => A 2
      s:sceneTimeOfDay=Day; d:shotLocation=old => H:EXT. => d:shotLocation='old' s:sceneSetting='EXT' s:sceneTimeOfDay='Day' => H A
      s:sceneSetting=INT => H:... => s:sceneSetting='INT' => H A ;; => A:<&>" é𝄞\n\t' => s:action='<&>" é𝄞\n\t'' => A)")) {
    const ScenePtr scene = MakeScene(row[1]);
    Packet packet = MakePacket(row[0]);
    Paths paths = {zelmetadata::Path()};
    EXPECT_EQ(Utf8(WriteSceneMetadataIntoXMP(scene, packet, paths)), "");
    EXPECT_EQ(PacketText(packet), row[2]) << row[0];
    EXPECT_EQ(PathsText(paths), " " + PathsOf(row[3])) << row[0];
    EXPECT_EQ(Utf8(WriteSceneMetadataIntoXMP(scene, packet, paths)), "");  // again
    EXPECT_EQ(PacketText(packet), row[2]) << row[0];
  }
}

TEST(SceneXMP, MetadataIsClearedAndFound) {
  for (const Row& row : Rows(R"(
      => no ;; s:sceneSetting=; s:action=; d:shotLocation= => no ;; s:sceneSetting=\t => yes ;; d:shotLocation=x => yes
      s:shotLocation=x => no => => s:shotLocation='x' ;; d:sceneSetting=x => no => => d:sceneSetting='x'
      s:sceneTimeOfDay=x => yes ;; s:action=x => yes ;; d:scene=9; s:action=x; s:other=o => yes => => d:scene='9' s:other='o'
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
  }
  Packet packet = MakePacket("s:dialogSequence=text");
  packet.SetProperty(kScript, "sceneSetting", nullptr, kXMP_PropValueIsStruct);
  EXPECT_FALSE(HasAnyStoryRelatedMetadata(packet));  // neither is what is meant
}

TEST(SceneXMP, RefusalsAreLocalised) {
  const ScenePtr scene = MakeScene("H:INT. A - B / A:a");
  Paths paths;
  Packet packet = MakePacket("");
  packet.SetProperty(kScript, "action", nullptr, kXMP_PropValueIsStruct);
  auto& localizer = zelcore::config::Localizer::Get();
  localizer.InstallTranslation("$$$/zelstoryparser/ActionTextError", u"Aktion!");
  EXPECT_EQ(Utf8(WriteSceneMetadataIntoXMP(scene, packet, paths)), "Aktion!");
  localizer.RemoveTranslations();
}

// The shot of a scene as "id: packet".
std::string Shot(const ScenePtr& scene, std::int32_t ordinal) {
  std::vector<ShotXMP> shots(1);
  EXPECT_TRUE(GetSceneXMP(nullptr, scene, ordinal, shots));
  EXPECT_TRUE(GetSceneXMP(StoryPtr(new TavroStory), scene, ordinal, shots));
  EXPECT_TRUE(shots[0].mShotID.empty() && shots[0].mXMPPacket.empty());
  if (shots.size() == 1) return "";
  EXPECT_TRUE(shots[1].mXMPPacket.ends_with("<?xpacket end=\"w\"?>"));
  return Utf8(shots[1].mShotID) + ": " + PacketText(shots[1].mXMPPacket);
}

TEST(SceneXMP, ShotIsMade) {
  for (const Row& row : Rows(R"(
      => 1 ;; S:a / P:b / T:c => 1 ;; C:A => 1 ;; D:A => 1 ;; A#:a / A#id:b => 1
      T# id: / A#no:a => 1 => => \sid: d:scene='1' d:shotName='1' s:action='a'
      H:INT. L - T => 12A => 1:30 => p: d:duration={d:scale='1/1' d:value='5400'} d:scene='12A' d:shotLocation='L' d:shotName='INT - L - T - 12A' s:sceneSetting='INT' s:sceneTimeOfDay='T'
      H:HOUSE => 2 => => p: d:scene='2' d:shotLocation='HOUSE' d:shotName='HOUSE - 2'
      H:HOUSE - NIGHT => 2 => => p: d:scene='2' d:shotLocation='HOUSE' d:shotName='HOUSE - NIGHT - 2' s:sceneTimeOfDay='NIGHT'
      H:INT. => 2 => => p: d:scene='2' d:shotName='INT - 2' s:sceneSetting='INT'
      A:a\xEF\xBF\xBFz / C:C / D:nul\x00 => 1 => => p: d:scene='1' d:shotName='1' s:dialogSequence=seq({s:character='C'})
      H:... => \s => 0:0 => p: d:scene=' ' d:shotName=' '
      C:A / D:x / C:é𝄞 / D:<&> => 5 => => p: d:scene='5' d:shotName='5' s:dialogSequence=seq({s:character='A' s:dialog='x'} {s:character='é𝄞' s:dialog='<&>'}))")) {
    EXPECT_EQ(Shot(MakeScene(row[0], row[1], row[2]), 9), row[3]) << row[0];
  }
  for (const Row& row : Rows(R"(
      00:01:30 => 90 ;; 90 => 324000 ;; :5 => 300 ;; ::5 => 5 ;; 0:00:00 ;; : ;; :: ;; x ;; 1:x:5 => 3605 ;; 0:0:-5 => -5
      1:-60:0 => 0 ;; 0:0:5:9 => 5 ;; \t\s0:1 :2x => 62 ;; 0:1.9:0 => 60 ;; +1:+1:+1 => 3661 ;; 0:0:2147483648
      99999999999:0:7 => 7 ;; 1:0:2147483647 => 2147487247 ;; 596524:0:0 => 2147486400
      -2147483648:-2147483648:-2147483648 => -7861937635328)")) {
    EXPECT_EQ(Shot(MakeScene("H:...", "1", row[0]), 9),
              (row[1].empty() ? "p: " : "p: d:duration={d:scale='1/1' d:value='" + row[1] + "'} ") +
                  "d:scene='1' d:shotName='1'")
        << row[0];
  }
  for (const Row& row : Rows("7 => 007 ;; 42 => 042 ;; 123 => 123 ;; 1234 => 1234 ;; 0 => 000\n"
                             "-7 => 0-7 ;; -42 => -42 ;; -2147483648 => -2147483648")) {
    EXPECT_EQ(Shot(MakeScene("A#id:a"), std::stoi(row[0])),
              "id: d:scene='" + row[1] + "' d:shotName='" + row[1] + "' s:action='a'");
  }
}

// setting|location|time of day, of outputs that held `initial` before.
std::string Parts(const std::string& heading, const std::string& initial = "") {
  UTF16String setting = Utf16(initial), location = setting, timeOfDay = setting;
  ParseSceneHeading(Utf16(heading), setting, location, timeOfDay);
  return Utf8(setting) + "|" + Utf8(location) + "|" + Utf8(timeOfDay);
}

TEST(SceneHeading, IsSplit) {
  for (const Row& row : Rows(R"(
      INT. HOUSE - DAY => INT|HOUSE|DAY ;; EXT. CITY STREET - NIGHT => EXT|CITY STREET|NIGHT
      int. kitchen night => INT|kitchen|Night ;; INT. BARN LATE NIGHT => INT|BARN|Late Night
      INT/EXT. CAR - MOVING - DAY => INT/EXT|CAR|MOVING - DAY ;; P.O.V. JOHN - CONTINUOUS => P.O.V.|JOHN|CONTINUOUS
      SUBJEKTIVE WALD - TAG => SUBJEKTIVE|WALD|TAG ;; INT.HOUSE-DAY => INT|HOUSE|DAY ;; EXT BEACH => EXT|BEACH|
      EXT. HOUSE -\s\s\s => EXT|HOUSE| ;; INT. HOUSE  NIGHT => INT|HOUSE |Night ;; INT. NIGHT => INT|NIGHT|Night
      INT. HOLIDAY => INT|HOL|Day ;; EXTERIOR GARDEN - DAY => EXT|ERIOR GARDEN|DAY ;; INT.. HOUSE => INT|. HOUSE|
      INT. => INT|| ;; INT. DAY ROOM => INT|DAY ROOM| ;; INT. -DAY => INT|-DAY|Day ;; KITCHEN. LATER => KITCHEN|LATER|
      HOUSE... GARDEN => HOUSE|GARDEN| ;; MR. SMITH'S OFFICE - DAY => MR|SMITH'S OFFICE|DAY
      \sINT. HOUSE - DAY => INT|HOUSE|DAY ;; ... => || ;; => || ;; \s\t\s => ||
      A HOUSE IN THE WOODS - LATE NIGHT => |A HOUSE IN THE WOODS|LATE NIGHT ;; ext. street - day => EXT|street|day
      INT. SOUTH-WEST WING - DAY => INT|SOUTH|WEST WING - DAY ;; INT.\t \tHOUSE \t-\t DAY\s => INT|HOUSE|DAY\s
      INT.\xC2\xA0HOUSE -\nDAY => INT|\xC2\xA0HOUSE|\nDAY ;; INT. - DAY => INT|-|Day ;; INT. -- => INT|-| ;; INT. - - => INT|-|
      INT. A - - DAY => INT|A|- DAY ;; INT. HOUSE NIGHT - => INT|HOUSE NIGHT| ;; INT. A - NIGHT -\s => INT|A|NIGHT -\s
      INT. XNIGHT => INT|XNIGHT|Night ;; INT HOUSE–NIGHT => INT|HOUSE|Night ;; INT. 𝄞NIGHT => INT|�|Night
      EXT. DORF MORNING => EXT|DORF|Morning ;; EXT. DORF eVeNiNg => EXT|DORF|Evening ;; ÄUSS. X => ÄUSS|X|
      INNENHOF => INN|ENHOF| ;; INN/AUSS HOF => INN/AUSS|HOF| ;; auss/inn. HOF => AUSS/INN|HOF| ;; AUSS. HOF => AUSS|HOF|
      I/E CAR => I/E|CAR| ;; E/I. CAR => E/I|CAR| ;; I/A CAR => I/A|CAR| ;; A/I CAR => A/I|CAR| ;; EXT/INT. CAR => EXT/INT|CAR|
      INT/EST. CAR => INT/EST|CAR| ;; P.D.V.. CAR => P.D.V.|CAR| ;; p.o.v CAR => p|o.v CAR| ;; ESTABLISHING => EST|ABLISHING|
      IN. THE  HOUSE. NIGHT => IN|THE  HOUSE.|Night ;; A . B => A |B| ;; .HOUSE => |HOUSE| ;; HOUSE => |HOUSE|
      DAY => |DAY|Day ;; LATE NIGHT => |LATE NIGHT|Late Night ;; PLATE NIGHT => |PLATE NIGHT|Late Night)")) {
    EXPECT_EQ(Parts(row[0]), row[1]) << row[0];
  }
}

TEST(SceneHeading, KeepsWhatTheHeadingDoesNotSay) {
  for (const Row& row : Rows(R"(
      => ?|?|? ;; HOUSE => ?|?|? ;; INT. => INT|?|? ;; ... => |?|? ;; A - B => ?|A|B ;; INT. -\s\s => INT|?|?
      INT. A -\s => INT|A| ;; A. => A|?|?)")) {
    EXPECT_EQ(Parts(row[0], "?"), row[1]) << row[0];
  }
}

}  // namespace
}  // namespace zelstoryparser
