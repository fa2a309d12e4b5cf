#pragma once

#include <cstdint>
#include <map>

#include <zelcore/String.h>

namespace zelstoryparser {

using zelcore::UTF16String;

// What a tag means to the parser.
enum StoryElementCode : std::int32_t {
  kElementStory = 100,
  kElementDocument = 101,
  kElementStream = 102,
  kElementSection = 103,
  kElementScene = 104,
  kElementParagraph = 105,
  kElementTextRun = 106,
  kElementCommentStream = 107,
  kElementMetaData = 108,
  kElementTag = 109,
  kElementUnknown = 110,
};

// Element names, exact in case, with their codes; any other name is kElementUnknown.
std::map<UTF16String, std::int32_t> MakeElementMap();

}  // namespace zelstoryparser
