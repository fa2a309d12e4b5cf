#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

#include <zelcore/String.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

// Helpers that the fuzz targets share.
namespace fuzzing {

using Text = zelcore::UTF16String;

// Aborts the program, as a fault does, if a promise does not hold.
inline void Require(bool holds, const char* promise) {
  if (holds) return;
  std::fprintf(stderr, "not true: %s\n", promise);
  std::abort();
}

// Returns the UTF-16 code units in the bytes, low byte first, well-formed or not.
inline Text RawText(std::string_view bytes) {
  Text text(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < 2 * text.size(); ++i)
    text[i / 2] |= static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) << (i % 2 * 8));
  return text;
}

// Returns the words of an ASCII text, for tables.
inline std::vector<Text> Words(std::string_view text) {
  std::vector<Text> words(1);
  for (const char c : text)
    c == ' ' ? void(words.emplace_back()) : words.back().push_back(static_cast<char16_t>(c));
  return words;
}

// Reads an input from its beginning; an exhausted input gives zeros and empty texts.
class Input {
 public:
  Input(const std::uint8_t* bytes, std::size_t size)
      : mRest(reinterpret_cast<const char*>(bytes), size) {}

  bool IsEmpty() const { return mRest.empty(); }
  std::string_view Bytes(std::size_t most) {
    const std::string_view bytes = mRest.substr(0, most);
    mRest.remove_prefix(bytes.size());
    return bytes;
  }
  unsigned Byte() { return mRest.empty() ? 0 : static_cast<unsigned char>(Bytes(1)[0]); }
  const Text& OneOf(const std::vector<Text>& words) { return words[Byte() % words.size()]; }

 private:
  std::string_view mRest;
};

}  // namespace fuzzing
