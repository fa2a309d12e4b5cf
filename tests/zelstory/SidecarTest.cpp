// What sidecars hold: a scene's metadata, and all other metadata untouched.
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "support/Table.h"
#include "zelstory/Scratch.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

std::string RDF(const std::string& properties) {
  return "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description "
         "rdf:about='' xmlns:s='http://ns.zelhost.example/metadata/script/1.0/'>" +
         properties + "</rdf:Description></rdf:RDF>";
}
const std::string kHeader = "<?xpacket begin='\uFEFF' id='W5M0MpCehiHzreSzNTczkc9d'?>";

class SidecarTest : public Scratch {
 protected:
  SidecarTest() {
    Write("s.quor", Story("<scene>" + Paragraph("SceneHeading", "INT. HOUSE - NIGHT") +
                          Paragraph("Action", "Rain &amp; wind.") + Paragraph("Character", "ANNA") +
                          Paragraph("Dialog", "Hello.") + "</scene><scene>" +
                          Paragraph("SceneHeading", "EXT. SEA") + "</scene>"));
  }
  Outcome WriteScene(const std::string& arguments = "clip.xmp") const {
    return Tool("write s.quor --position 1 " + arguments);
  }
};

TEST_F(SidecarTest, WriteReportsWhatItTouchesAndClearRemovesIt) {
  EXPECT_EQ(Printed(R"(zelstory write s.quor --position 1 clip.xmp; zelstory has clip.xmp; echo $?
                       zelstory clear clip.xmp >/dev/null; zelstory has clip.xmp; echo $?
                       zelstory clear clip.xmp; ls -A)"),
            "xmpScript:sceneSetting\nxmpDM:shotLocation\nxmpScript:sceneTimeOfDay\n"
            "xmpScript:action\nxmpScript:dialogSequence\n"
            "xmpScript:dialogSequence[1]/xmpScript:character\n"
            "xmpScript:dialogSequence[1]/xmpScript:dialog\n"
            "yes\n0\nno\n1\nunchanged\nclip.xmp\ns.quor\n");
}

// An independent reader finds the scene and all other metadata. The names of blank nodes differ
// each time, so they are left out.
TEST_F(SidecarTest, OtherMetadataSurvives) {
  if (const auto missing = Missing("rapper"); !missing.empty()) GTEST_SKIP() << missing;
  EXPECT_EQ(Printed(R"(
      triples() { sed '1d;$d' $1 >packet
        rapper -q -f scanForRDF -i rdfxml -o ntriples packet http://clip.example/ |
          sed 's/_:[A-Za-z0-9]*/_:/g' | sort; }
      triples $data/foreign.xmp >others; cp $data/foreign.xmp clip.xmp
      zelstory write s.quor --position 1 clip.xmp >touched
      triples clip.xmp >both; sort $data/scene.triples others | diff both -
      zelstory write s.quor --position 1 clip.xmp
      sed '0,/<\/rdf:Description>/s//<b xmlns="urn:b#">2<\/b>&/' clip.xmp >reordered.xmp
      zelstory write s.quor --position 1 reordered.xmp)"),
            "unchanged\nunchanged\n");  // even where other metadata follows the scene's
}

