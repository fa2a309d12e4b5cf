#include <chrono>
#include <filesystem>

#include <gmock/gmock.h>

#include "zelstory/Scratch.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class SidecarTest : public Scratch {
 protected:
  // One scene: a heading, an action, a speech. `extra` follows inside the scene.
  std::string Story(const std::string& extra = "") {
    Write("story.quor",
          "<TavroStory version='1.0'><document><stream name='body'><section><scene objID='s1'>"
          "<paragraph element='SceneHeading'><textRun>INT. HOUSE - NIGHT</textRun></paragraph>"
          "<paragraph element='Action'><textRun>Rain &amp; wind.</textRun></paragraph>"
          "<paragraph element='Character'><textRun>ANNA</textRun></paragraph>"
          "<paragraph element='Dialog'><textRun>Hello.</textRun></paragraph>" +
              extra + "</scene></section></stream></document></TavroStory>");
    return File("story.quor");
  }
  Outcome WriteScene(const std::string& sidecar) {
    return Tool({"write", Story(), "--id", "s1", sidecar});
  }
};

TEST_F(SidecarTest, WriteTellsWhatItTouchedAndClearTakesItAway) {
  EXPECT_EQ(WriteScene("clip.xmp").mOutput,
            "xmpScript:sceneSetting\nxmpDM:shotLocation\nxmpScript:sceneTimeOfDay\n"
            "xmpScript:action\nxmpScript:dialogSequence\n"
            "xmpScript:dialogSequence[1]/xmpScript:character\n"
            "xmpScript:dialogSequence[1]/xmpScript:dialog\n");
  EXPECT_EQ(Tool({"has", "clip.xmp"}).mOutput, "yes\n");
  EXPECT_EQ(Tool({"clear", "clip.xmp"}).mStatus, 0);
  const Outcome has = Tool({"has", "clip.xmp"});
  EXPECT_EQ(has.mOutput, "no\n");
  EXPECT_EQ(has.mStatus, 1);
  EXPECT_EQ(Tool({"clear", "clip.xmp"}).mOutput, "unchanged\n");
  EXPECT_THAT(FilesHere(), ElementsAre("clip.xmp", "story.quor"));
}

// Each is asked for as the first thing of its process.
TEST_F(SidecarTest, OneStoryPropertyIsEnough) {
  for (const std::string property : {"sceneSetting", "sceneTimeOfDay", "action"}) {
    Write("clip.xmp",
          "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description "
          "rdf:about='' xmlns:p='http://ns.zelhost.example/metadata/script/1.0/' p:" +
              property + "='X'/></rdf:RDF>");
    EXPECT_EQ(Tool({"has", "clip.xmp"}).mOutput, "yes\n") << property;
  }
}

TEST_F(SidecarTest, OthersReadTheTriplesThatWereMeant) {
  if (!IsInstalled("rapper") || !IsInstalled("xmllint"))
    GTEST_SKIP() << "rapper or xmllint missing";
  WriteScene("clip.xmp");
  EXPECT_EQ(Process("xmllint", {"--noout", "clip.xmp"}).mErrors, "");
  const std::vector<std::string> lines = Lines(Triples("clip.xmp").mOutput);
  const std::string script = "http://ns.zelhost.example/metadata/script/1.0/";
  const std::string rdf = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
  const std::string clip = "<http://clip.example/> ";
  EXPECT_THAT(lines,
              testing::UnorderedElementsAre(
                  clip + "<" + script + "sceneSetting> \"INT\" .",
                  clip + "<http://ns.adobe.com/xmp/1.0/DynamicMedia/shotLocation> \"HOUSE\" .",
                  clip + "<" + script + "sceneTimeOfDay> \"NIGHT\" .",
                  clip + "<" + script + "action> \"Rain & wind.\" .",
                  testing::MatchesRegex(clip + "<" + script + "dialogSequence> _:[a-z0-9]+ \\."),
                  testing::MatchesRegex("_:[a-z0-9]+ <" + rdf + "type> <" + rdf + "Seq> \\."),
                  testing::MatchesRegex("_:[a-z0-9]+ <" + rdf + "_1> _:[a-z0-9]+ \\."),
                  testing::MatchesRegex("_:[a-z0-9]+ <" + script + "character> \"ANNA\" \\."),
                  testing::MatchesRegex("_:[a-z0-9]+ <" + script + "dialog> \"Hello.\" \\.")));
}

TEST_F(SidecarTest, WritingTwiceChangesNothingTheSecondTime) {
  WriteScene("clip.xmp");
  const std::string bytes = Read("clip.xmp");
  const auto longAgo = fs::file_time_type::clock::now() - std::chrono::hours(1);
  fs::last_write_time(File("clip.xmp"), longAgo);
  EXPECT_EQ(WriteScene("clip.xmp").mOutput, "unchanged\n");
  EXPECT_EQ(fs::last_write_time(File("clip.xmp")), longAgo);
  WriteScene("other.xmp");
  EXPECT_EQ(Read("other.xmp"), bytes);
}

