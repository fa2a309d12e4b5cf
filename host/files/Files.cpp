#include <algorithm>
#include <istream>
#include <utility>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Files.h>

#include "files/FileTarget.h"

// The part of file access that is the same with POSIX and without.
namespace zelstoryhost {

namespace fs = std::filesystem;

FileEntry::FileEntry(std::string name, fs::path target, Links links,
                     std::shared_ptr<const OpenFolder> folder)
    : mName(std::move(name)),
      mTarget(std::move(target)),
      mLinks(links),
      mFolder(std::move(folder)) {}

FileEntry FileEntry::Sibling(const std::string& name) const {
  return {(fs::path(mName).parent_path() / name).string(), FolderOf(mTarget) / name, mLinks,
          mFolder};
}

std::string FileEntry::Leaf() const {
  return mTarget.has_filename() ? mTarget.filename().string() : ".";
}

void FileEntry::RefuseOtherNames() const {
  if (!HasOtherNames()) return;
  throw Error(mName, "the file has other names (hard links), which would keep the old bytes",
              ErrorKind::kHardLinks);
}

void ReplaceFile(const fs::path& file, const std::string& bytes, HardLinks hardLinks) {
  FileEntry(file).Replace(bytes, hardLinks);
}

std::string ReadStream(std::istream& stream, const std::string& name) {
  std::string bytes;
  while (stream) {
    const std::size_t before = bytes.size();
    const std::size_t piece = std::clamp<std::size_t>(before, 1u << 14, 1u << 20);
    bytes.resize(before + piece);
    stream.read(bytes.data() + before, static_cast<std::streamsize>(piece));
    bytes.resize(before + static_cast<std::size_t>(stream.gcount()));
    if (bytes.size() > kLargestFile) throw Error(name, "is larger than 1 GiB");
  }
  if (stream.bad()) throw Error(name, "cannot be read");
  return bytes;
}

}  // namespace zelstoryhost
