#include <gtest/gtest.h>

#include <zelstoryparser/SceneXMP.h>
#include <zelstoryparser/TraverseStory.h>

#include "support/PacketText.h"
#include "support/ScratchFolder.h"
#include "support/StoryBuilder.h"

namespace zelstoryparser {
namespace {

namespace fs = std::filesystem;

// A story whose body holds a scene a word: an action, or nothing ("-"), or no scene ("0").
StoryPtr MakeStory(std::string_view words) {
  StoryPtr story(new TavroStory);
  story->mDocument = new Document;
  story->mDocument->mBodyStream = new Stream;
  story->mDocument->mBodyStream->mSection = MakeSection({});
  table::Split(words, " ", [&](std::string_view word) {
    const ScenePtr scene =
        word == "0" ? nullptr : MakeScene(word == "-" ? "" : "A:" + std::string(word));
    story->mDocument->mBodyStream->mSection->mScenes.push_back(scene);
  });
  return story;
}

class TraverseStoryTest : public ::testing::Test {
 protected:
  std::string Traverse(const StoryPtr& story) {
    UTF16String text = u"before";
    EXPECT_EQ(TraverseStory(story, text), story != nullptr);
    return Utf8(text);
  }

  fs::path FileOf(int scene) const {
    return mFolder.Path() /
           ("mivTestXMPBufferDumpFile_Scene_" + std::to_string(scene) + "_Shot_1.txt");
  }

  // The dump files as "scene:action"; each must be a whole packet, and there must be no others.
  std::string Files() const {
    std::string text;
    std::ptrdiff_t others =
        std::distance(fs::directory_iterator(mFolder.Path()), fs::directory_iterator());
    for (int scene = 1; scene < 9; ++scene) {
      if (!fs::exists(FileOf(scene))) continue;
      --others;
      const std::string bytes = ReadBytes(FileOf(scene));
      EXPECT_TRUE(bytes.starts_with("<?xpacket begin") && bytes.ends_with("?>")) << scene;
      const std::string packet = PacketText(bytes);
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
  story->mDocument->mHeaderStream = story->mDocument->mFooterStream =
      MakeStory("a")->mDocument->mBodyStream;
  EXPECT_EQ(Traverse(story),
            "Story Version: 1.0  Document Version: é 2\nThe quor file had no body?");
  EXPECT_EQ(Files(), "");
  story->mDocument->mCommentStreams.emplace_back(new CommentStream)->mSection =
      MakeSection({MakeScene("A:b")});
  Traverse(story);
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
  const fs::path elsewhere = mFolder.Path() / "elsewhere";
  fs::create_directory(elsewhere);
  std::ofstream(FileOf(1)) << std::string(100'000, 'x');
  fs::create_symlink(mFolder.Write("elsewhere/target", "kept"), FileOf(2));
  fs::create_symlink(elsewhere / "nowhere", FileOf(3));
  fs::create_directory(FileOf(4));
  const StoryPtr story = MakeStory("a b c d");
  Traverse(story);
  EXPECT_EQ(ReadBytes(elsewhere / "target"), "kept");
  EXPECT_EQ(fs::remove_all(elsewhere), 2u);  // nothing was made behind the other link
  EXPECT_EQ(Files(), "1:'a' 2:'b' 3:'c' 4:'d' ");
  std::vector<ShotXMP> shots;
  GetSceneXMP(story, story->mDocument->mBodyStream->mSection->mScenes[0], 1, shots);
  EXPECT_EQ(ReadBytes(FileOf(1)), shots.at(0).mXMPPacket);
}

TEST_F(TraverseStoryTest, AnEntryThatCannotGoEndsTheDump) {
  fs::create_directories(FileOf(2) / "inside");
  const StoryPtr story = MakeStory("a b c");
  UTF16String text;
  EXPECT_THROW(TraverseStory(story, text), fs::filesystem_error);
  EXPECT_EQ(Utf8(text), "Story Version:   Document Version: ");
  EXPECT_EQ(story->mRefCount, 1);
  fs::remove_all(FileOf(2));
  EXPECT_EQ(Files(), "1:'a' ");
}

TEST_F(TraverseStoryTest, FilesThatCannotBeOpenedAreSkipped) {
  const fs::path unwritable = "/proc";  // where not even the superuser can make a file
  if (!fs::is_directory(unwritable)) GTEST_SKIP() << "no such folder on this system";
  SetTemporaryFolder(unwritable);
  EXPECT_EQ(Traverse(MakeStory("a b")), "Story Version:   Document Version: ");
}

}  // namespace
}  // namespace zelstoryparser
