#include <zelstoryhost/FDX.h>

namespace zelstoryhost {
WrittenScript WriteFDX(const zelstoryparser::TavroStory&, const std::string& name) {
  throw Error(name, "not yet");
}
}  // namespace zelstoryhost
