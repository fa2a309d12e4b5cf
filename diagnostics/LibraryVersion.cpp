#include <zelstoryparser/Version.h>

namespace zelstoryparser {

const char* LibraryVersion() noexcept {
  return ZELSTORYPARSER_VERSION;
}

}  // namespace zelstoryparser
