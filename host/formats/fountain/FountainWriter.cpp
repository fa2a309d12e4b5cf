#include <zelstoryhost/Fountain.h>

namespace zelstoryhost {
WrittenScript WriteFountain(const zelstoryparser::TavroStory&, const std::string& name) {
  throw Error(name, "not yet");
}
}  // namespace zelstoryhost