// Whatever the form, all lines stay, and clearing gives the old bytes. What --diff shows is what is
// done.
TEST_F(SidecarTest, ASidecarKeepsItsBytes) {
  const auto wide = [](std::size_t unit, const std::string& ascii) {
    std::string bytes("\xFF\xFE\0\0", unit);
    for (const char c : ascii) bytes.append(1, c).append(unit - 1, '\0');
    return bytes;
  };
  const std::string foreign = Printed("cat $data/foreign.xmp");
  const std::string plain = "<?xml version='1.0'?>\n" + RDF("\n <s:other>1</s:other>\n") + "\n";
  const std::string cases[] = {foreign,
                               Replaced(foreign, {{"\n", "\r\n"}}),
                               Printed("sed '1d;$d' $data/foreign.xmp | tr -s ' '"),
                               kHeader + RDF("") + "<?xpacket end='w'?>",
                               plain,
                               "\uFEFF<?xml\tversion='1.0' encoding = \"us-ascii\" ?>" + RDF(""),
                               wide(2, plain),
                               wide(4, plain)};
  for (const std::string& bytes : cases) {
    SCOPED_TRACE(bytes);
    Write("clip.xmp", bytes);
    const bool isWide = bytes.find('\0') != bytes.npos;
    Write("diff", WriteScene("clip.xmp --dry-run --diff").mOutput);
    EXPECT_EQ(Read("clip.xmp"), bytes);
    EXPECT_EQ(WriteScene().mErrors, "");
    const std::string removed =
        Run("grep '^-' diff | grep -v 'rdf:RDF\\|^--- clip\\|^- *\r*$'").mOutput;
    EXPECT_EQ(removed, "");
    if (Missing("patch").empty() && !isWide) {
      Write("patched.xmp", bytes);
      EXPECT_EQ(Printed("patch -s --binary patched.xmp diff; cmp patched.xmp clip.xmp"), "");
    }
    Tool("clear clip.xmp");
    EXPECT_EQ(Read("clip.xmp"), bytes);
  }
}

TEST_F(SidecarTest, ADryRunPrintsValuesAndTouchesNothing) {
  EXPECT_THAT(Lines(WriteScene("clip.xmp --dry-run").mOutput),
              IsSupersetOf({"xmpScript:sceneSetting: (none) -> \"INT\"",
                            "xmpScript:dialogSequence: (none) -> (1 item)"}));
  EXPECT_EQ(Run("ls -A").mOutput, "s.quor\n");
  const std::string packet =
      RDF("<s:action>X</s:action><s:dialogSequence><rdf:Seq><rdf:li>plain</rdf:li><rdf:li/>"
          "</rdf:Seq></s:dialogSequence>");
  Write("clip.xmp", packet);
  EXPECT_THAT(
      Lines(WriteScene("clip.xmp --dry-run").mOutput),
      IsSupersetOf({"xmpScript:dialogSequence: (2 items) -> (1 item)",
                    "xmpScript:dialogSequence[1]/xmpScript:character: (none) -> \"ANNA\""}));
  EXPECT_EQ(Tool("clear clip.xmp --dry-run").mOutput,
            "xmpScript:action: \"X\" -> (none)\nxmpScript:dialogSequence: (2 items) -> (none)\n");
  EXPECT_EQ(Read("clip.xmp"), packet);
}

TEST_F(SidecarTest, AClipHoldsOnlyTheSceneWrittenLast) {
  const std::string second = "write s.quor --position 2 ";
  Tool(second + "new.xmp");
  const std::string expected = Tool("xmp new.xmp").mOutput;
  for (const std::string option : {" --merge", " --force"}) {
    const bool merges = option == " --merge";
    WriteScene();
    const std::string preview = Tool(second + "clip.xmp --dry-run" + option).mOutput;
    EXPECT_EQ(preview.starts_with("removes the clip's old scene first"), !merges);
    EXPECT_EQ(preview.find("action: \"Rain & wind.\" -> (none)") == std::string::npos, merges);
    EXPECT_EQ(Tool(second + "clip.xmp" + option).mOutput,
              "xmpScript:sceneSetting\nxmpDM:shotLocation\nxmpScript:sceneTimeOfDay\n"
              "xmpScript:action\nxmpScript:dialogSequence[1]/xmpScript:character\n"
              "xmpScript:dialogSequence[1]/xmpScript:dialog\n");
    EXPECT_EQ(Tool("xmp clip.xmp").mOutput == expected, !merges);
  }
  // Of what is cleared, only what was there counts as touched.
  Write("clip.xmp", RDF("<s:action>X</s:action>"));
  EXPECT_EQ(Tool(second + "clip.xmp").mOutput,
            "xmpScript:sceneSetting\nxmpDM:shotLocation\nxmpScript:sceneTimeOfDay\n"
            "xmpScript:action\n");
}

