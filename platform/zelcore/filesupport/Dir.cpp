#include <utility>

#include <zelcore/filesupport/Dir.h>

namespace zelcore::filesupport {
namespace {

std::filesystem::path WithoutEndSeparator(const std::filesystem::path& path) {
  return path.has_filename() || !path.has_relative_path() ? path : path.parent_path();
}

}  // namespace

Dir Dir::TempDir() {
  return Dir(std::filesystem::temp_directory_path());
}

Dir::Dir(const Dir& parent, const UTF16String& name) : Dir(parent.mPath / name) {}

Dir::Dir(const std::filesystem::path& path)
    : mPath(WithoutEndSeparator(std::filesystem::absolute(path))) {}

UTF16String Dir::FullPath() const {
  const std::u8string path = mPath.u8string();
  return utility::UTF8to16({reinterpret_cast<const char*>(path.data()), path.size()});
}

}  // namespace zelcore::filesupport
