#include <filesystem>
#include <iterator>

#include <gmock/gmock.h>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Files.h>
#include <zelstoryhost/FolderLock.h>

#include "support/ScratchFolder.h"

// The form of the file code for systems without POSIX, compiled into this program.
namespace {

namespace fs = std::filesystem;
using namespace zelstoryhost;

TEST(PortableFiles, AreReplacedWholeOrNotAtAll) {
  const ScratchFolder folder;
  const fs::path file = folder.Path() / "clip.xmp", link = folder.Path() / "link.xmp";
  folder.Write("clip.xmp.new", "of the user");
  const FolderLock lock(FileEntry{file}, Waiting{});
  ReplaceFile(file, "first");
  fs::create_symlink("clip.xmp", link);
  ReplaceFile(link, "second");
  EXPECT_EQ(ReadBytes(file), "second");
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(FileEntry(link).Read(), "second");
  EXPECT_FALSE(FileEntry(file).IsWriteProtected());
  fs::permissions(file, fs::perms::owner_read);
  EXPECT_TRUE(FileEntry(file).IsWriteProtected());
  EXPECT_THROW(ReplaceFile(folder.Path(), "bytes"), Error);
  EXPECT_THROW(ReplaceFile(folder.Path() / "none" / "clip.xmp", "bytes"), Error);
  EXPECT_EQ(ReadBytes(folder.Path() / "clip.xmp.new"), "of the user");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), {}), 3);  // nothing is left behind
}

}  // namespace
