// Loads one story from a file, as a separate process whose memory can be measured.
#include <cstring>
#include <iostream>

#include <pugixml.hpp>

#include <zelcore/xml/Reader.h>
#include <zelstoryparser/StoryParser.h>

#include "PugixmlStory.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: load_story ours|pugixml FILE\n";
    return 2;
  }
  if (std::strcmp(argv[1], "ours") == 0) {
    zelcore::xml::Reader reader;
    zelstoryparser::StoryParser parser;
    return reader.ParseFile(argv[2], parser) && parser.GetStory() != nullptr ? 0 : 1;
  }
  pugi::xml_document document;
  return document.load_file(argv[2]) && WalkStory(document) != nullptr ? 0 : 1;
}
