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

  const auto scene = story->mDocument->mBodyStream->mSection->mScenes.at(0);
  TXMPMeta<std::string> clip;
  std::vector<zelmetadata::Path> changed;
  const auto error = zelstoryparser::WriteSceneMetadataIntoXMP(scene, clip, changed);
  if (!error.empty()) return 1;

  for (const auto& path : changed) std::cout << path.AsString() << '\n';
  std::string packet;
  clip.SerializeToBuffer(&packet);
  std::cout << packet;
}
