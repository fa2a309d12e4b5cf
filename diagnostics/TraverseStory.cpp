#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include <zelcore/filesupport/Dir.h>
#include <zelcore/filesupport/File.h>
#include <zelstoryparser/SceneXMP.h>
#include <zelstoryparser/TraverseStory.h>

namespace zelstoryparser {
namespace {

using zelcore::filesupport::Dir;
using zelcore::filesupport::File;
using zelcore::utility::AsciiToUTF16;

UTF16String DumpFilePath(std::int32_t sceneNumber, std::int32_t shotNumber) {
  const Dir stem(Dir::TempDir(), AsciiToUTF16("mivTestXMPBufferDumpFile"));
  return stem.FullPath() + AsciiToUTF16("_Scene_" + std::to_string(sceneNumber) + "_Shot_" +
                                        std::to_string(shotNumber) + ".txt");
}

// Removes an existing entry first. In a folder that others can write to, one of them may put a link
// there at once, so the file is opened only if it is a new one.
void WriteDumpFile(const UTF16String& path, const std::string& packet) {
  File file(path);
  if (file.Exists()) file.Delete();
  const zelcore::UTF8String name = zelcore::utility::UTF16to8(path);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(name.c_str(), "wx"),
                                                               std::fclose);
  if (!stream && errno == ENOMEM) throw std::bad_alloc();
  if (stream) std::fwrite(packet.data(), 1, packet.size(), stream.get());
}

void DumpSectionShotXMP(boost::intrusive_ptr<TavroStory> story,
                        boost::intrusive_ptr<Section> section) {
  if (!section) return;
  std::int32_t sceneNumber = 1;
  for (const boost::intrusive_ptr<Scene>& scene : section->mScenes) {
    if (!scene) continue;
    std::vector<ShotXMP> shots;
    GetSceneXMP(story, scene, sceneNumber, shots);
    std::int32_t shotNumber = 1;
    for (const ShotXMP& shot : shots) {
      WriteDumpFile(DumpFilePath(sceneNumber, shotNumber), shot.mXMPPacket);
      ++shotNumber;
    }
    ++sceneNumber;
  }
}

}  // namespace

bool TraverseStory(boost::intrusive_ptr<TavroStory> story, UTF16String& text) {
  if (!story) {
    text = AsciiToUTF16("TavroStory Ptr is NULL");
    return false;
  }
  const boost::intrusive_ptr<Document> document = story->mDocument;
  if (!document) return true;

  text = AsciiToUTF16("Story Version: ") + story->mVersion + AsciiToUTF16("  Document Version: ") +
         document->mVersion;
  if (document->mBodyStream) {
    DumpSectionShotXMP(story, document->mBodyStream->mSection);
  } else {
    text += AsciiToUTF16("\nThe quor file had no body?");
  }
  for (const boost::intrusive_ptr<CommentStream>& comments : document->mCommentStreams) {
    if (comments) DumpSectionShotXMP(story, comments->mSection);
  }
  return true;
}

}  // namespace zelstoryparser
