#pragma once

#include <array>
#include <cstdint>

namespace zelstoryparser {

// The kinds of elements.
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

// The name of an element, which is case-sensitive, and its code. Any other name is kElementUnknown.
struct ElementEntry {
  const char* mName;  // ASCII
  StoryElementCode mCode;
};

inline constexpr std::array<ElementEntry, 10> kElements{{
    {"TavroStory", kElementStory},
    {"document", kElementDocument},
    {"stream", kElementStream},
    {"section", kElementSection},
    {"scene", kElementScene},
    {"paragraph", kElementParagraph},
    {"textRun", kElementTextRun},
    {"commentStream", kElementCommentStream},
    {"metaData", kElementMetaData},
    {"Tag", kElementTag},
}};

}  // namespace zelstoryparser
