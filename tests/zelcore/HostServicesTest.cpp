#include <vector>

#include <gmock/gmock.h>

#include <zelcore/String.h>
#include <zelcore/config/Localizer.h>
#include <zelcore/filesupport/Dir.h>
#include <zelcore/filesupport/File.h>
#include <zelcore/xml/Reader.h>

#include "support/ScratchFolder.h"
#include "support/Table.h"

namespace zelcore {
namespace {

namespace fs = std::filesystem;
using namespace utility;
using config::Localizer;
using filesupport::Dir;
using filesupport::File;

template <typename String>
String Units(const std::string& digits) {  // hexadecimal code units
  String text;
  table::Split(digits, " ", [&](std::string_view unit) {
    if (unit.empty()) return;
    text += static_cast<typename String::value_type>(std::stoul(std::string(unit), nullptr, 16));
  });
  return text;
}

TEST(Conversions, UTF8ToUTF16) {  // "=" where the way back leads to the same bytes
  for (const Row& row : Rows(R"(
      => => = ;; 61 00 62 => 61 0 62 => = ;; 7F C2 80 DF BF => 7F 80 7FF => = ;; E0 A0 80 ED 9F BF => 800 D7FF => =
      EE 80 80 EF BF BF => E000 FFFF => = ;; EF BB BF 78 => FEFF 78 => = ;; F0 90 80 80 => D800 DC00 => =
      F4 8F BF BF => DBFF DFFF => = ;; 61 F0 9D 84 9E 7A => 61 D834 DD1E 7A => = ;; 80 => FFFD ;; BF 80 => FFFD FFFD
      C0 AF => FFFD FFFD ;; C1 BF => FFFD FFFD ;; E0 80 AF => FFFD FFFD FFFD ;; E0 9F BF => FFFD FFFD FFFD
      F0 80 80 AF => FFFD FFFD FFFD FFFD ;; F0 8F BF BF => FFFD FFFD FFFD FFFD ;; ED A0 80 => FFFD FFFD FFFD
      ED BF BF => FFFD FFFD FFFD ;; F4 90 80 80 => FFFD FFFD FFFD FFFD ;; F5 80 80 80 => FFFD FFFD FFFD FFFD
      FE FF => FFFD FFFD ;; C3 => FFFD ;; E2 82 => FFFD ;; F0 9D 84 => FFFD ;; F0 9D => FFFD ;; F0 9D 84 61 => FFFD 61
      E1 80 E2 80 => FFFD FFFD ;; F1 80 80 E1 80 C2 => FFFD FFFD FFFD ;; 61 C3 28 => 61 FFFD 28)")) {
    const auto bytes = Units<UTF8String>(row[0]);
    const auto text = Units<UTF16String>(row[1]);
    EXPECT_EQ(UTF8to16(bytes), text) << row[0];
    EXPECT_EQ(UTF16to8(text) == bytes, row[2] == "=") << row[0];
    UTF16String joined = u"before";
    AppendUTF8to16(bytes, joined);
    EXPECT_EQ(joined, u"before" + text) << row[0];
  }
}

TEST(Conversions, LoneSurrogatesAndOtherThanASCIIAreReplaced) {
  for (const Row& row : Rows(R"(
      61 D834 => 61 EF BF BD ;; DD1E 7A => EF BF BD 7A ;; D834 61 => EF BF BD 61 ;; DD1E D834 => EF BF BD EF BF BD
      D834 D834 DD1E => EF BF BD F0 9D 84 9E)")) {
    EXPECT_EQ(UTF16to8(Units<UTF16String>(row[0])), Units<UTF8String>(row[1])) << row[0];
  }
  EXPECT_EQ(AsciiToUTF16(std::string_view("a\0\x7F\x80\xFF", 5)),
            UTF16String(u"a\0\x7F\xFFFD\xFFFD", 5));
}

TEST(NumberStream, ReadsAsInputStreamsDo) {  // "!" where the extraction fails
  for (const Row& row : Rows(R"(
      42 => 42 ;; -7 => -7 ;; +5 => 5 ;; 007 => 7 ;; -0 => 0 ;; \s\t\n\x0B\x0C\r9 => 9 ;; 12 34 => 12 ;; 1.5 => 1 ;; 1e3 => 1
      0x10 => 0 ;; 3abc => 3 ;; => 0! ;; \s\s => 0! ;; abc => 0! ;; - => 0! ;; - 5 => 0! ;; +-5 => 0! ;; --5 => 0!
      \xC2\xA05 => 0! ;; ５ => 0! ;; 2147483647 => 2147483647 ;; 2147483648 => 2147483647! ;; -2147483648 => -2147483648
      -2147483649 => -2147483648! ;; 99999999999999999999999999 => 2147483647! ;; -99999999999999999999999999 => -2147483648!
      00000000000000000000000000012 => 12)")) {
    iUTF16StringStream stream(UTF8to16(row[0]));
    std::int32_t value = 99;
    stream >> value;
    EXPECT_EQ(std::to_string(value) + (stream ? "" : "!"), row[1]) << row[0];
  }
  iUTF16StringStream several(u"1 2x3");
  std::int32_t values[] = {9, 9, 9, 9};
  several >> values[0] >> values[1] >> values[2] >> values[3];
  EXPECT_THAT(values, ::testing::ElementsAre(1, 2, 0, 9));  // a failed stream leaves a value alone
}

std::string Localized(const std::string& keyText) {
  return Utf8(Localizer::Get().GetLocalizedString(keyText));
}

TEST(Localizer, FallsBackToTheTextAfterTheKey) {
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

TEST(Files, DoNotFollowLinks) {
  const ScratchFolder folder;
  const std::string path = folder.Path().string();
  SetTemporaryFolder(path + "//");
  EXPECT_EQ(Utf8(Dir(Dir::TempDir(), u"näme𝄞").FullPath()), path + "/näme𝄞");
  SetTemporaryFolder(folder.Path() / "missing");
  EXPECT_THROW(Dir::TempDir(), fs::filesystem_error);
  const fs::path kept = folder.Write("kept𝄞", "kept");
  fs::create_symlink(kept, folder.Path() / "link");
  fs::create_symlink(folder.Path() / "nothing", folder.Path() / "dangling");
  for (const char* name : {"/link", "/dangling", "/kept𝄞"}) {
    EXPECT_TRUE(fs::exists(kept)) << name;
    File file(Utf16(path + name));
    EXPECT_TRUE(file.Exists()) << name;
    file.Delete();
    EXPECT_FALSE(file.Exists()) << name;
    EXPECT_NO_THROW(file.Delete()) << name;
  }
  folder.Write("file", "");
  EXPECT_FALSE(File(Utf16(path + "/file/below")).Exists());
  EXPECT_THROW(File(Utf16(path)).Delete(), fs::filesystem_error);
}

}  // namespace
}  // namespace zelcore