TEST_F(SidecarTest, WhatIsNoXMPIsRefusedAndLeftAsItWas) {
  const std::pair<std::string, std::string> refused[] = {
      {"", "1:1"},
      {"not XML", "1:1"},
      {"\n<a/>", "2:1"},
      {"<?xpacket begin='' id='W5M0MpCehiHzreSzNTczkc9d'?><x:xmpmeta", "1:1"},
      {"<!DOCTYPE r><rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'/>", "1:"}};
  for (const auto& [bytes, place] : refused) {
    Write("clip.xmp", bytes);
    const Outcome outcome = WriteScene("clip.xmp");
    EXPECT_EQ(outcome.mStatus, 1) << bytes;
    EXPECT_THAT(outcome.mErrors, testing::StartsWith("clip.xmp:" + place));
    EXPECT_THAT(outcome.mErrors, testing::ContainsRegex("^clip.xmp:[0-9]+:[0-9]+: error: [^0-9]"));
    EXPECT_EQ(Read("clip.xmp"), bytes);
  }
}

TEST_F(SidecarTest, WhatHasAnotherShapeIsRefusedAndLeftAsItWas) {
  const std::pair<std::string, std::string> cases[] = {
      {"<s:sceneSetting><rdf:Bag><rdf:li>INT</rdf:li></rdf:Bag></s:sceneSetting>",
       "Error writing scene heading to XMP\n"},
      {"<s:dialogSequence>text</s:dialogSequence>", "dialogSequence"}};
  for (const auto& [property, error] : cases) {  // clearing first removes a heading of any shape
    const std::string packet =
        "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description"
        " rdf:about='' xmlns:s='http://ns.zelhost.example/metadata/script/1.0/'>" +
        property + "</rdf:Description></rdf:RDF>";
    Write("clip.xmp", packet);
    const Outcome outcome = Tool({"write", Story(), "--scene", "1", "clip.xmp", "--merge"});
    EXPECT_THAT(outcome.mErrors, HasSubstr("clip.xmp: error: "));
    EXPECT_THAT(outcome.mErrors, HasSubstr(error));
    EXPECT_EQ(Read("clip.xmp"), packet);
  }
}

TEST_F(SidecarTest, ALinkStaysALinkAndModesAreKept) {
  fs::create_directory(File("real"));
  WriteScene("real/clip.xmp");
  fs::permissions(File("real/clip.xmp"), fs::perms(0640));
  fs::create_symlink("real/clip.xmp", File("link.xmp"));
  EXPECT_EQ(Tool({"clear", "link.xmp"}).mStatus, 0);
  EXPECT_TRUE(fs::is_symlink(File("link.xmp")));
  EXPECT_EQ(fs::status(File("real/clip.xmp")).permissions(), fs::perms(0640));
  EXPECT_EQ(Tool({"has", "real/clip.xmp"}).mOutput, "no\n");
}

TEST_F(SidecarTest, StandardStreamsTakeTheFilesPlace) {
  WriteScene("clip.xmp");
  const std::string written = Read("clip.xmp");
  const Outcome cleared = Tool({"clear", "-"}, written);
  EXPECT_EQ(Tool({"has", "-"}, written).mOutput, "yes\n");
  EXPECT_EQ(Tool({"has", "-"}, cleared.mOutput).mOutput, "no\n");
  EXPECT_EQ(Tool({"write", Story(), "--scene", "1", "-"}, cleared.mOutput).mOutput, written);
  EXPECT_EQ(Tool({"write", "-", "--scene", "1", "new.xmp"}, Read("story.quor")).mStatus, 0);
  EXPECT_EQ(Read("new.xmp"), written);
}

TEST_F(SidecarTest, OneFilesRefusalDoesNotStopTheOthers) {
  WriteScene("a.xmp");
  WriteScene("c.xmp");
  const Outcome outcome = Tool({"clear", "a.xmp", "b.xmp", "c.xmp"});
  EXPECT_EQ(outcome.mStatus, 1);
  EXPECT_EQ(outcome.mErrors, "b.xmp: error: No such file or directory\n");
  EXPECT_EQ(Tool({"has", "a.xmp", "c.xmp"}).mOutput, "a.xmp: no\nc.xmp: no\n");
}

