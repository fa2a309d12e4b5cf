// A sidecar belongs to its user: what is not ours comes out as it went in, and a file is the old
// one or the new one, whole, whatever happens.
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <random>
#include <set>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>
#include <unistd.h>

#include "zelstory/Scratch.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::StartsWith;

constexpr const char* kHeader = "<?xpacket begin='\uFEFF' id='W5M0MpCehiHzreSzNTczkc9d'?>";

std::string Packet(const std::string& properties, const std::string& trailer = "w") {
  return std::string(kHeader) +
         "\n<x:xmpmeta xmlns:x='adobe:ns:meta/' x:xmptk='other 1.0'><!-- kept -->"
         "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description"
         " rdf:about='' xmlns:e='http://ns.else.example/' "
         "xmlns:dc='http://purl.org/dc/elements/1.1/'"
         " xmlns:xmp='http://ns.adobe.com/xap/1.0/' xmp:Rating='4'>" +
         properties + "</rdf:Description></rdf:RDF></x:xmpmeta>" + std::string(4000, ' ') +
         "<?xpacket end='" + trailer + "'?>";
}

// Metadata of others, in the forms that other programs write.
const std::vector<std::string>& ForeignProperties() {
  static const std::vector<std::string> properties = {
      "",
      "<dc:title><rdf:Alt><rdf:li xml:lang='x-default'>A</rdf:li><rdf:li xml:lang='fr'>B</rdf:li>"
      "</rdf:Alt></dc:title><dc:subject><rdf:Bag><rdf:li>one</rdf:li><rdf:li/></rdf:Bag></"
      "dc:subject>",
      "<e:crop rdf:parseType='Resource'><e:x>1</e:x><e:deep rdf:parseType='Resource'><e:y>2</e:y>"
      "</e:deep></e:crop><e:link rdf:resource='http://else.example/?a=1&amp;b=2'/>",
      "<e:history><rdf:Seq><rdf:li rdf:parseType='Resource'><e:when>2020</e:when></rdf:li><rdf:li"
      " rdf:parseType='Resource'><e:when>2021</e:when></rdf:li></rdf:Seq></e:history><!-- end -->",
      "<e:rated rdf:parseType='Resource'><rdf:value>5</rdf:value><e:by>me</e:by></e:rated>"
      "<e:text> white \t space &#xD; &lt;kept&gt; ]]&gt; \U0001D11E</e:text>",
  };
  return properties;
}

class SidecarFidelityTest : public Scratch {
 protected:
  static std::string Story() { return Example("harbour_lights.quor"); }
  Outcome WriteScene(const std::string& sidecar, const std::vector<std::string>& options = {}) {
    std::vector<std::string> arguments{"write", Story(), "--scene", "2", sidecar};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return Tool(arguments);
  }
  // A packet's triples without the names of its blank nodes, which each reading gives anew.
  std::multiset<std::string> TripleSet(const std::string& packet) {
    std::multiset<std::string> triples;
    for (const std::string& line : Lines(Triples(packet).mOutput)) {
      std::string triple;
      for (std::size_t i = 0; i < line.size(); ++i) {
        triple += line[i];
        if (line.compare(i, 2, "_:") == 0) i = std::min(line.find(' ', i), line.size()) - 1;
      }
      triples.insert(triple);
    }
    return triples;
  }
};

TEST_F(SidecarFidelityTest, OthersDataSurvives) {
  if (!IsInstalled("rapper")) GTEST_SKIP() << "rapper is not installed";
  for (const std::string& properties : ForeignProperties()) {
    SCOPED_TRACE(properties);
    const std::string around = "bytes \x01 in front\n", behind = "\nbytes behind";
    Write("before.xmp", Packet(properties));
    Write("clip.xmp", around + Packet(properties) + behind);
    ASSERT_EQ(WriteScene("clip.xmp").mErrors, "");
    const auto packetOf = [&](const std::string& bytes) {
      EXPECT_THAT(bytes, testing::AllOf(StartsWith(around), EndsWith(behind)));
      return bytes.substr(around.size(), bytes.size() - around.size() - behind.size());
    };
    Write("written.xmp", packetOf(Read("clip.xmp")));
    const auto before = TripleSet("before.xmp");
    std::multiset<std::string> others;  // of what was written, less what is ours
    for (const std::string& triple : TripleSet("written.xmp")) {
      if (triple.find("ns.zelhost.example") == std::string::npos &&
          triple.find("shotLocation") == std::string::npos) {
        others.insert(triple);
      }
    }
    // Our sequence has three items, and the type that makes it one.
    EXPECT_THAT(others, IsSupersetOf(before));
    EXPECT_EQ(others.size(), before.size() + 4);
    Tool({"clear", "clip.xmp"});
    Write("cleared.xmp", packetOf(Read("clip.xmp")));
    EXPECT_EQ(TripleSet("cleared.xmp"), before);
    EXPECT_THAT(Read("cleared.xmp"),
                testing::AllOf(HasSubstr("<!-- kept -->"), HasSubstr("other 1.0")));
  }
}

