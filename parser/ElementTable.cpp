#include "parser/ElementTable.h"

#include <array>

namespace zelstoryparser {
namespace {

struct ElementEntry {
  const char* mName;
  StoryElementCode mCode;
};

constexpr std::array<ElementEntry, 10> kElements{{
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

}  // namespace

std::map<UTF16String, std::int32_t> MakeElementMap() {
  std::map<UTF16String, std::int32_t> elements;
  for (const ElementEntry& entry : kElements) {
    elements.emplace(zelcore::utility::AsciiToUTF16(entry.mName), entry.mCode);
  }
  return elements;
}

}  // namespace zelstoryparser
