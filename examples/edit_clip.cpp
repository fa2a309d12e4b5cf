// Writes a scene into a clip's XMP, reads a property, clears the scene, and builds the scene's own
// packet.
#include <iostream>

#include <zelcore/xml/Reader.h>
#include <zelstoryparser/zelstoryparser.h>

namespace {

using namespace zelstoryparser;

boost::intrusive_ptr<Scene> FirstScene(const char* file) {
  zelcore::xml::Reader reader;
  StoryParser parser;
  if (!reader.ParseFile(file, parser) || parser.IsParseError()) return nullptr;
  const auto story = parser.GetStory();
  const auto body = story && story->mDocument ? story->mDocument->mBodyStream : nullptr;
  if (!body || !body->mSection || body->mSection->mScenes.empty()) return nullptr;
  return body->mSection->mScenes[0];
}

int Edit(const boost::intrusive_ptr<Scene>& scene) {
  TXMPMeta<std::string> clip;  // or clip.ParseFromBuffer(bytes, size)
  std::vector<zelmetadata::Path> changed;
  if (!WriteSceneMetadataIntoXMP(scene, clip, changed).empty()) return 1;
  for (const auto& path : changed) std::cout << path.AsString() << '\n';

  std::string location;
  clip.GetProperty(zelmetadata::kDynamicMediaSchemaURI, "shotLocation", &location, nullptr);
  std::cout << "location: " << location << '\n';

  changed.clear();
  if (!ClearSceneMetadataFromXMP(clip, changed).empty()) return 1;
  std::cout << (HasAnyStoryRelatedMetadata(clip) ? "something is left\n" : "nothing is left\n");

  std::vector<ShotXMP> shots;
  GetSceneXMP(nullptr, scene, 1, shots);
  for (const ShotXMP& shot : shots) std::cout << shot.mXMPPacket << '\n';
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  try {
    const auto scene = FirstScene(argv[1]);
    return scene ? Edit(scene) : 1;
  } catch (const XMP_Error& error) {
    std::cerr << error.GetErrMsg() << '\n';
    return 1;
  }
}