TEST_F(SidecarFidelityTest, AFileKeepsItsLengthWhileThePaddingLasts) {
  Write("clip.xmp", Packet(""));
  const std::size_t length = Read("clip.xmp").size();
  WriteScene("clip.xmp");
  EXPECT_EQ(Read("clip.xmp").size(), length);
  Write("full.xmp", std::string(kHeader) +
                        "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-"
                        "ns#'/><?xpacket end='w'?>");
  WriteScene("full.xmp");
  EXPECT_THAT(Read("full.xmp"), HasSubstr(std::string(90, ' ')));
}

// Nor line ends, however often it is changed; a declaration of ASCII becomes true.
TEST_F(SidecarFidelityTest, APacketWithoutWrapperGetsNone) {
  const auto inUTF16 = [](const std::string& ascii) {
    std::string wide = "\xFF\xFE";
    for (const char c : ascii) (wide += c) += '\0';
    return wide;
  };
  const std::string plain = "<?xml version='1.0'?>\n",
                    declared = "\uFEFF<?xml\tversion='1.0' encoding = \"";
  const std::string empty = "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'/>";
  const std::pair<std::string, std::string> cases[] = {
      {plain + empty, plain},
      {declared + "us-ascii\" ?>" + empty + "\n", declared + "UTF-8\"    ?>"},
      {inUTF16(plain + empty + "\n"), inUTF16(plain)}};
  for (const auto& [bytes, front] : cases) {
    SCOPED_TRACE(front);
    Write("clip.xmp", bytes);
    EXPECT_EQ(WriteScene("clip.xmp").mErrors, "");
    const std::string written = Read("clip.xmp");
    EXPECT_THAT(written, testing::AllOf(StartsWith(front), testing::Not(HasSubstr("xpacket"))));
    EXPECT_EQ(Tool({"clear", "clip.xmp"}).mStatus, 0);
    WriteScene("clip.xmp");
    EXPECT_EQ(Read("clip.xmp"), written);
    EXPECT_EQ(Tool({"has", "clip.xmp"}).mOutput, "yes\n");
  }
}

TEST_F(SidecarFidelityTest, AReadOnlyPacketIsChangedByForceAlone) {
  const std::string packet = Packet("", "r");
  Write("clip.xmp", packet);
  EXPECT_THAT(WriteScene("clip.xmp").mErrors,
              HasSubstr("clip.xmp: error: the packet is marked read-only"));
  EXPECT_EQ(Read("clip.xmp"), packet);
  EXPECT_EQ(Tool({"clear", "clip.xmp"}).mOutput, "unchanged\n");
  EXPECT_EQ(WriteScene("clip.xmp", {"--force"}).mStatus, 0);
  EXPECT_THAT(Read("clip.xmp"), EndsWith("<?xpacket end=\"r\"?>"));
}

TEST_F(SidecarFidelityTest, ADryRunTellsValuesAndTouchesNothing) {
  const std::vector<std::string> lines = Lines(WriteScene("clip.xmp", {"--dry-run"}).mOutput);
  EXPECT_THAT(FilesHere(), testing::IsEmpty());
  EXPECT_THAT(lines, IsSupersetOf({"xmpScript:sceneSetting: (none) -> \"INT\"",
                                   "xmpScript:dialogSequence: (none) -> (3 items)"}));
  WriteScene("clip.xmp");
  const std::string bytes = Read("clip.xmp");
  EXPECT_EQ(WriteScene("clip.xmp", {"--dry-run"}).mOutput, "unchanged\n");
  EXPECT_THAT(Lines(Tool({"clear", "clip.xmp", "--dry-run"}).mOutput),
              testing::Contains("xmpScript:sceneTimeOfDay: \"CONTINUOUS\" -> (none)"));
  EXPECT_EQ(Read("clip.xmp"), bytes);
}

