#include <atomic>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>

#include <gtest/gtest.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlmemory.h>

#include <zelcore/SmallBlocks.h>
#include <zelcore/xml/Reader.h>
#include <zelstoryparser/zelstoryparser.h>

#include "support/PacketText.h"
#include "support/ScratchFolder.h"
#include "support/Story.h"

std::atomic<long> gLiveAllocations{0};
thread_local long gCountdown = -1;  // allocations of this thread before the one that fails

// The program's own operator new counts what is alive and fails on demand.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  if (gCountdown >= 0 && gCountdown-- == 0) return nullptr;
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory != nullptr) ++gLiveAllocations;
  return memory;
}
void* operator new(std::size_t size) {
  void* memory = operator new(size, std::nothrow);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept {
  if (memory != nullptr) --gLiveAllocations;
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  operator delete(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  operator delete(memory);
}

// The program's own definitions come before the platform's, so that blocks are counted, too.
void* zelcore::AllocateBlock(std::size_t bytes) {
  return ::operator new(bytes);
}
void zelcore::FreeBlock(void* block) noexcept {
  ::operator delete(block);
}

namespace zelstoryparser {
namespace {

using namespace std::string_view_literals;

// What the XML library allocates counts down, too, where a test asks for it: its table of names
// drops names silently, which no reader can notice where only the name's text matters.
bool gXMLLibraryFails = false;

void* Allocate(std::size_t size) {
  if (gXMLLibraryFails) return operator new(size, std::nothrow);
  ++gLiveAllocations;
  return std::malloc(size);
}
void* Reallocate(void* old, std::size_t size) {
  if (gXMLLibraryFails && gCountdown >= 0 && gCountdown-- == 0) return nullptr;
  if (old == nullptr) ++gLiveAllocations;
  return std::realloc(old, size);
}
char* Duplicate(const char* text) {
  char* copy = static_cast<char*>(Allocate(std::strlen(text) + 1));
  return copy == nullptr ? nullptr : std::strcpy(copy, text);
}
const bool kIsSetUp =
    xmlMemSetup([](void* block) { operator delete(block); }, Allocate, Reallocate, Duplicate) == 0;

// Runs `attempt` with its first allocation failing, then its second, until none of them does, and
// `check(failed)` after each. A failure must leave the attempt as std::bad_alloc.
template <typename Attempt, typename Check>
void FailEachAllocation(Attempt attempt, Check check) {
  bool hasFailed = true;
  for (long nth = 0; hasFailed; ++nth) {
    bool hasThrown = false;
    gCountdown = nth;
    try {
      attempt();
    } catch (const std::bad_alloc&) {
      hasThrown = true;
    }
    hasFailed = gCountdown < 0;
    gCountdown = -1;
    ASSERT_EQ(hasThrown, hasFailed) << "allocation " << nth;
    ASSERT_TRUE(hasFailed || nth > 0) << "nothing was allocated";
    check(hasFailed);
    ASSERT_FALSE(::testing::Test::HasFailure()) << "allocation " << nth;
  }
}

class Allocations : public ::testing::Test {  // must give back all that they took
 protected:
  static void SetUpTestSuite() {  // what the libraries keep for good
    Packet packet = MakePacket("A:x");
    PacketText(packet);
    HasAnyStoryRelatedMetadata(packet);
    StoryParser parser;
    ASSERT_TRUE(kIsSetUp && zelcore::xml::Reader().ParseBuffer("<TavroStory/>", "", parser));
    RegisterWithoutMemory();
  }
  // A registration that fails leaves the prefix free.
  static void RegisterWithoutMemory() {
    std::string prefix;
    for (long nth = 0; prefix.empty(); ++nth) {
      gCountdown = nth;
      try {
        TXMPMeta<std::string>::RegisterNamespace("http://example.org/memory", "memory", &prefix);
      } catch (const std::bad_alloc&) {
      }
      gCountdown = -1;
    }
    ASSERT_EQ(prefix, "memory");
  }
  void TearDown() override {
    gXMLLibraryFails = false;
    xmlResetLastError();
    // A recorded failure holds memory, too.
    EXPECT_TRUE(HasFailure() || gLiveAllocations == mBefore) << gLiveAllocations - mBefore;
  }
  const long mBefore = gLiveAllocations;
};

std::string Example() {
  return ReadBytes(std::string(ZELSTORY_EXAMPLES_DIR) + "/stories/harbour_lights.quor");
}

TEST_F(Allocations, AStoryIsReadOrLeavesNothing) {
  std::string story = "<?xml version='1.0'?><!DOCTYPE TavroStory [<!ENTITY e 'é&#13;&amp;'>]>" +
                      Example().substr(Example().find("<TavroStory"));
  story.insert(story.find("</textRun>"), "&e;");
  gXMLLibraryFails = true;
  StoryParser parser;
  zelcore::xml::Reader reader;
  ASSERT_TRUE(reader.ParseBuffer(story, "story", parser)) << reader.Error().mReason;
  const std::string tree = DumpTree(parser.GetStory());
  FailEachAllocation(
      [&] {
        ASSERT_TRUE(reader.ParseBuffer(story, "story", parser)) << reader.Error().mReason;
        if (gCountdown < 0) {  // the XML library could do without
          ASSERT_EQ(DumpTree(parser.GetStory()), tree);
          throw std::bad_alloc();
        }
        StoryParser copy(parser);
        copy = StoryParser(parser);
      },
      [&](bool) {
        ASSERT_TRUE(reader.ParseBuffer(story, "story", parser));
        EXPECT_EQ(DumpTree(parser.GetStory()), tree);
      });
}

// One object and one list through each operation; whatever fails, they can be used again.
TEST_F(Allocations, OperationsPassTheFailureOnAndLeaveNothing) {
  struct Operation {
    const char* mName;
    std::function<void(Packet&, Paths&)> mRun;
  };
  const ScenePtr scene = MakeScene(
      "H#a long identifier of a paragraph:INT. A HOUSE OF SOME SIZE - LATE AT NIGHT / A:R / C:C / "
      "D:A speech that is no short string.",
      "", "1:2:3");
  StoryPtr story(new TavroStory);
  story->mDocument = new Document;
  story->mDocument->mBodyStream = new Stream;
  (story->mDocument->mBodyStream->mSection = new Section)->mScenes = {scene};
  const ScratchFolder folder;
  const Packet before = MakePacket("A:a speech of some length; B:y" + Repeated("; s:p#=x", 15));
  std::string bytes;
  before.SerializeToBuffer(&bytes);
  const auto size = static_cast<XMP_StringLen>(bytes.size());
  std::vector<ShotXMP> shots;
  UTF16String text;
  const std::vector<Operation> operations = {
      {"set", [&](Packet& p, Paths&) { p.SetProperty(kScript, "the17th", "gets an index"); }},
      {"write", [&](Packet& p, Paths& l) { (void)WriteSceneMetadataIntoXMP(scene, p, l); }},
      {"clear", [&](Packet& p, Paths& l) { (void)ClearSceneMetadataFromXMP(p, l); }},
      {"has", [&](Packet& p, Paths&) { HasAnyStoryRelatedMetadata(p); }},
      {"shot", [&](Packet&, Paths&) { GetSceneXMP(story, scene, 1, shots); }},
      {"dump", [&](Packet&, Paths&) { TraverseStory(story, text); }},
      {"rules",
       [](Packet&, Paths&) {
         HeadingRulesFault fault;
         const auto rules = ReadHeadingRules("setting: INT\ntime: DAY\nlanguage: Own", fault);
         ParseHeading(u"INT. HOUSE (A) - KITCHEN - DAY (FLASHBACK)", rules.value());
       }},
      {"parse", [&](Packet& p, Paths&) { p.ParseFromBuffer(bytes.data(), size); }},
      {"copy", [&](Packet& p, Paths&) { p = Packet(p); }},
      {"serialise", [&](Packet& p, Paths&) { p.SerializeToBuffer(&bytes, kXMP_EncodeUTF16Big); }},
  };
  for (const Operation& operation : operations) {
    Packet packet = before;
    Paths paths(1);
    shots.clear();
    FailEachAllocation(
        [&] { operation.mRun(packet, paths); },
        [&](bool failed) {
          EXPECT_EQ(shots.size(), !failed && operation.mName == "shot"sv ? 1u : 0u);
          EXPECT_GE(paths.size(), 1u);  // what the list held before stays first
          EXPECT_EQ(paths[0].AsString(), zelmetadata::Path().AsString());
          if (operation.mName == "parse"sv || (failed && operation.mName == "set"sv)) {
            EXPECT_EQ(PacketText(packet), PacketText(before));
          }
          packet = before;
          paths.resize(1);
        });
    ASSERT_FALSE(HasFailure()) << operation.mName;
  }
}

}  // namespace
}  // namespace zelstoryparser
