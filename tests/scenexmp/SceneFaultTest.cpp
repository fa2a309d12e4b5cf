#include <functional>

#include <gtest/gtest.h>

#include <zelstoryparser/SceneXMP.h>

#include "support/PacketText.h"
#include "support/StoryBuilder.h"

namespace zelstoryparser {
namespace {

using Metadata = TXMPMeta<std::string>;  // the one that fails

// Runs an operation with its first call refused, then its second, until none is. The table holds
// the calls and what becomes of the operation when each is refused; its last row is the success.
void ExpectOutcomes(std::string_view table, const std::function<std::string()>& operation) {
  const std::vector<Row> shorter = Rows(
      "sceneSetting= => set= ;; shotLocation= => loc= ;; sceneTimeOfDay= => time=\n"
      "dialogSequence= => seq= ;; character= => c= ;; dialog= => d=\n"
      "s: => ;; d: => ;; duration= => dur=");
  const std::vector<Row> steps = Rows(table);
  std::string calls;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    faultytoolkit::calls.clear();
    faultytoolkit::callsLeft = static_cast<int>(i);
    const std::string outcome = Replaced(operation(), shorter);
    EXPECT_EQ(faultytoolkit::callsLeft < 0, i + 1 < steps.size()) << "refused: " << steps[i][0];
    faultytoolkit::callsLeft = -1;
    EXPECT_EQ(outcome, steps[i][1]) << "refused: " << steps[i][0];
    if (i + 1 < steps.size()) calls += steps[i][0] + "\n";
  }
  EXPECT_EQ(faultytoolkit::calls, calls);
}

using Operation = std::function<UTF16String(Metadata&, Paths&)>;

// The answer's part that tells operations apart, the number of paths appended, the packet left.
std::string Outcome(const Packet& before, const Operation& operation) {
  Metadata metadata(before);
  Paths paths;
  std::string answer = "XMP_Error";
  try {
    answer = Utf8(operation(metadata, paths));
  } catch (const XMP_Error&) {
  }
  return answer + " " + std::to_string(paths.size()) + " " + PacketText(metadata);
}

ScenePtr House() {
  return MakeScene("H:INT. L - T / A:a / C:C / D:d", "7", "1");
}

TEST(SceneFaults, Write) {
  const Packet before = MakePacket("s:action=old; s:sceneSetting=old; O:o");
  ExpectOutcomes(R"(
      register xmpDM => XMP_Error 0 action='old' seq=[{c='O' d='o'}] set='old'
      register dc => XMP_Error 0 action='old' seq=[{c='O' d='o'}] set='old'
      register xmpScript => XMP_Error 0 action='old' seq=[{c='O' d='o'}] set='old'
      set sceneSetting 'INT' 0 => Error writing scene heading to XMP 0 action='old' seq=[{c='O' d='o'}] set='old'
      set shotLocation 'L' 0 => Error writing scene heading to XMP 0 action='old' seq=[{c='O' d='o'}] set='INT'
      set sceneTimeOfDay 'T' 0 => Error writing scene heading to XMP 0 loc='L' action='old' seq=[{c='O' d='o'}] set='INT'
      set action 'a' 0 => Error writing action text to XMP 3 loc='L' action='old' seq=[{c='O' d='o'}] set='INT' time='T'
      count dialogSequence => XMP_Error 4 loc='L' action='a' seq=[{c='O' d='o'}] set='INT' time='T'
      exists dialogSequence => Error writing character dialogue to XMP 4 loc='L' action='a' seq=[{c='O' d='o'} {c='C' d='d'}] set='INT' time='T'
      delete dialogSequence => Error writing character dialogue to XMP 4 loc='L' action='a' seq=[{c='O' d='o'} {c='C' d='d'}] set='INT' time='T'
      append dialogSequence null 1024 256 => Error writing character dialogue to XMP 4 loc='L' action='a' set='INT' time='T'
      compose dialogSequence -1 => Error writing character dialogue to XMP 4 loc='L' action='a' seq=[{}] set='INT' time='T'
      set dialogSequence[last()] character 'C' 0 => Error writing character dialogue to XMP 4 loc='L' action='a' seq=[{}] set='INT' time='T'
      set dialogSequence[last()] dialog 'd' 0 => Error writing character dialogue to XMP 4 loc='L' action='a' seq=[{c='C'}] set='INT' time='T'
      count dialogSequence => XMP_Error 4 loc='L' action='a' seq=[{c='C' d='d'}] set='INT' time='T'
      => \s6 loc='L' action='a' seq=[{c='C' d='d'}] set='INT' time='T')",
                 [&] {
                   return Outcome(before, [](Metadata& metadata, Paths& paths) {
                     return WriteSceneMetadataIntoXMP(House(), metadata, paths);
                   });
                 });
}

