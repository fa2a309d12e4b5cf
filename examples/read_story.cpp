// Reads a story, reports its first fault, and prints how often each character speaks.
#include <iostream>
#include <map>

#include <zelcore/xml/Reader.h>
#include <zelstoryparser/zelstoryparser.h>

namespace {

using namespace zelstoryparser;

std::string UTF8(const UTF16String& text) {
  const auto bytes = zelcore::utility::UTF16to8(text);
  return {bytes.data(), bytes.size()};
}

boost::intrusive_ptr<TavroStory> Read(const char* file) {
  zelcore::xml::Reader reader;
  StoryParser parser;
  if (!reader.ParseFile(file, parser)) {  // cannot be read, or is not well-formed
    const auto& [source, position, reason] = reader.Error();
    std::cerr << source << ':' << position.mLine << ':' << position.mColumn << ": " << reason
              << '\n';
    return nullptr;
  }
  if (parser.IsParseError()) {  // the XML is not a story
    std::cerr << file << ": " << UTF8(parser.GetErrorString()) << '\n';
    return nullptr;
  }
  if (!parser.GetStory()) std::cerr << file << ": no element is a story\n";
  return parser.GetStory();
}

}  // namespace

int main(int argc, char** argv) {
  const auto story = argc == 2 ? Read(argv[1]) : nullptr;
  if (!story) return 1;
  const bool hasScenes =
      story->mDocument && story->mDocument->mBodyStream && story->mDocument->mBodyStream->mSection;
  if (!hasScenes) return 0;
  std::map<UTF16String, int> cues;
  for (const auto& scene : story->mDocument->mBodyStream->mSection->mScenes) {
    for (const auto& paragraph : scene->mParagraphs) {
      if (paragraph->mElementType != kCharacter) continue;
      UTF16String name;
      for (const auto& run : paragraph->mTextRuns) name += run->mText;
      ++cues[name];
    }
  }
  for (const auto& [name, count] : cues) std::cout << UTF8(name) << ": " << count << '\n';
}