TEST_F(SidecarTest, AClipHoldsTheSceneThatWasWrittenLastAndNoOther) {
  const std::string story = Example("every_element.quor");  // scene sc2 has a location alone
  Tool({"write", story, "--id", "sc2", "new.xmp"});
  const std::string expected = Tool({"xmp", "new.xmp"}).mOutput;
  for (const char* option : {"--merge", "--force"}) {
    WriteScene("clip.xmp");
    const Outcome preview = Tool({"write", story, "--id", "sc2", "clip.xmp", "--dry-run", option});
    const Outcome outcome = Tool({"write", story, "--id", "sc2", "clip.xmp", option});
    const bool merges = option == std::string("--merge");
    EXPECT_EQ(Tool({"xmp", "clip.xmp"}).mOutput == expected, !merges);
    EXPECT_EQ(preview.mOutput.starts_with("clears the scene that it holds first"), !merges);
    EXPECT_EQ(
        preview.mOutput.find("xmpScript:action: \"Rain & wind.\" -> (none)") == std::string::npos,
        merges);
    EXPECT_EQ(outcome.mOutput,
              "xmpScript:sceneSetting\nxmpDM:shotLocation\nxmpScript:sceneTimeOfDay\n"
              "xmpScript:action\nxmpScript:dialogSequence[1]/xmpScript:character\n"
              "xmpScript:dialogSequence[1]/xmpScript:dialog\n");
  }
  EXPECT_EQ(Tool({"write", story, "--id", "sc2", "new.xmp"}).mOutput, "unchanged\n");
}

TEST_F(SidecarTest, ASidecarIsFoundAndSharedAsPeopleNameIt) {
  fs::create_directory(File("D"));
  for (const char* clip : {"D/a.MOV", "D/b.mov", "D/c.mov", "D/c.wav", "D/d.mov"}) Write(clip, "");
  WriteScene("D/a.XMP");
  WriteScene("D/b.mov.Xmp");
  WriteScene("D/c.xmp");
  const Outcome has = Tool({"has", "D/a.MOV", "D/b.mov", "D/d.mov"});
  EXPECT_EQ(has.mOutput, "D/a.MOV: yes\nD/b.mov: yes\nD/d.mov: no\n");
  EXPECT_EQ(has.mErrors, "");
  EXPECT_EQ(Tool({"clear", "D/b.mov", "D/d.mov"}).mErrors, "");
  EXPECT_EQ(Tool({"has", "D/b.mov.Xmp"}).mOutput, "no\n");
  EXPECT_EQ(Tool({"has", "D/c.wav", "--sidecar-name", "stem"}).mOutput, "yes\n");
  EXPECT_EQ(Tool({"has", "D/c.wav", "--sidecar-name", "full"}).mOutput, "no\n");
  Write("D/c.mov.xmp", Tool({"clear", "-"}, Read("D/c.xmp")).mOutput);
  EXPECT_EQ(Tool({"has", "D/c.mov", "--sidecar-name", "stem"}).mOutput, "yes\n");
  EXPECT_EQ(Tool({"has", "D/c.mov", "--sidecar-name", "full"}).mOutput, "no\n");
  Write("t.csv", "clip,position\nD/c.mov,1\nD/c.wav,1\n");
  EXPECT_THAT(Tool({"tag", Story(), "--table", "t.csv", "--sidecar-name", "stem"}).mOutput,
              "D/c.mov: unchanged\nD/c.wav: unchanged\n");
  EXPECT_FALSE(fs::exists(File("D/d.mov.xmp")));
}

TEST_F(SidecarTest, AProtectedFileAndALockedFolderAreRespected) {
  WriteScene("clip.xmp");
  fs::permissions(File("clip.xmp"), fs::perms(0444));
  EXPECT_EQ(
      Tool({"clear", "clip.xmp"}).mErrors,
      "clip.xmp: error: the file has no write permission; --force replaces it all the same\n");
  EXPECT_EQ(WriteScene("clip.xmp").mOutput, "unchanged\n");
  EXPECT_EQ(Tool({"clear", "clip.xmp", "--force"}).mStatus, 0);
  EXPECT_EQ(fs::status(File("clip.xmp")).permissions(), fs::perms(0444));
  if (!IsInstalled("flock")) GTEST_SKIP() << "flock is not installed";
  const auto whileLocked = [this](const std::string& script) {
    return Process("flock", {"-o", ".", "sh", "-c", script, ZELSTORY_TOOL}).mErrors;
  };
  EXPECT_EQ(whileLocked("\"$0\" clear clip.xmp --no-wait"),
            ".: error: another process is changing files in this folder\n");
  EXPECT_EQ(whileLocked("\"$0\" clear clip.xmp --dry-run"), "");
  whileLocked(
      "(\"$0\" clear clip.xmp 2>note >done; echo end >>done) &"
      "until [ -s note ]; do sleep 0.1; done");
  EXPECT_EQ(Read("note"),
            ".: note: waiting for another process that changes files in this folder\n");
  Process("sh", {"-c", "until grep -q end done; do sleep 0.1; done"});
  EXPECT_EQ(Read("done"), "unchanged\nend\n");
}

}  // namespace
