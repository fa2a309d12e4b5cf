// Several threads read one tree. Each holds a reference; the last to drop it frees the tree.
#include <iostream>
#include <thread>

#include <zelcore/xml/Reader.h>
#include <zelstoryparser/zelstoryparser.h>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  zelcore::xml::Reader reader;
  zelstoryparser::StoryParser parser;
  if (!reader.ParseFile(argv[1], parser) || parser.IsParseError()) return 1;
  auto story = parser.GetStory();
  const bool hasScenes = story && story->mDocument && story->mDocument->mBodyStream &&
                         story->mDocument->mBodyStream->mSection;
  if (!hasScenes) return 1;

  std::size_t counts[4] = {};
  std::vector<std::thread> threads;
  for (std::size_t& count : counts) {
    threads.emplace_back([story, &count] {  // the copy is this thread's reference
      for (const auto& scene : story->mDocument->mBodyStream->mSection->mScenes) {
        count += scene->mParagraphs.size();
      }
    });
  }
  story.reset();  // the threads keep the tree alive
  for (std::thread& thread : threads) thread.join();
  for (const std::size_t count : counts) std::cout << count << " paragraphs\n";
}
