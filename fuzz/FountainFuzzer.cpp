#include "Scripts.h"

// Reads, writes and reads again a script in Fountain.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto& format = *zelstoryhost::FindFormat("fountain");
  fuzzing::TestScript(format, {reinterpret_cast<const char*>(data), size});
  return 0;
}
