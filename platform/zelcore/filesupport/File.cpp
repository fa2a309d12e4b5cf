#include <system_error>

#include <zelcore/filesupport/File.h>

namespace zelcore::filesupport {

File::File(const UTF16String& path) {
  const UTF8String bytes = utility::UTF16to8(path);
  mPath = std::filesystem::path(std::u8string(bytes.begin(), bytes.end()));
}

bool File::Exists() const {
  std::error_code error;
  return std::filesystem::exists(std::filesystem::symlink_status(mPath, error));
}

void File::Delete() {
  std::filesystem::remove(mPath);
}

}  // namespace zelcore::filesupport
