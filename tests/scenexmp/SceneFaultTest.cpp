#include <functional>

#include <gtest/gtest.h>

#include <zelstoryparser/SceneXMP.h>

#include "support/PacketText.h"
#include "support/Story.h"

namespace zelstoryparser {
namespace {

using Metadata = TXMPMeta<std::string>;  // the one that fails

// Runs an operation with its first call refused, then its second, until none is. The table holds
// the calls and what becomes of the operation when each is refused; its last row is the success.
void ExpectOutcomes(std::string_view table, const std::function<std::string()>& operation) {
  static const std::vector<Row> shorter = Rows(R"(
      dialogSequence=seq => seq ;; sceneSetting= => set= ;; shotLocation= => loc= ;; sceneTimeOfDay= => time= ;; character= => c=
      dialog= => d= ;; s: =>  ;; d: =>  ;; duration= => dur= ;; dur={scale='1/1' value='3600'} => 1h
      shotName='INT - L - T - 7' => name ;; {c='O' d='o'} => old ;; {c='A' d='x'} => old ;; {c='C' d='d'} => new
      set='INT' => S ;; loc='L' => L ;; time='T' => T ;; action='a' => A ;; scene='7' => 7
      Error writing scene heading to XMP => write H! ;; Error writing action text to XMP => write A!
      Error writing character dialogue to XMP => write D! ;; Error deleting scene heading from XMP => delete H!
      Error deleting action text from XMP => delete A! ;; Error deleting character dialogue from XMP => delete D!)");
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
  EXPECT_EQ(Replaced(faultytoolkit::calls, {{"dialogSequence", "seq"}}), calls);
}

// The answer's part that tells operations apart, the number of paths appended, the packet left.
std::string Outcome(const Packet& before,
                    const std::function<UTF16String(Metadata&, Paths&)>& operation) {
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

UTF16String WriteHouse(Metadata& metadata, Paths& paths) {
  return WriteSceneMetadataIntoXMP(House(), metadata, paths);
}

TEST(SceneFaults, ARefusedNamespaceChangesNothing) {
  Metadata metadata(MakePacket("O:o"));
  const std::string refused = "XMP_Error 0 " + PacketText(metadata);
  std::vector<ShotXMP> shots;
  faultytoolkit::refusesNamespaces = true;
  EXPECT_EQ(Outcome(MakePacket("O:o"), WriteHouse), refused);
  EXPECT_EQ(Outcome(MakePacket("O:o"), ClearSceneMetadataFromXMP), refused);
  EXPECT_THROW(HasAnyStoryRelatedMetadata(metadata), XMP_Error);
  EXPECT_THROW(GetSceneXMP(nullptr, House(), 1, shots), XMP_Error);
  faultytoolkit::refusesNamespaces = false;
}

TEST(SceneFaults, Write) {
  const Packet before = MakePacket("s:action=old; s:sceneSetting=old; O:o");
  ExpectOutcomes(R"(
      set sceneSetting 'INT' 0 => write H! 0 action='old' seq(old) set='old'
      set shotLocation 'L' 0 => write H! 0 action='old' seq(old) S
      set sceneTimeOfDay 'T' 0 => write H! 0 L action='old' seq(old) S
      set action 'a' 0 => write A! 3 L action='old' seq(old) S T ;; count seq => XMP_Error 4 L A seq(old) S T
      exists seq => write D! 4 L A seq(old new) S T ;; delete seq => write D! 4 L A seq(old new) S T
      append seq 1024 null 256 => write D! 4 L A S T ;; compose seq -1 => write D! 4 L A seq({}) S T
      set seq[last()] character 'C' 0 => write D! 4 L A seq({}) S T
      set seq[last()] dialog 'd' 0 => write D! 4 L A seq({c='C'}) S T ;; count seq => XMP_Error 4 L A seq(new) S T
      => \s6 L A seq(new) S T)",
                 [&] { return Outcome(before, WriteHouse); });
}

TEST(SceneFaults, Clear) {
  const Packet before =
      MakePacket("s:action=a; s:sceneSetting=s; d:shotLocation=l; s:sceneTimeOfDay=t; A:x");
  ExpectOutcomes(R"(
      exists sceneSetting => delete H! 0 loc='l' A seq(old) set='s' time='t'
      delete sceneSetting => delete H! 0 loc='l' A seq(old) set='s' time='t'
      exists shotLocation => delete H! 0 loc='l' A seq(old) time='t'
      delete shotLocation => delete H! 0 loc='l' A seq(old) time='t'
      exists sceneTimeOfDay => delete H! 0 A seq(old) time='t' ;; delete sceneTimeOfDay => delete H! 0 A seq(old) time='t'
      exists action => delete A! 3 A seq(old) ;; delete action => delete A! 3 A seq(old) ;; count seq => XMP_Error 4 seq(old)
      exists seq => delete D! 4 seq(old) ;; delete seq => delete D! 4 seq(old) ;; => \s6\s)",
                 [&] { return Outcome(before, ClearSceneMetadataFromXMP); });
}

TEST(SceneFaults, Has) {
  const Packet before = MakePacket("A:x; B:y");
  ExpectOutcomes(R"(
      get sceneSetting => yes ;; get shotLocation => yes ;; get sceneTimeOfDay => yes ;; get action => yes ;; count seq => no
      compose seq 1 => no ;; get seq[1] character => no ;; get seq[1] dialog => no ;; compose seq 2 => no
      get seq[2] character => no ;; get seq[2] dialog => no ;; => yes)",
                 [&] {
                   Metadata metadata(before);
                   return HasAnyStoryRelatedMetadata(metadata) ? "yes" : "no";
                 });
}

TEST(SceneFaults, Shot) {
  ExpectOutcomes(R"(
      create => XMP_Error ;; set sceneSetting 'INT' 0 => 1h 7 name A seq(new)
      set shotLocation 'L' 0 => 1h 7 name A seq(new) S ;; set sceneTimeOfDay 'T' 0 => 1h 7 L name A seq(new) S
      set shotName 'INT - L - T - 7' 0 => 1h 7 L A seq(new) S T ;; set scene '7' 0 => 1h L name A seq(new) S T
      set duration scale '1/1' 0 => 7 L name A seq(new) S T
      set duration value '3600' 0 => dur={scale='1/1'} 7 L name A seq(new) S T ;; set action 'a' 0 => 1h 7 L name seq(new) S T
      append seq 1024 null 256 => 1h 7 L name A S T ;; compose seq -1 => 1h 7 L name A seq({}) S T
      set seq[last()] character 'C' 0 => 1h 7 L name A seq({}) S T
      set seq[last()] dialog 'd' 0 => 1h 7 L name A seq({c='C'}) S T ;; serialize 0 0   0 => XMP_Error
      => 1h 7 L name A seq(new) S T)",
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
