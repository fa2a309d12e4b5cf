#include <iostream>

#include <zelcore/xml/Reader.h>
#include <zelstoryparser/zelstoryparser.h>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  zelcore::xml::Reader reader;
  zelstoryparser::StoryParser parser;
  const bool wellFormed = reader.ParseFile(argv[1], parser);
  const auto story = parser.GetStory();
  if (!wellFormed || parser.IsParseError() || !story) return 1;

  const auto body = story->mDocument ? story->mDocument->mBodyStream : nullptr;
  if (!body || !body->mSection || body->mSection->mScenes.empty()) return 1;
  const auto scene = body->mSection->mScenes[0];
  TXMPMeta<std::string> clip;
  std::vector<zelmetadata::Path> changed;
  const auto error = zelstoryparser::WriteSceneMetadataIntoXMP(scene, clip, changed);
  if (!error.empty()) return 1;

  for (const auto& path : changed) std::cout << path.AsString() << '\n';
  std::string packet;
  clip.SerializeToBuffer(&packet);
  std::cout << packet;
}
