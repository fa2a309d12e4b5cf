#include <cerrno>
#include <cstdio>
#include <fstream>
#include <istream>
#include <system_error>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Files.h>

#include "files/FileTarget.h"

namespace zelstoryhost {

namespace fs = std::filesystem;

std::optional<std::string> ReadFile(const fs::path& file) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (status.type() == fs::file_type::not_found) return std::nullopt;
  if (error) FailOn(file, "cannot be read", error.value());
  RefuseUnlessFile(file);
  const std::uintmax_t size = fs::file_size(file, error);
  if (error) FailOn(file, "cannot be read", error.value());
  if (size > kLargestFile) throw Error(file.string(), "is larger than 1 GiB");
  std::ifstream stream(file, std::ios::binary);
  if (!stream) FailOn(file, "cannot be read", errno);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  stream.read(bytes.data(), static_cast<std::streamsize>(size));
  if (static_cast<std::uintmax_t>(stream.gcount()) != size || stream.peek() != EOF) {
    throw Error(file.string(), "changed while it was read");
  }
  return bytes;
}

std::string ReadStream(std::istream& stream, const std::string& name) {
  std::string bytes;
  while (stream) {
    constexpr std::size_t kPiece = 1u << 20;
    const std::size_t before = bytes.size();
    bytes.resize(before + kPiece);
    stream.read(bytes.data() + before, kPiece);
    bytes.resize(before + static_cast<std::size_t>(stream.gcount()));
    if (bytes.size() > kLargestFile) throw Error(name, "is larger than 1 GiB");
  }
  if (stream.bad()) throw Error(name, "cannot be read");
  return bytes;
}

}  // namespace zelstoryhost