TEST_F(SidecarFidelityTest, ADryRunShowsWhatReplacesMetadataOfAnotherShape) {
  Write("clip.xmp",
        Packet("<s:dialogSequence xmlns:s='http://ns.zelhost.example/metadata/script/1.0/'>"
               "<rdf:Seq><rdf:li>plain</rdf:li></rdf:Seq></s:dialogSequence>"));
  EXPECT_THAT(
      Lines(WriteScene("clip.xmp", {"--dry-run"}).mOutput),
      IsSupersetOf({"xmpScript:dialogSequence: (1 item) -> (3 items)",
                    "xmpScript:dialogSequence[1]/xmpScript:character: (none) -> \"INÈS\""}));
  EXPECT_EQ(Tool({"clear", "clip.xmp", "--dry-run"}).mOutput,
            "xmpScript:dialogSequence: (1 item) -> (none)\n");
}

TEST_F(SidecarFidelityTest, AClipsNameFindsItsSidecar) {
  struct Case {
    std::vector<std::string> mFiles;
    std::vector<std::string> mOptions;
    std::string mResult;  // the sidecar that is written, or the error
  };
  const std::vector<Case> cases = {
      {{"c.mov"}, {}, "c.mov.xmp"},
      {{"c.mov"}, {"--sidecar-name", "stem"}, "c.xmp"},
      {{"c.mov", "c.xmp"}, {}, "c.xmp"},
      {{"c.mov", "c.mov.xmp"}, {"--sidecar-name", "stem"}, "c.mov.xmp"},
      {{"c.mov", "c.mov.xmp", "c.xmp"}, {}, "c.mov: error: has two sidecars"},
      {{"c.mov", "c.wav", "c.xmp"}, {}, "c.mov: error: would share the sidecar c.xmp with c.wav"},
      {{"c.mov", "c.wav"}, {}, "c.mov.xmp"},
      {{"c.mov", "c.txt"}, {"--sidecar-name", "stem"}, "c.xmp"},
      {{}, {}, "c.mov: error: No such clip"},
  };
  for (const Case& named : cases) {
    for (const std::string& file : FilesHere()) fs::remove(File(file));
    for (const std::string& file : named.mFiles) {
      Write(file, file.find(".xmp") == std::string::npos ? "" : Packet(""));
    }
    SCOPED_TRACE(testing::PrintToString(named.mFiles));
    const Outcome outcome = WriteScene("c.mov", named.mOptions);
    if (outcome.mStatus == 0) {
      EXPECT_EQ(Tool({"has", named.mResult}).mOutput, "yes\n");
      EXPECT_EQ(Tool({"has", "c.mov"}).mOutput, "yes\n");
    } else {
      EXPECT_THAT(outcome.mErrors, StartsWith(named.mResult));
    }
  }
}

TEST_F(SidecarFidelityTest, AnyPacketIsShownAsATreeAndAsJSON) {
  Write("clip.xmp", Packet(ForeignProperties()[1] + ForeignProperties()[4]));
  EXPECT_THAT(Lines(Tool({"xmp", "clip.xmp"}).mOutput),
              IsSupersetOf({"xmp:Rating = \"4\"", "dc:title (alt)", "  [2] = \"B\"",
                            "    ?xml:lang = \"fr\"", "dc:subject (bag)", "  ?e:by = \"me\""}));
  const auto json = nlohmann::json::parse(Tool({"xmp", "clip.xmp", "--json"}).mOutput);
  EXPECT_EQ(json["properties"][1]["kind"], "alt");
  EXPECT_EQ(json["properties"][1]["items"][1]["qualifiers"][0]["value"], "fr");
}

