#include "Scripts.h"

// Reads, writes and reads again a script in FDX.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto& format = *zelstoryhost::FindFormat("fdx");
  fuzzing::TestScript(format, {reinterpret_cast<const char*>(data), size});
  return 0;
}
