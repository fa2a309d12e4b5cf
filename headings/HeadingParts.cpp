#include "headings/HeadingParts.h"

namespace zelstoryparser {

void AppendPart(const HeadingPart& part, std::vector<HeadingPart>& parts) {
  const std::size_t end = parts.empty() ? 0 : parts.back().mBegin + parts.back().mLength;
  if (part.mBegin > end) {
    parts.push_back({HeadingPartKind::kSeparator, end, part.mBegin - end, false});
  }
  if (part.mLength > 0) parts.push_back(part);
}

}  // namespace zelstoryparser