TEST_F(SidecarTest, WhatIsRefusedStaysAsItWas) {
  struct Case {
    std::string mPacket;
    std::string mError;  // a regular expression
    const char* mOptions = "";
  };
  const std::string kReadOnly = kHeader + RDF("") + "<?xpacket end='r'?>";
  const Case cases[] = {
      {"", "1:1: error: [^0-9]"},
      {"not XML", "1:1: error: [^0-9]"},
      {"\n<a/>", "2:1: error: [^0-9]"},
      {"<?xpacket begin='' id='W5M0MpCehiHzreSzNTczkc9d'?><x:xmpmeta", "1:1: error: [^0-9]"},
      {"<!DOCTYPE r>" + RDF(""), "1:[0-9]+: error: [^0-9]"},
      {kReadOnly, " error: the packet is marked read-only"},
      // Clearing first removes a heading of any shape.
      {RDF("<s:sceneSetting><rdf:Bag><rdf:li>INT</rdf:li></rdf:Bag></s:sceneSetting>"),
       " error: Error writing scene heading to XMP\n", "--merge"},
      {RDF("<s:dialogSequence>text</s:dialogSequence>"), " error: .*dialogSequence", "--merge"},
      // Written anew, since what is added would take on the language, each quotation mark becomes
      // six bytes, which makes a tag longer than any reader's limit.
      {Replaced(RDF("<a xmlns='urn:a#' rdf:resource='u:" + std::string(2'000'000, '"') + "'/>"),
                {{"<rdf:RDF", "<rdf:RDF xml:lang='en'"}}),
       " error: the new packet could not be read again: "},
  };
  for (const auto& [packet, error, options] : cases) {
    Write("clip.xmp", packet);
    const Outcome outcome = WriteScene(std::string("clip.xmp ") + options);
    EXPECT_EQ(outcome.mStatus, 1) << error;
    EXPECT_THAT(outcome.mErrors, testing::ContainsRegex("^clip.xmp:" + error));
    EXPECT_TRUE(Read("clip.xmp") == packet) << error;
  }
  Write("clip.xmp", kReadOnly);
  EXPECT_EQ(Tool("clear clip.xmp").mOutput, "unchanged\n");
  EXPECT_EQ(WriteScene("clip.xmp --force").mStatus, 0);
  EXPECT_THAT(Read("clip.xmp"), EndsWith("<?xpacket end='r'?>"));
  Write("clip.xmp", Replaced(RDF(""), {{"<rdf:RDF", "<rdf:RDF xml:lang='en'"}}));
  EXPECT_THAT(WriteScene("clip.xmp --dry-run").mOutput,
              StartsWith("writes the whole packet anew: changed in place, it would be read as "));
}

TEST_F(SidecarTest, AnyPacketIsShownAsATreeAndAsJSON) {
  EXPECT_EQ(Printed("zelstory xmp $data/foreign.xmp | diff $data/foreign.tree -"), "");
  const auto properties =
      nlohmann::json::parse(Tool("xmp $data/foreign.xmp --json").mOutput)["properties"];
  EXPECT_EQ(properties[1]["kind"], "alt");
  EXPECT_EQ(properties[1]["items"][1]["qualifiers"][0]["value"], "fr");
}

TEST_F(SidecarTest, StandardStreamsTakeTheFilesPlace) {
  WriteScene();
  const std::string written = Read("clip.xmp");
  const std::string cleared = Tool("clear -", written).mOutput;
  EXPECT_EQ(Tool("has -", written).mOutput, "yes\n");
  EXPECT_EQ(Tool("has -", cleared).mOutput, "no\n");
  EXPECT_THAT(Tool("clear - --dry-run", written).mOutput, HasSubstr("xmpScript:action: "));
  EXPECT_EQ(Tool("write s.quor --position 1 -", cleared).mOutput, written);
  EXPECT_EQ(Tool("write - --position 1 new.xmp", Read("s.quor")).mStatus, 0);
  EXPECT_EQ(Read("new.xmp"), written);
}

}  // namespace