TEST_F(SidecarFidelityTest, ExifToolReadsOurValues) {
  if (!IsInstalled("exiftool")) GTEST_SKIP() << "exiftool is not installed";
  WriteScene("clip.xmp");
  const auto read =
      nlohmann::json::parse(Process("exiftool", {"-j", "-struct", "clip.xmp"}).mOutput)[0];
  EXPECT_EQ(read["SceneSetting"], "INT");
  EXPECT_EQ(read["ShotLocation"], "CAFÉ BELL & ANCHOR");
  EXPECT_EQ(read["DialogSequence"].size(), 3u);
  EXPECT_EQ(read["DialogSequence"][0]["Character"], "INÈS");
}

TEST_F(SidecarFidelityTest, AFailedWriteLeavesTheOldFileAndNothingElse) {
  WriteScene("clip.xmp");
  const std::string bytes = Read("clip.xmp");
  const Outcome outcome =
      Process("sh", {"-c", "ulimit -f 2; exec \"$0\" \"$@\"", ZELSTORY_TOOL, "clear", "clip.xmp"});
  EXPECT_EQ(outcome.mStatus, 1);
  EXPECT_THAT(outcome.mErrors, StartsWith("clip.xmp: error: cannot be written: "));
  EXPECT_EQ(Read("clip.xmp"), bytes);
  const Outcome shots = Process("sh", {"-c", "ulimit -f 1; exec \"$0\" \"$@\"", ZELSTORY_TOOL,
                                       "shots", Example("harbour_lights.quor"), "--out", "new"});
  EXPECT_THAT(shots.mErrors, StartsWith("new/scene_0001.xmp: error: cannot be written: "));
  EXPECT_THAT(FilesHere(), ElementsAre("clip.xmp"));
}

// Each quotation mark becomes six bytes, which makes a tag longer than any reader's limit.
TEST_F(SidecarFidelityTest, WhatCouldNotBeReadAgainIsNotWritten) {
  const std::string bytes =
      "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description "
      "rdf:about=''><q:a xmlns:q='urn:q#' rdf:resource='u:" +
      std::string(2'000'000, '"') + "'/></rdf:Description></rdf:RDF>";
  Write("clip.xmp", bytes);
  EXPECT_THAT(WriteScene("clip.xmp").mErrors,
              StartsWith("clip.xmp: error: the new packet could not be read again: "));
  EXPECT_EQ(Read("clip.xmp"), bytes);
}

// Starts the tool without waiting for it.
pid_t Start(const std::vector<std::string>& arguments) {
  const pid_t process = fork();
  if (process != 0) return process;
  std::vector<char*> words;
  for (const std::string& argument : arguments)
    words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  if (std::freopen("/dev/null", "w", stdout) == nullptr) _exit(1);
  execv(ZELSTORY_TOOL, words.data());
  _exit(127);
}

TEST_F(SidecarFidelityTest, AKilledWriterLeavesTheOldOrTheNewFile) {
  WriteScene("a.xmp");
  const std::string written = Read("a.xmp");
  Tool({"clear", "a.xmp"});
  const std::string cleared = Read("a.xmp");
  Write("clip.xmp", cleared);
  std::mt19937 random(7);
  for (int i = 0; i < 1000; ++i) {
    const bool writing = i % 2 == 0;
    const std::vector<std::string> write{"zelstory", "write", Story(),
                                         "--scene",  "2",     File("clip.xmp")};
    const pid_t tool =
        Start(writing ? write : std::vector<std::string>{"zelstory", "clear", File("clip.xmp")});
    usleep(static_cast<useconds_t>(random() % 8000));
    kill(tool, i % 3 == 0 ? SIGTERM : SIGKILL);
    waitpid(tool, nullptr, 0);
    const std::string now = Read("clip.xmp");
    ASSERT_TRUE(now == written || now == cleared) << "after kill " << i;
  }
}

TEST_F(SidecarFidelityTest, TwoWritersAtOnceBothSucceed) {
  Write("clip.xmp", Packet(""));
  std::vector<pid_t> tools;
  for (int i = 0; i < 16; ++i) {
    tools.push_back(Start(
        {"zelstory", "write", Story(), "--scene", std::to_string(1 + i % 4), File("clip.xmp")}));
  }
  for (const pid_t tool : tools) {
    int status = 0;
    waitpid(tool, &status, 0);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(Tool({"has", "clip.xmp"}).mOutput, "yes\n");
  EXPECT_THAT(FilesHere(), ElementsAre("clip.xmp"));
}

}  // namespace
