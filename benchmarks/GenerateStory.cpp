// Writes a generated story to standard output.
#include <cstdlib>
#include <iostream>

#include "StoryGenerator.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: generate_story BYTES\n";
    return 2;
  }
  std::cout << GenerateStory(std::strtoull(argv[1], nullptr, 10));
  return std::cout.flush() ? 0 : 1;
}