TEST(SceneFaults, Clear) {
  const Packet before =
      MakePacket("s:action=a; s:sceneSetting=s; d:shotLocation=l; s:sceneTimeOfDay=t; A:x");
  ExpectOutcomes(R"(
      register xmpDM => XMP_Error 0 loc='l' action='a' seq=[{c='A' d='x'}] set='s' time='t'
      register dc => XMP_Error 0 loc='l' action='a' seq=[{c='A' d='x'}] set='s' time='t'
      register xmpScript => XMP_Error 0 loc='l' action='a' seq=[{c='A' d='x'}] set='s' time='t'
      exists sceneSetting => Error deleting scene heading from XMP 0 loc='l' action='a' seq=[{c='A' d='x'}] set='s' time='t'
      delete sceneSetting => Error deleting scene heading from XMP 0 loc='l' action='a' seq=[{c='A' d='x'}] set='s' time='t'
      exists shotLocation => Error deleting scene heading from XMP 0 loc='l' action='a' seq=[{c='A' d='x'}] time='t'
      delete shotLocation => Error deleting scene heading from XMP 0 loc='l' action='a' seq=[{c='A' d='x'}] time='t'
      exists sceneTimeOfDay => Error deleting scene heading from XMP 0 action='a' seq=[{c='A' d='x'}] time='t'
      delete sceneTimeOfDay => Error deleting scene heading from XMP 0 action='a' seq=[{c='A' d='x'}] time='t'
      exists action => Error deleting action text from XMP 3 action='a' seq=[{c='A' d='x'}]
      delete action => Error deleting action text from XMP 3 action='a' seq=[{c='A' d='x'}]
      count dialogSequence => XMP_Error 4 seq=[{c='A' d='x'}]
      exists dialogSequence => Error deleting character dialogue from XMP 4 seq=[{c='A' d='x'}]
      delete dialogSequence => Error deleting character dialogue from XMP 4 seq=[{c='A' d='x'}]
      => \s6\s)",
                 [&] { return Outcome(before, ClearSceneMetadataFromXMP); });
}

TEST(SceneFaults, Has) {
  const Packet before = MakePacket("A:x; B:y");
  ExpectOutcomes(R"(
      get sceneSetting => yes ;; get shotLocation => yes ;; get sceneTimeOfDay => yes ;; get action => yes
      register xmpDM => XMP_Error ;; register dc => XMP_Error ;; register xmpScript => XMP_Error
      count dialogSequence => no ;; compose dialogSequence 1 => no
      get dialogSequence[1] character => no ;; get dialogSequence[1] dialog => no
      compose dialogSequence 2 => no
      get dialogSequence[2] character => no ;; get dialogSequence[2] dialog => no ;; => yes)",
                 [&]() -> std::string {
                   Metadata metadata(before);
                   try {
                     return HasAnyStoryRelatedMetadata(metadata) ? "yes" : "no";
                   } catch (const XMP_Error&) {
                     return "XMP_Error";
                   }
                 });
}

TEST(SceneFaults, Shot) {
  ExpectOutcomes(R"(
      register xmpDM => XMP_Error ;; register dc => XMP_Error ;; register xmpScript => XMP_Error ;; create => XMP_Error
      set sceneSetting 'INT' 0 => dur={scale='1/1' value='3600'} scene='7' shotName='INT - L - T - 7' action='a' seq=[{c='C' d='d'}]
      set shotLocation 'L' 0 => dur={scale='1/1' value='3600'} scene='7' shotName='INT - L - T - 7' action='a' seq=[{c='C' d='d'}] set='INT'
      set sceneTimeOfDay 'T' 0 => dur={scale='1/1' value='3600'} scene='7' loc='L' shotName='INT - L - T - 7' action='a' seq=[{c='C' d='d'}] set='INT'
      set shotName 'INT - L - T - 7' 0 => dur={scale='1/1' value='3600'} scene='7' loc='L' action='a' seq=[{c='C' d='d'}] set='INT' time='T'
      set scene '7' 0 => dur={scale='1/1' value='3600'} loc='L' shotName='INT - L - T - 7' action='a' seq=[{c='C' d='d'}] set='INT' time='T'
      set duration scale '1/1' 0 => scene='7' loc='L' shotName='INT - L - T - 7' action='a' seq=[{c='C' d='d'}] set='INT' time='T'
      set duration value '3600' 0 => dur={scale='1/1'} scene='7' loc='L' shotName='INT - L - T - 7' action='a' seq=[{c='C' d='d'}] set='INT' time='T'
      set action 'a' 0 => dur={scale='1/1' value='3600'} scene='7' loc='L' shotName='INT - L - T - 7' seq=[{c='C' d='d'}] set='INT' time='T'
      append dialogSequence null 1024 256 => dur={scale='1/1' value='3600'} scene='7' loc='L' shotName='INT - L - T - 7' action='a' set='INT' time='T'
      compose dialogSequence -1 => dur={scale='1/1' value='3600'} scene='7' loc='L' shotName='INT - L - T - 7' action='a' seq=[{}] set='INT' time='T'
      set dialogSequence[last()] character 'C' 0 => dur={scale='1/1' value='3600'} scene='7' loc='L' shotName='INT - L - T - 7' action='a' seq=[{}] set='INT' time='T'
      set dialogSequence[last()] dialog 'd' 0 => dur={scale='1/1' value='3600'} scene='7' loc='L' shotName='INT - L - T - 7' action='a' seq=[{c='C'}] set='INT' time='T'
      serialize 0 0 '' '' 0 => XMP_Error
      => dur={scale='1/1' value='3600'} scene='7' loc='L' shotName='INT - L - T - 7' action='a' seq=[{c='C' d='d'}] set='INT' time='T')",
                 []() -> std::string {
                   std::vector<ShotXMP> shots(1);
                   try {
                     EXPECT_TRUE(GetSceneXMP(nullptr, House(), 1, shots));
                     return shots.size() == 2 ? PacketText(shots[1].mXMPPacket) : "no shot";
                   } catch (const XMP_Error&) {
                     return shots.size() == 1 ? "XMP_Error" : "XMP_Error, but a shot";
                   }
                 });
}

}  // namespace
}  // namespace zelstoryparser
