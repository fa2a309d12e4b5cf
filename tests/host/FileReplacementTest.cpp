#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string_view>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Files.h>
#include <zelstoryhost/FolderLock.h>

#include "support/ScratchFolder.h"

#if defined(ZELSTORY_HAS_ACL)
#include <sys/acl.h>
#endif

// The file code for POSIX, compiled into this program, whose own definitions of these system calls
// take the place of the system's, so that any can be refused.
namespace {

std::set<std::string_view> theRefusedCalls;

template <typename... Arguments>
int Call(std::string_view name, long number, Arguments... arguments) {
  if (!theRefusedCalls.contains(name)) return static_cast<int>(syscall(number, arguments...));
  errno = EPERM;
  return -1;
}

}  // namespace

extern "C" {
int fchmod(int file, mode_t mode) noexcept {
  return Call("fchmod", SYS_fchmod, file, mode);
}
int fchown(int file, uid_t owner, gid_t group) noexcept {
  return Call("fchown", SYS_fchown, file, owner, group);
}
int fsetxattr(int file, const char* name, const void* value, size_t size, int flags) noexcept {
  return Call("fsetxattr", SYS_fsetxattr, file, name, value, size, flags);
}
int fsync(int file) {
  return Call("fsync", SYS_fsync, file);
}
int linkat(int from, const char* name, int to, const char* link, int flags) noexcept {
  return Call("linkat", SYS_linkat, from, name, to, link, flags);
}
int renameat(int from, const char* name, int to, const char* other) noexcept {
  return Call("renameat", SYS_renameat2, from, name, to, other, 0);
}
int openat(int folder, const char* name, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode =
      (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE ? va_arg(more, mode_t) : 0;
  va_end(more);
  const char* const kind = (flags & O_TMPFILE) == O_TMPFILE ? "O_TMPFILE"
                           : (flags & O_CREAT) != 0         ? "O_CREAT"
                                                            : "open";
  return Call(kind, SYS_openat, folder, name, flags, mode);
}
}

namespace {

namespace fs = std::filesystem;
using namespace zelstoryhost;

class FileReplacementTest : public testing::Test {
 protected:
  FileReplacementTest() { mFolder.Write("f", "old"); }
  ~FileReplacementTest() override { theRefusedCalls.clear(); }

  fs::path File(const std::string& name = "f") const { return mFolder.Path() / name; }
  // The names in the folder, each with its bytes, or -> for a link.
  std::string Files(const std::string& folder = ".") const {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(File(folder))) {
      const bool isFile = entry.is_regular_file() && !entry.is_symlink();
      names.insert(entry.path().filename().string() +
                   (isFile ? "=" + ReadBytes(entry.path()) : ""));
    }
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
    return text;
  }
  std::string Mode() const {
    struct stat status {};
    stat(File().c_str(), &status);
    char text[8];
    snprintf(text, sizeof text, "%o", status.st_mode & 07777);
    return text;
  }
  // Replaces the file while the calls are refused; returns the error without its file.
  std::string Replace(std::set<std::string_view> refused, const std::string& name = "f",
                      HardLinks hardLinks = HardLinks::kRefuse) const {
    theRefusedCalls = std::move(refused);
    std::string reason;
    try {
      ReplaceFile(File(name), "new", hardLinks);
    } catch (const Error& error) {
      reason = error.Reason();
    }
    theRefusedCalls.clear();
    return reason;
  }

  const ScratchFolder mFolder;
};

TEST_F(FileReplacementTest, PermissionsPassOnAndNeverWiden) {
  struct Case {
    mode_t mBefore;
    std::set<std::string_view> mRefused;
    std::string mAfter;
  };
  const Case cases[] = {
      {04751, {}, "4751"},
      {0444, {}, "444"},
      {0664, {"fchown"}, "664"},
      {0640, {"fsetxattr"}, "640"},
      {0664, {"fchmod", "fsetxattr"}, "644"},
      {0606, {"fchmod", "fsetxattr"}, "600"},
      {0660, {"fchmod", "fsetxattr", "O_TMPFILE"}, "600"},
  };
  for (const auto& [before, refused, after] : cases) {
    SCOPED_TRACE(after);
    mFolder.Write("f", "old");
    chmod(File().c_str(), before);
    EXPECT_EQ(Replace(refused), "");
    EXPECT_EQ(Files() + ' ' + Mode(), "f=new " + after);
    fs::remove(File());
  }
  const mode_t mask = umask(027);
  EXPECT_EQ(Replace({"fchmod"}), "");  // a new file
  umask(mask);
  EXPECT_EQ(Mode(), "640");
}

TEST_F(FileReplacementTest, AnotherOwnerOrGroupGainsNothing) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give files to others";
  const std::pair<gid_t, std::string> cases[] = {{getegid(), "f=new 664"}, {1234, "f=new 644"}};
  for (const auto& [group, after] : cases) {
    mFolder.Write("f", "old");
    ASSERT_EQ(chown(File().c_str(), 4321, group), 0);
    chmod(File().c_str(), 06664);
    EXPECT_EQ(Replace({"fchown"}), "");
    EXPECT_EQ(Files() + ' ' + Mode(), after);
  }
}

