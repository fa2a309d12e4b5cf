#include <zelstoryhost/FDX.h>

namespace zelstoryhost {
StoryResult ReadFDX(std::string_view, const std::string& source) {
  return {nullptr, Error(source, "not yet")};
}
}  // namespace zelstoryhost
