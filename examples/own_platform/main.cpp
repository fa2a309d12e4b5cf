// A host with its own platform. It reads a story, writes its first scene into a clip's metadata,
// and prints the metadata and the touched paths.
#include <fstream>
#include <iostream>
#include <iterator>

#include <zelstoryparser/zelstoryparser.h>

#include "TinyReader.h"

int main(int argc, char** argv) {
  std::ifstream file(argc == 2 ? argv[1] : "", std::ios::binary);
  const std::string document{std::istreambuf_iterator<char>(file), {}};
  zelstoryparser::StoryParser parser;
  const bool isGood = ReadDocument(document, parser);
  const auto story = parser.GetStory();
  if (!isGood || parser.IsParseError() || !story) return 1;

  const auto body = story->mDocument ? story->mDocument->mBodyStream : nullptr;
  if (!body || !body->mSection || body->mSection->mScenes.empty()) return 1;
  const auto& scenes = body->mSection->mScenes;
  TXMPMeta<std::string> clip;
  std::vector<zelmetadata::Path> changed;
  // Writes another scene first, whose values the next one replaces.
  for (const auto& scene : {scenes.back(), scenes.front()}) {
    changed.clear();
    const auto error = zelstoryparser::WriteSceneMetadataIntoXMP(scene, clip, changed);
    if (!error.empty()) return 1;
  }

  std::string properties;
  clip.SerializeToBuffer(&properties);
  std::cout << properties;
  for (const auto& path : changed) std::cout << "changed " << path.AsString() << '\n';
  std::vector<zelstoryparser::ShotXMP> shots;
  zelstoryparser::GetSceneXMP(story, scenes.front(), 1, shots);
  for (const auto& shot : shots) {
    std::cout << "shot " << zelcore::utility::UTF16to8(shot.mShotID).c_str() << '\n'
              << shot.mXMPPacket;
  }
  if (!zelstoryparser::ClearSceneMetadataFromXMP(clip, changed).empty()) return 1;
  std::cout << (zelstoryparser::HasAnyStoryRelatedMetadata(clip) ? "not cleared\n" : "cleared\n");
}
