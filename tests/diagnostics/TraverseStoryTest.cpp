#include <gtest/gtest.h>

#include <zelstoryparser/SceneXMP.h>
#include <zelstoryparser/TraverseStory.h>

#include "support/PacketText.h"
#include "support/ScratchFolder.h"
#include "support/Story.h"

#if defined(__linux__)
#include <dlfcn.h>

// Called before a file is opened, as another process might act at that moment.
static void (*theRival)(const char* name) = nullptr;

extern "C" FILE* fopen(const char* name, const char* mode) {
  static const auto open = reinterpret_cast<decltype(&fopen)>(dlsym(RTLD_NEXT, "fopen"));
  if (theRival != nullptr) theRival(name);
  return open(name, mode);
}
#endif

namespace zelstoryparser {
namespace {

namespace fs = std::filesystem;

// A story whose body holds a scene a word: an action, or nothing ("-"), or no scene ("0").
StoryPtr MakeStory(std::string_view words) {
  StoryPtr story(new TavroStory);
  story->mDocument = new Document;
  story->mDocument->mBodyStream = new Stream;
  auto& scenes = (story->mDocument->mBodyStream->mSection = new Section)->mScenes;
  table::Split(words, " ", [&](std::string_view word) {
    scenes.push_back(MakeScene(word == "-" ? "" : "A:" + std::string(word)));
    if (word == "0") scenes.back() = nullptr;
  });
  return story;
}

std::string Traverse(const StoryPtr& story) {
  UTF16String text = u"before";
  EXPECT_EQ(TraverseStory(story, text), story != nullptr);
  return Utf8(text);
}

class TraverseStoryTest : public ::testing::Test {
 protected:
  fs::path FileOf(int scene) const {
    return mFolder.Path() /
           ("mivTestXMPBufferDumpFile_Scene_" + std::to_string(scene) + "_Shot_1.txt");
  }

  // The dump files as "scene:action"; there must be no other files.
  std::string Files() const {
    std::string text;
    auto others = std::distance(fs::directory_iterator(mFolder.Path()), fs::directory_iterator());
    for (int scene = 1; scene < 9; ++scene) {
      if (!fs::exists(FileOf(scene))) continue;
      --others;
      const std::string packet = PacketText(ReadBytes(FileOf(scene)));
      text += std::to_string(scene) + ":" + packet.substr(packet.find("s:action=") + 9) + " ";
    }
    EXPECT_EQ(others, 0);
    return text;
  }

  const ScratchFolder mFolder;
};

TEST_F(TraverseStoryTest, SumsUpTheVersions) {
  EXPECT_EQ(Traverse(nullptr), "TavroStory Ptr is NULL");
  const StoryPtr story(new TavroStory);
  EXPECT_EQ(Traverse(story), "before");
  story->mDocument = new Document;
  EXPECT_EQ(Traverse(story), "Story Version:   Document Version: \nThe quor file had no body?");
  story->mVersion = u"1.0";
  story->mDocument->mVersion = u"\xE9 2";
  story->mDocument->mHeaderStream = MakeStory("a")->mDocument->mBodyStream;
  story->mDocument->mCommentStreams.emplace_back(new CommentStream)->mSection =
      MakeStory("b")->mDocument->mBodyStream->mSection;
  EXPECT_EQ(Traverse(story),
            "Story Version: 1.0  Document Version: é 2\nThe quor file had no body?");
  EXPECT_EQ(Files(), "1:'b' ");
  story->mDocument->mBodyStream = new Stream;
  EXPECT_EQ(Traverse(story), "Story Version: 1.0  Document Version: é 2");
  EXPECT_EQ(story->mRefCount, 1);
}

TEST_F(TraverseStoryTest, NumbersScenesInEachSection) {
  const StoryPtr story = MakeStory("a 0 - b c");
  Traverse(story);
  EXPECT_EQ(Files(), "1:'a' 3:'b' 4:'c' ");
  auto& comments = story->mDocument->mCommentStreams;
  comments = {nullptr, new CommentStream, new CommentStream, new CommentStream};
  comments[2]->mSection = MakeStory("d e")->mDocument->mBodyStream->mSection;
  comments[3]->mSection = MakeStory("0 f")->mDocument->mBodyStream->mSection;
  Traverse(story);
  EXPECT_EQ(Files(), "1:'f' 2:'e' 3:'b' 4:'c' ");
}

TEST_F(TraverseStoryTest, ReplacesWhatLiesThere) {
  std::ofstream(FileOf(1)) << std::string(100'000, 'x');
  const fs::path target = mFolder.Write("target", "kept");
  fs::create_symlink(target, FileOf(2));
  fs::create_symlink(mFolder.Path() / "nowhere", FileOf(3));
  fs::create_directory(FileOf(4));
  const StoryPtr story = MakeStory("a b c d");
  Traverse(story);
  EXPECT_EQ(ReadBytes(target), "kept");
  fs::remove(target);
  EXPECT_EQ(Files(), "1:'a' 2:'b' 3:'c' 4:'d' ");  // and the dangling link led to no new file
  std::vector<ShotXMP> shots;
  GetSceneXMP(story, MakeScene("A:a"), 1, shots);
  EXPECT_EQ(ReadBytes(FileOf(1)), shots.at(0).mXMPPacket);
  // What cannot be removed ends the dump.
  fs::remove(FileOf(2));
  fs::create_directories(FileOf(2) / "inside");
  UTF16String text;
  EXPECT_THROW(TraverseStory(MakeStory("e f g"), text), fs::filesystem_error);
  EXPECT_EQ(Utf8(text), "Story Version:   Document Version: ");
  fs::remove_all(FileOf(2));
  EXPECT_EQ(Files(), "1:'e' 3:'c' 4:'d' ");
}

#if defined(__linux__)
TEST_F(TraverseStoryTest, NeverWritesThroughALinkThatAnotherProcessPutsThere) {
  theRival = [](const char* name) { fs::create_symlink("target", name); };
  const fs::path target = mFolder.Write("target", "kept");
  Traverse(MakeStory("a"));
  theRival = nullptr;
  EXPECT_EQ(ReadBytes(target), "kept");
}
#endif

}  // namespace
}  // namespace zelstoryparser
