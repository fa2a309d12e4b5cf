#include <thread>

#include <gtest/gtest.h>

#include <zelcore/config/Localizer.h>
#include <zelcore/filesupport/Dir.h>
#include <zelcore/filesupport/File.h>

#include "support/ScratchFolder.h"
#include "support/Table.h"
#include "support/Text.h"

namespace zelcore {
namespace {

namespace fs = std::filesystem;
using config::Localizer;
using filesupport::Dir;
using filesupport::File;

std::string Localized(const std::string& keyText) {
  return Utf8(Localizer::Get().GetLocalizedString(keyText));
}

TEST(Localizer, FallsBackToTheTextBehindTheKey) {
  Localizer::Get().InstallTranslation("$$$/a/Known", u"old");
  Localizer::Get().InstallTranslation("$$$/a/Known", u"bekannt");
  for (const Row& row :
       Rows(R"($$$/a/Key=English => English ;; $$$/a/Key=a=b => a=b ;; $$$/a/Key= => ;; =>
      $$$/a/Key => $$$/a/Key ;; $$$/a/Key=é𝄞 => é𝄞 ;; $$$/a/Known=known => bekannt ;; $$$/a/Known => bekannt
      $$$/a/Know=known => known)")) {
    EXPECT_EQ(Localized(row[0]), row[1]) << row[0];
  }
  Localizer::Get().RemoveTranslations();
  EXPECT_EQ(Localized("$$$/a/Known=known"), "known");
}

TEST(Localizer, ServesSeveralThreads) {
  std::vector<std::thread> threads;
  for (const char* key : {"$$$/1", "$$$/2", "$$$/3"}) {
    threads.emplace_back([key = std::string(key)] {
      for (int i = 0; i < 500; ++i) {
        Localizer::Get().InstallTranslation(key, u"translated");
        EXPECT_EQ(Localized(key + "=x") + Localized("$$$/none=y"), "translatedy");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  Localizer::Get().RemoveTranslations();
}

TEST(Files, PathsHaveNoSeparatorAtTheirEnd) {
  const ScratchFolder folder;
  const std::string path = folder.Path().string();
  for (const char* end : {"", "/", "//"}) {
    SetTemporaryFolder(path + end);
    EXPECT_EQ(Utf8(Dir::TempDir().FullPath()), path) << end;
    EXPECT_EQ(Utf8(Dir(Dir::TempDir(), u"näme𝄞").FullPath()), path + "/näme𝄞") << end;
  }
  SetTemporaryFolder(folder.Path() / "missing");
  EXPECT_THROW(Dir::TempDir(), fs::filesystem_error);
}

TEST(Files, SpeakOfTheEntryItself) {
  const ScratchFolder folder;
  fs::create_directory(folder.Path() / "full");
  const fs::path kept = folder.Write("full/kept𝄞", "kept");
  fs::create_symlink(kept, folder.Path() / "link");
  fs::create_symlink(folder.Path() / "nothing", folder.Path() / "dangling");
  fs::create_symlink(folder.Path() / "full", folder.Path() / "folderlink");
  const auto fileAt = [&](const char* name) {
    return File(Utf16((folder.Path() / name).string()));
  };
  for (const char* name : {"link", "dangling", "folderlink"}) {
    EXPECT_TRUE(fileAt(name).Exists()) << name;
    fileAt(name).Delete();
    EXPECT_FALSE(fileAt(name).Exists()) << name;
    EXPECT_NO_THROW(fileAt(name).Delete()) << name;
  }
  EXPECT_THROW(fileAt("full").Delete(), fs::filesystem_error);
  EXPECT_EQ(ReadBytes(kept), "kept");
  EXPECT_FALSE(fileAt("missing/x").Exists() || fileAt("full/kept𝄞/below").Exists());
  fileAt("full/kept𝄞").Delete();
  EXPECT_FALSE(fs::exists(kept));
}

}  // namespace
}  // namespace zelcore
