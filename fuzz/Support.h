#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string_view>

#include <zelcore/String.h>

// What the fuzz targets share.
namespace fuzzing {

using Text = zelcore::UTF16String;

// Takes an input apart from its front; an exhausted one gives zeros and empty texts.
class Input {
 public:
  Input(const std::uint8_t* bytes, std::size_t size)
      : mRest(reinterpret_cast<const char*>(bytes), size) {}

  bool IsEmpty() const { return mRest.empty(); }
  unsigned Byte() {
    const std::string_view byte = Bytes(1);
    return byte.empty() ? 0 : static_cast<unsigned char>(byte[0]);
  }
  unsigned Pick(unsigned below) { return Byte() % below; }
  template <typename Table>
  decltype(auto) OneOf(const Table& table) {
    return table[Pick(static_cast<unsigned>(std::size(table)))];
  }
  std::string_view Bytes(std::size_t most) {
    const std::string_view bytes = mRest.substr(0, most);
    mRest.remove_prefix(bytes.size());
    return bytes;
  }
  std::string_view Rest() { return Bytes(mRest.size()); }

 private:
  std::string_view mRest;
};

// UTF-16 as it stands in the bytes, low byte first, well-formed or not.
inline Text RawText(std::string_view bytes) {
  Text text;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
    text += static_cast<char16_t>(byte(i) | byte(i + 1) << 8);
  }
  return text;
}

// Ends the program, as a fault does, when a promise does not hold.
inline void Require(bool holds, const char* promise) {
  if (holds) return;
  std::fprintf(stderr, "not true: %s\n", promise);
  std::abort();
}

}  // namespace fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);