#if defined(ZELSTORY_HAS_ACL)
TEST_F(FileReplacementTest, ListsAndAttributesAreKept) {
  using ACL = std::unique_ptr<std::remove_pointer_t<acl_t>, int (*)(void*)>;
  const auto set = [](acl_type_t type, const fs::path& file, const char* text) {
    const ACL wanted(acl_from_text(text), acl_free);
    return acl_set_file(file.c_str(), type, wanted.get()) == 0;
  };
  const auto list = [this] {
    const ACL found(acl_get_file(File().c_str(), ACL_TYPE_ACCESS), acl_free);
    const std::unique_ptr<char, int (*)(void*)> text(acl_to_text(found.get(), nullptr), acl_free);
    std::string line(text.get());
    std::replace(line.begin(), line.end(), '\n', ' ');
    return line;
  };
  const char* const kList = "u::rw-,u:4321:r--,g::---,m::rw-,o::r--";
  const char* const kDefault = "u::rwx,u:4322:rwx,g::rwx,m::rwx,o::---";
  if (!set(ACL_TYPE_ACCESS, File(), kList)) GTEST_SKIP() << "no lists on this file system";
  set(ACL_TYPE_DEFAULT, File("."), kDefault);
  if (setxattr(File().c_str(), "user.colour", "red", 3, 0) != 0) {
    GTEST_SKIP() << "no attributes on this file system";
  }
  EXPECT_EQ(Replace({}), "");
  const std::string kept = "user::rw- user:4321:r-- group::--- mask::rw- other::r-- ";
  EXPECT_EQ(list(), kept);
  char colour[4] = "";
  EXPECT_EQ(getxattr(File().c_str(), "user.colour", colour, 3), 3);
  EXPECT_STREQ(colour, "red");
  // Where the list cannot be kept, nobody gets what the folder's default would give.
  EXPECT_EQ(Replace({"fsetxattr"}), "");
  EXPECT_EQ(Mode(), "600");
  chmod(File().c_str(), 0640);
  EXPECT_EQ(Replace({}), "");
  EXPECT_EQ(Mode(), "640");
}
#endif

TEST_F(FileReplacementTest, AFailureLeavesTheOldFileAndNothingElse) {
  const std::pair<std::set<std::string_view>, std::string> cases[] = {
      {{"fsync"}, "cannot be written: "},
      {{"linkat"}, "cannot be written: "},
      {{"renameat"}, "cannot be replaced: "},
      {{"renameat", "O_TMPFILE"}, "cannot be replaced: "},
      {{"fsync", "O_TMPFILE"}, "cannot be written: "},
      {{"O_TMPFILE", "O_CREAT"}, "cannot be written: "},
  };
  for (const auto& [refused, reason] : cases) {
    EXPECT_EQ(Replace(refused), reason + "Operation not permitted") << reason;
    EXPECT_EQ(Files(), "f=old");
  }
}

TEST_F(FileReplacementTest, OtherNamesAreNotPartedUnasked) {
  fs::create_hard_link(File(), File("g"));
  EXPECT_EQ(Replace({}), "the file has other names (hard links), which would keep the old bytes");
  EXPECT_EQ(Files(), "f=old g=old");
  EXPECT_EQ(Replace({}, "f", HardLinks::kPart), "");
  EXPECT_EQ(Files(), "f=new g=old");
}

TEST_F(FileReplacementTest, ANameMayBeAsLongAsTheSystemAllows) {
  const std::string name(255, 'n');
  EXPECT_EQ(Replace({}, name) + Replace({"O_TMPFILE"}, name), "");
  EXPECT_EQ(Files(), "f=old " + name + "=new");
}

// What is read, written and replaced lies in the folder that was opened.
TEST_F(FileReplacementTest, AnotherFolderOfTheSameNameIsNotTouched) {
  fs::create_directory(File("D"));
  mFolder.Write("D/f", "old");
  const FileEntry entry(File("D/f"));
  const FileEntry other = entry.Sibling("g");
  fs::rename(File("D"), File("E"));
  fs::create_directory_symlink(".", File("D"));
  entry.Replace(entry.Read().value_or("") + "er", HardLinks::kRefuse);
  other.Replace("g", HardLinks::kRefuse);
  EXPECT_EQ(Files("E"), "f=older g=g");
  EXPECT_EQ(Files(), "D E f=old");
}

TEST_F(FileReplacementTest, ALinkIsFollowedOnceOrReplaced) {
  fs::create_symlink("f", File("link"));
  const FileEntry plain(File("later")), replacing(File("link"), FileEntry::Links::kReplace);
  fs::create_symlink("f", File("later"));
  EXPECT_THROW(plain.Read(), Error);
  EXPECT_THROW(plain.Replace("new", HardLinks::kRefuse), Error);
  EXPECT_TRUE(replacing.IsLink());
  EXPECT_THROW(replacing.Read(), Error);
  EXPECT_EQ(Files(), "f=old later link");
  replacing.Replace("new", HardLinks::kRefuse);
  EXPECT_EQ(Files(), "f=old later link=new");
}

TEST_F(FileReplacementTest, AFolderIsLockedForOneAtATime) {
  const FileEntry entry(File()), again(File("g"));
  std::optional<FolderLock> held(std::in_place, entry, Waiting{});
  int checks = 0;
  Waiting waiting{std::chrono::milliseconds(1100), {}, [&checks] { ++checks; }};
  std::string notes;
  waiting.mNote = [&notes](const std::string&, const std::string& text) { notes += text; };
  EXPECT_THROW(FolderLock(again, waiting), Error);
  EXPECT_EQ(notes, "waiting for another process that changes files in this folder");
  EXPECT_GT(checks, 1);
  waiting.mCheck = [] { throw 1; };
  EXPECT_THROW(FolderLock(again, waiting), int);
  held.reset();
  waiting.mLimit = {};
  const FolderLock other(again, waiting);
  EXPECT_THROW(FolderLock(FileEntry(File()), waiting), Error);
}

}  // namespace
