#include "script/OpenScript.h"

#include <cerrno>
#include <new>
#include <system_error>

namespace zelstoryhost {

namespace fs = std::filesystem;

std::optional<std::string> OpenScript(const fs::path& file, std::ifstream& stream) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (error) return error.message();
  if (fs::is_directory(status)) return "is a directory";
  if (!fs::is_regular_file(status)) return "is not a regular file";
  stream.open(file, std::ios::binary);
  if (!stream && errno == ENOMEM) throw std::bad_alloc();
  if (!stream) return std::generic_category().message(errno);
  return std::nullopt;
}

}  // namespace zelstoryhost
