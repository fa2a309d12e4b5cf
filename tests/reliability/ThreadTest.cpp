#include <functional>
#include <thread>

#include <gtest/gtest.h>

#include <zelcore/config/Localizer.h>
#include <zelcore/xml/Reader.h>
#include <zelstoryparser/zelstoryparser.h>

#include "support/PacketText.h"
#include "support/ScratchFolder.h"
#include "support/Story.h"

namespace zelstoryparser {
namespace {

void OnEachOf(int count, const std::function<void(int)>& work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < count; ++i) threads.emplace_back(work, i);
  for (std::thread& thread : threads) thread.join();
}

StoryPtr Read(const std::string& story) {
  zelcore::xml::Reader reader;
  StoryParser parser;
  EXPECT_TRUE(reader.ParseBuffer(story, "story", parser));
  return parser.GetStory();
}

// What the sanitizer for threads judges; without it, at least the results have to be right.
TEST(Threads, ShareOneTreeTheRegistryAndTheLocalizer) {
  const std::string story =
      ReadBytes(std::string(ZELSTORY_EXAMPLES_DIR) + "/stories/harbour_lights.quor");
  StoryPtr shared = Read(story);
  const std::string tree = DumpTree(shared);
  const ScenePtr scene = shared->mDocument->mBodyStream->mSection->mScenes.at(0);
  std::vector<ShotXMP> expected;
  GetSceneXMP(shared, scene, 1, expected);
  OnEachOf(8, [&](int thread) {
    const std::string uri = "http://ns.thread" + std::to_string(thread % 4) + ".example/";
    for (int round = 0; round < 40; ++round) {
      StoryPtr mine = shared;  // copied and released everywhere at once
      const ScenePtr copy(new Scene(*scene));
      std::vector<ShotXMP> shots;
      GetSceneXMP(mine, copy, 1, shots);
      EXPECT_EQ(shots.at(0).mXMPPacket, expected.at(0).mXMPPacket);
      std::string prefix;
      Packet::RegisterNamespace(uri.c_str(), "thread", &prefix);
      Packet packet;
      std::vector<zelmetadata::Path> paths;
      packet.SetProperty(uri.c_str(), (prefix + ":name").c_str(), "value");
      EXPECT_EQ(WriteSceneMetadataIntoXMP(copy, packet, paths), u"");
      EXPECT_TRUE(HasAnyStoryRelatedMetadata(packet));
      const std::string key = "$$$/thread" + std::to_string(thread);
      zelcore::config::Localizer::Get().InstallTranslation(key, u"mine");
      EXPECT_EQ(zelcore::config::Localizer::Get().GetLocalizedString(key + "=text"), u"mine");
      if (round % 10 == 0) {
        EXPECT_EQ(DumpTree(Read(story)), tree);
      }
    }
  });
  EXPECT_EQ(shared->mRefCount, 1);
  EXPECT_EQ(DumpTree(shared), tree);
  zelcore::config::Localizer::Get().RemoveTranslations();
  // The last holder may be on any thread.
  OnEachOf(1, [tree = std::exchange(shared, nullptr)](int) mutable { tree.reset(); });
  EXPECT_EQ(scene->mRefCount, 1);
}

}  // namespace
}  // namespace zelstoryparser
