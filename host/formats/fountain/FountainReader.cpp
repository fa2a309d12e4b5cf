#include <zelstoryhost/Fountain.h>

namespace zelstoryhost {
StoryResult ReadFountain(std::string_view, const std::string& source) {
  return {nullptr, Error(source, "not yet")};
}
}  // namespace zelstoryhost
