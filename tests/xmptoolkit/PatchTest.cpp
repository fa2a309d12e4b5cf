// What a change to a packet does to its bytes. A fuzzer holds random packets and changes against
// the same promises.
#include <sstream>

#include <xmptoolkit/PacketPatch.h>

#include "XMPTestSupport.h"

namespace {

using xmptest::Meta;
using xmptest::Parse;
using xmptest::RDF;
using xmptest::Size;
using xmptoolkit::PacketPatch;

class PatchTest : public testing::Test {
 protected:
  PatchTest() {
    xmptest::RegisterTestNamespaces();
    Meta::RegisterNamespace("urn:n#", "n", nullptr);
  }
};

// Carries out a line of commands: set, uri, add and lang PATH VALUE, cut PATH.
void Edit(Meta& meta, const std::string& commands) {
  std::istringstream words(commands);
  for (std::string command, path, value; words >> command >> path;) {
    const std::string uri = "urn:" + path.substr(0, 1) + "#";
    if (command == "cut") {
      meta.DeleteProperty(uri.c_str(), path.c_str());
      continue;
    }
    words >> value;
    value = Replaced(value, {{"_", " "}, {"^", "\n"}});
    if (command == "lang") path += "/?xml:lang";
    if (command == "add") {
      const bool isThere = meta.DoesPropertyExist(uri.c_str(), path.c_str());
      meta.AppendArrayItem(uri.c_str(), path.c_str(), isThere ? 0 : kXMP_PropArrayIsOrdered,
                           value.c_str());
    } else {
      meta.SetProperty(uri.c_str(), path.c_str(), value,
                       command == "uri" ? kXMP_PropValueIsURI : 0);
    }
  }
}

PacketPatch Patch(const std::string& file, const std::string& commands) {
  const Meta before = Parse(file);
  Meta after(before);
  Edit(after, commands);
  return xmptoolkit::PatchPacket(file.data(), Size(file), before, after);
}

// Fields: what rdf:RDF holds, the edit, what it holds then, and an edit that takes it back. {, },
// RES and LI stand for what is long.
TEST_F(PatchTest, OnlyWhatDiffersChangesAndInTheFilesOwnStyle) {
  for (const Row& row : Rows(R"(
      {>\n <q:a>&#65;</q:a>  <q:b >x</q:b ><!-- y -->\n} => set q:b &_new => {>\n <q:a>&#65;</q:a>  <q:b >&amp; new</q:b ><!-- y -->\n} => set q:b x
      { q:a="1"\n  q:b = 'x'/> => set q:b it's => { q:a="1"\n  q:b = 'it&apos;s'/> => set q:b x
      {\n   q:a="1"\n   q:b="2"/> => set q:c 3 => {\n   q:a="1"\n   q:b="2"\n   q:c="3"/> => cut q:c
      {>\n\t<q:a>1</q:a>\n} => set q:b 2 set s:c 3 => {>\n\t<q:a>1</q:a>\n\t<q:b>2</q:b>\n\t<s:c>3</s:c>\n} => cut q:b cut s:c
      \s{>\r\n  <q:a>1</q:a>\r\n\r\n } => set q:b 2^3 => \s{>\r\n  <q:a>1</q:a>\r\n  <q:b>2\r\n3</q:b>\r\n\r\n } => cut q:b
      {><q:a>1</q:a>} => set q:b 2 => {><q:a>1</q:a><q:b>2</q:b>} => cut q:b
      \s{>\n  <q:a>1</q:a>\n }\n => set n:b 2 => \s{>\n  <q:a>1</q:a>\n }\n { xmlns:n='urn:n#'>\n  <n:b>2</n:b>\n }\n => cut n:b
      \s{/>\n => add n:b 2 => \s{/>\n { xmlns:n='urn:n#'>\n  <n:b>\n   <rdf:Seq>\n    LI>2</rdf:li>\n   </rdf:Seq>\n  </n:b>\n }\n => cut n:b
      {><q:a rdf:resource = "u:1" /><q:a2>t</q:a2>} => uri q:a u:2 => {><q:a rdf:resource = "u:2" /><q:a2>t</q:a2>} => uri q:a u:1
      {>\n <q:a><rdf:Bag>\n  LI>1</rdf:li>\n  LI>2</rdf:li>\n </rdf:Bag></q:a>} => add q:a 3 => {>\n <q:a><rdf:Bag>\n  LI>1</rdf:li>\n  LI>2</rdf:li>\n  LI>3</rdf:li>\n </rdf:Bag></q:a>} => cut q:a[3]
      {>\n <q:a><rdf:Bag>\n  LI>1</rdf:li>\n  LI>2</rdf:li>\n </rdf:Bag></q:a>} => cut q:a[1] => {>\n <q:a><rdf:Bag>\n  LI>2</rdf:li>\n </rdf:Bag></q:a>}
      {>\n <q:a>\n  <rdf:Bag/></q:a>} => add q:a 1 => {>\n <q:a>\n  <rdf:Bag>\n   LI>1</rdf:li>\n  </rdf:Bag></q:a>} => cut q:a[1]
      {>\n <q:a>\n  <rdf:Bag></rdf:Bag></q:a>} => add q:a 1 => {>\n <q:a>\n  <rdf:Bag>LI>1</rdf:li></rdf:Bag></q:a>} => cut q:a[1]
      {><q:a RES><q:f>1</q:f></q:a>} => set q:a/s:g 2 => {><q:a RES><q:f>1</q:f><s:g>2</s:g></q:a>} => cut q:a/s:g
      {><q:a q:f="1"/>} => set q:a/s:g 2 => {><q:a q:f="1" s:g="2"/>} => cut q:a/s:g
      {><q:a q:f="1"/>} => cut q:a/q:f => {><q:a RES/>}
      {><q:a><!-- y -->t</q:a>} => lang q:a de => {><!-- y --><q:a xml:lang='de'>t</q:a>}
      {><s:b/>}{ q:a="1"/> => lang q:a de => {><s:b/><q:a xml:lang="de">1</q:a>}
      {><q:a/><q:b/>}\n{ q:c="1"/> => cut q:c => {><q:a/><q:b/>}
      {><q:a/><?p i?>} => cut q:a => {><?p i?>}
      {><q:a><rdf:Seq>LI>1</rdf:li>LI>2</rdf:li></rdf:Seq></q:a>} => set q:b 1 cut q:a[1] => {><q:a><rdf:Seq>LI>2</rdf:li></rdf:Seq></q:a><q:b>1</q:b>})")) {
    SCOPED_TRACE(row[0] + " => " + row[1]);
    const auto written = [](const std::string& cell) {
      return RDF(Replaced(cell, Rows("{ => <rdf:Description rdf:about='' ;; } => </rdf:Description>"
                                     ";; RES => rdf:parseType='Resource' ;; LI => <rdf:li")));
    };
    const std::string file = written(row[0]);
    const PacketPatch patch = Patch(file, row[1]);
    EXPECT_EQ(patch.mWhyRewritten, "");
    EXPECT_EQ(patch.mNewFile, written(row[2]));
    const std::string back = row[3].empty() ? file : Patch(patch.mNewFile, row[3]).mNewFile;
    EXPECT_EQ(back, file);
  }
}

// The same in every encoding, and in ASCII, which other characters are no part of.
TEST_F(PatchTest, AnEncodingStaysWhatItIs) {
  const Meta meta = Parse(RDF("<rdf:Description q:a='\xC3\xA9'/>"));
  for (const XMP_OptionBits encoding :
       {kXMP_EncodeUTF16Big, kXMP_EncodeUTF16Little, kXMP_EncodeUTF32Big, kXMP_EncodeUTF32Little}) {
    const std::string file = xmptest::Serialize(meta, encoding);
    const std::string changed = Patch(file, "set n:b \xF0\x9D\x84\x9E").mNewFile;
    EXPECT_EQ(changed.size(), file.size());
    EXPECT_THAT(xmptoolkit::FileInUTF8(changed.data(), Size(changed)),
                testing::HasSubstr("<n:b>\xF0\x9D\x84\x9E</n:b>"));
    EXPECT_EQ(Patch(changed, "cut n:b").mNewFile, file);
  }
  const std::string ascii =
      "<?xml version='1.0' encoding='us-ascii'?>" + RDF("<rdf:Description q:a='&#233;'/>");
  const std::string changed = Patch(ascii, "set q:b \xC3\xA9").mNewFile;
  EXPECT_EQ(changed, Replaced(ascii, {{"233;'", "233;' q:b='&#233;'"}}));
}

std::string Lines(std::size_t count, std::size_t length, const std::string& lineEnd) {
  std::string lines;
  for (; count > 0; --count) lines += std::string(length - lineEnd.size(), ' ') + lineEnd;
  return lines;
}

// Padding in every form, with room and without, and whatever the packet gets longer by.
TEST_F(PatchTest, PaddingTakesUpTheDifferenceAndGivesItBack) {
  const std::string header = "<?xpacket begin='\xEF\xBB\xBF' id='W5M0MpCehiHzreSzNTczkc9d'?>";
  const std::string body = RDF("<rdf:Description rdf:about=''><q:a>123</q:a></rdf:Description>");
  struct Case {
    std::string mPadding;
    std::size_t mRoom;  // what it can take up
  };
  for (const auto& [padding, room] :
       std::vector<Case>{{"", 0},
                         {"\n", 0},
                         {"\n" + Lines(20, 100, "\n"), 1700},
                         {Lines(9, 50, "\n") + Lines(1, 7, "\n"), 300},
                         {"\r\n" + Lines(6, 40, "\r\n"), 120},
                         {"\r" + Lines(5, 40, "\r") + " ", 80},
                         {std::string(999, ' ') + "\n", 967}}) {
    const std::string file = header + body + padding + "<?xpacket end='w'?>";
    for (std::size_t growth = 0; growth < 400; growth += growth < 130 ? 1 : 67) {
      SCOPED_TRACE(std::to_string(padding.size()) + " " + std::to_string(growth));
      const std::string longer = Patch(file, "set q:a 123" + std::string(growth, 'x')).mNewFile;
      EXPECT_EQ(longer.size(), file.size() + (growth <= room ? 0 : growth));
      const bool isExact = growth <= room || padding.size() != 1000;  // which has no lines
      EXPECT_TRUE(!isExact || Patch(longer, "set q:a 123").mNewFile == file);
    }
    const std::string shorter = Patch(file, "set q:a 1").mNewFile;
    EXPECT_EQ(shorter.size(), file.size() - (room == 0 ? 2 : 0));
    EXPECT_TRUE(Patch(shorter, "set q:a 123").mNewFile == file);
  }
  // Other bytes behind a packet keep their place where they can.
  const std::string among = header + body + "<?xpacket end='w'?>other";
  EXPECT_EQ(Patch(among, "cut q:a").mNewFile.size(), among.size());
}

TEST_F(PatchTest, WhatCannotKeepItsFormIsWrittenAnewAndSaysWhy) {
  for (const Row& row : Rows(R"(
      <rdf:Description xml:lang='en'><q:a>1</q:a></rdf:Description> => set q:b 2 =>
      <rdf:Description><q:a><rdf:Seq><rdf:_1>x</rdf:_1></rdf:Seq></q:a></rdf:Description> => add q:a 2 =>           changed in place, it would be read as something else)")) {
    const PacketPatch patch = Patch(RDF(row[0]), row[1]);
    EXPECT_EQ(patch.mWhyRewritten, row[2]) << row[0];
    Meta expected = Parse(RDF(row[0]));
    Edit(expected, row[1]);
    EXPECT_TRUE(AreEqual(Parse(patch.mNewFile), expected, xmptoolkit::Equality::kMetadata));
  }
  // The metadata before may be that of another file.
  const std::string file = RDF("<rdf:Description q:b='2'/>");
  const Meta before = Parse(RDF("<rdf:Description q:a='1'/>"));
  const Meta after;
  EXPECT_EQ(xmptoolkit::PatchPacket(file.data(), Size(file), before, after).mWhyRewritten,
            "a property is not found in it");
}

}  // namespace
