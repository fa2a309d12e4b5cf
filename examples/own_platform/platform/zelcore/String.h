#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// This host's strings. UTF16String must behave like std::basic_string; UTF8String need not.
namespace zelcore {

using UTF16String = std::u16string;

class UTF8String {
 public:
  UTF8String(const char* bytes) : mBytes(bytes) {}  // NOLINT: the library passes its constants
  explicit UTF8String(std::string bytes) : mBytes(std::move(bytes)) {}

  const char* c_str() const { return mBytes.c_str(); }
  const char* data() const { return mBytes.data(); }
  std::size_t size() const { return mBytes.size(); }

 private:
  std::string mBytes;
};

namespace utility {

UTF16String AsciiToUTF16(std::string_view ascii);
UTF8String UTF16to8(std::u16string_view text);
UTF16String UTF8to16(std::string_view bytes);

}  // namespace utility

// Reads whole numbers from the beginning of a text.
class iUTF16StringStream {
 public:
  explicit iUTF16StringStream(const UTF16String& text);
  iUTF16StringStream& operator>>(std::int32_t& value);
  explicit operator bool() const { return mIsGood; }

 private:
  std::string mRest;
  bool mIsGood = true;
};

}  // namespace zelcore
