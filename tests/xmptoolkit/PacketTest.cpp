#include <cstring>
#include <string>

#include <gmock/gmock.h>

#include "XMPTestSupport.h"

namespace {

using namespace xmptest;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr std::string_view kHeader =
    "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>";
constexpr std::string_view kTrailer = "<?xpacket end=\"w\"?>";

class PacketTest : public testing::Test {
 protected:
  PacketTest() {
    RegisterTestNamespaces();
    mMeta.SetProperty(kQ, "a", "x<&>\"\t\n\r]]>\xF0\x9F\x8E\xAC");
    mMeta.AppendArrayItem(kQ, "b", kXMP_PropArrayIsOrdered, "\xE2\x82\xAC");
  }

  std::string Write(XMP_OptionBits options, XMP_StringLen padding = 0, const char* newline = "",
                    const char* indent = "", XMP_Index baseIndent = 0) const {
    std::string packet;
    mMeta.SerializeToBuffer(&packet, options, padding, newline, indent, baseIndent);
    return packet;
  }

  Meta mMeta;
};

TEST_F(PacketTest, DefaultLayout) {
  const std::string packet = Write(0);
  const std::string body =
      "\n<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n"
      " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
      "  <rdf:Description rdf:about=\"\"\n   xmlns:q=\"urn:q#\">\n"
      "   <q:a>x&lt;&amp;&gt;\"\t\n&#xD;]]&gt;\xF0\x9F\x8E\xAC</q:a>\n"
      "   <q:b>\n    <rdf:Seq>\n     <rdf:li>\xE2\x82\xAC</rdf:li>\n    </rdf:Seq>\n   </q:b>\n"
      "  </rdf:Description>\n </rdf:RDF>\n</x:xmpmeta>\n";
  ASSERT_THAT(packet, StartsWith(std::string(kHeader) + body));
  const std::size_t padding = packet.size() - kHeader.size() - body.size() - kTrailer.size();
  EXPECT_EQ(padding, 2048u);
  EXPECT_TRUE(packet.ends_with("\n" + std::string(kTrailer)));
  EXPECT_THAT(Write(kXMP_UseCompactFormat),
              HasSubstr("q:a=\"x&lt;&amp;>&quot;&#x9;&#xA;&#xD;]]>\xF0\x9F\x8E\xAC\">\n   <q:b>"));
  EXPECT_TRUE(AreEqual(mMeta, Parse(packet), xmptoolkit::Equality::kFile));
}

TEST_F(PacketTest, PaddingIsCountedExactly) {
  const std::size_t unpadded = Write(kXMP_ReadOnlyPacket).size();
  for (const char* newline : {"", "\n", "\r\n", "\r", "\n\n\n"}) {
    const std::size_t rest = Write(kXMP_ReadOnlyPacket, 0, newline).size();
    for (const XMP_StringLen padding : {1u, 2u, 3u, 99u, 100u, 101u, 200u, 2048u, 10000u}) {
      const std::string packet = Write(0, padding, newline);
      EXPECT_EQ(packet.size(), rest + padding);
      EXPECT_EQ(Write(kXMP_ExactPacketLength, static_cast<XMP_StringLen>(packet.size()), newline),
                packet);
      const std::size_t end = packet.size() - kTrailer.size();
      const std::string line = *newline == '\0' ? "\n" : newline;
      for (std::size_t start = end - padding; start + 100 <= end; start += 100) {
        EXPECT_EQ(packet.substr(start, 100), std::string(100 - line.size(), ' ') + line);
      }
      EXPECT_TRUE(AreEqual(mMeta, Parse(packet), xmptoolkit::Equality::kFile));
    }
  }
  for (const XMP_OptionBits access : {XMP_OptionBits{0}, kXMP_ReadOnlyPacket}) {
    const XMP_OptionBits options = kXMP_ExactPacketLength | access;
    EXPECT_EQ(Write(options, static_cast<XMP_StringLen>(unpadded)).size(), unpadded);
    EXPECT_THAT(ErrorOf([&] { Write(options, static_cast<XMP_StringLen>(unpadded - 1)); }),
                StartsWith("110 the packet needs " + std::to_string(unpadded)));
  }
}

TEST_F(PacketTest, ArgumentsAreHonouredOrRefused) {
  EXPECT_TRUE(Write(kXMP_ReadOnlyPacket).ends_with("</x:xmpmeta>\n<?xpacket end=\"r\"?>"));
  const std::string bare = Write(kXMP_OmitPacketWrapper, 0, "\r\n", "\t", 2);
  EXPECT_THAT(bare, StartsWith("\t\t<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\r\n\t\t\t<rdf:RDF"));
  EXPECT_THAT(bare, HasSubstr("\r\n\t\t\t\t\t<q:b>\r\n\t\t\t\t\t\t<rdf:Seq>\r\n"));
  EXPECT_TRUE(bare.ends_with("\r\n\t\t</x:xmpmeta>\r\n"));
  EXPECT_THAT(Write(0, 1, "", "", 3), StartsWith("   " + std::string(kHeader) + "\n   <x:xmpmeta"));
  const struct {
    XMP_OptionBits mOptions;
    XMP_StringLen mPadding;
    const char* mNewline;
    const char* mIndent;
    XMP_Index mBaseIndent;
    const char* mError;
  } rows[] = {
      {0x1000, 0, "", "", 0, "103"},
      {kXMP_OmitPacketWrapper | kXMP_ReadOnlyPacket, 0, "", "", 0, "103"},
      {kXMP_OmitPacketWrapper | kXMP_ExactPacketLength, 0, "", "", 0, "103"},
      {kXMP_OmitPacketWrapper, 1, "", "", 0, "4"},
      {kXMP_ReadOnlyPacket, 1, "", "", 0, "4"},
      {kXMP_EncodeUTF16Big, 101, "", "", 0, "4"},
      {0, 0, "x", "", 0, "4"},
      {0, 0, "", "-", 0, "4"},
      {0, 0, "", "", -1, "4"},
      {0, 0, "", "", 101, "4"},
  };
  for (const auto& row : rows) {
    std::string packet = "untouched";
    EXPECT_THAT(ErrorOf([&] {
                  mMeta.SerializeToBuffer(&packet, row.mOptions, row.mPadding, row.mNewline,
                                          row.mIndent, row.mBaseIndent);
                }),
                StartsWith(row.mError));
    EXPECT_EQ(packet, "untouched");
  }
}

// Packets in every encoding, among bytes that stand around them in a file.
TEST_F(PacketTest, EncodingsAreFoundAndRead) {
  const std::string utf8 = Write(0, 100);
  const struct {
    XMP_OptionBits mEncoding;
    std::size_t mUnit;
    std::string mMark;
    std::string mName;
  } rows[] = {
      {kXMP_EncodeUTF8, 1, "\xEF\xBB\xBF", "utf-8"},
      {kXMP_EncodeUTF16Big, 2, "\xFE\xFF", "UTF-16"},
      {kXMP_EncodeUTF16Little, 2, "\xFF\xFE", "UTF-16LE"},
      {kXMP_EncodeUTF32Big, 4, std::string("\0\0\xFE\xFF", 4), "UTF-32"},
      {kXMP_EncodeUTF32Little, 4, std::string("\xFF\xFE\0\0", 4), "UTF-32LE"},
  };
  for (const auto& row : rows) {
    const std::string packet = Write(row.mEncoding, static_cast<XMP_StringLen>(100 * row.mUnit));
    EXPECT_EQ(packet.size() % row.mUnit, 0u);
    EXPECT_EQ(
        Write(row.mEncoding | kXMP_ExactPacketLength, static_cast<XMP_StringLen>(packet.size())),
        packet);
    const std::string before[] = {"", row.mMark, "junk", std::string("\0<\0\xFF\n", 5),
                                  std::string("odd\0", 4)};
    for (const std::string& junk : before) {
      for (const char* after : {"", "\n", "\xFE junk <?pi?>"}) {
        const std::string file = junk + packet + after;
        const XMP_PacketInfo info =
            TXMPUtils::LocatePacket(file.data(), static_cast<XMP_StringLen>(file.size()));
        EXPECT_EQ(info.mOffset, junk.size()) << row.mEncoding;
        EXPECT_EQ(info.mLength, packet.size()) << row.mEncoding;
        EXPECT_EQ(info.mEncoding, row.mEncoding);
        EXPECT_TRUE(info.mHasWrapper && !info.mIsReadOnly);
        EXPECT_TRUE(AreEqual(mMeta, Parse(file), xmptoolkit::Equality::kFile)) << row.mEncoding;
      }
    }
    // Without a wrapper: with and without mark and declaration, white space around.
    const std::string bare = Write(row.mEncoding | kXMP_OmitPacketWrapper);
    const auto widen = [&row](const std::string& ascii) {
      const bool isLittle = (row.mEncoding & 1) != 0;
      std::string wide;
      for (const char c : ascii) {
        const std::string zeros(row.mUnit - 1, '\0');
        wide += isLittle ? c + zeros : zeros + c;
      }
      return wide;
    };
    const std::string declaration = widen("<?xml version='1.0' encoding='" + row.mName + "'?>\n");
    for (const std::string& mark : {std::string(), row.mMark}) {
      for (const std::string& front : {std::string(), declaration, widen("\n ")}) {
        const std::string file = mark + front + bare;
        const XMP_PacketInfo info =
            TXMPUtils::LocatePacket(file.data(), static_cast<XMP_StringLen>(file.size()));
        EXPECT_EQ(info.mOffset, mark.size() + front.size()) << row.mEncoding;
        EXPECT_EQ(info.mLength, bare.size() - row.mUnit) << "the last newline is no part of it";
        EXPECT_EQ(info.mEncoding, row.mEncoding);
        EXPECT_FALSE(info.mHasWrapper);
        EXPECT_TRUE(AreEqual(mMeta, Parse(file), xmptoolkit::Equality::kFile)) << row.mEncoding;
      }
    }
  }
  const std::string readOnly = Write(kXMP_ReadOnlyPacket | kXMP_EncodeUTF16Little);
  EXPECT_TRUE(TXMPUtils::LocatePacket(readOnly.data(), static_cast<XMP_StringLen>(readOnly.size()))
                  .mIsReadOnly);
}

TEST_F(PacketTest, BrokenEncodingsAreRefusedWithTheirPlace) {
  std::string packet = Write(kXMP_EncodeUTF16Big);
  const std::string place = std::string("\0<\0q\0:\0a\0>", 10);
  const std::size_t at = packet.find(place) + place.size();
  for (const std::string& bad : {std::string("\xD8\x00\0", 3), std::string("\xDC\x00\0", 3)}) {
    std::string broken = packet;
    broken.replace(at, bad.size(), bad);
    EXPECT_THAT(ErrorOf([&] { Parse(broken); }), StartsWith("205 6:9: "));
  }
  const std::string wide = Write(kXMP_EncodeUTF32Little | kXMP_OmitPacketWrapper);
  for (const std::string& end :
       {std::string("\0\0\x11\0", 4), std::string("\0\xD8\0\0", 4), std::string("a")}) {
    EXPECT_THAT(ErrorOf([&] { Parse(wide + end); }), StartsWith("205 15:1: "));
  }
}

TEST_F(PacketTest, PrefixesAreTheFilesOwnAndNeverCollide) {
  Meta::RegisterNamespace("urn:pre:registered#", "regd", nullptr);
  const struct {
    const char* mProperties;
    const char* mDeclarations;  // in order
  } rows[] = {
      {"<other:a xmlns:other='urn:q#'/>", "other=urn:q#"},
      {"<a xmlns='urn:q#'/>", "q=urn:q#"},
      {"<a xmlns='urn:pre:unknown#'/><b xmlns='urn:pre:unknown2#'/>",
       "ns1=urn:pre:unknown# ns2=urn:pre:unknown2#"},
      {"<a xmlns='urn:pre:unknown#'/><ns1:a xmlns:ns1='urn:1#'/>",
       "ns2=urn:pre:unknown# ns1=urn:1#"},
      {"<p:a xmlns:p='urn:1#'/><p:a xmlns:p='urn:2#'/><p:a xmlns:p='urn:q#'/>",
       "p=urn:1# ns1=urn:2# q=urn:q#"},
      {"<q:a><rdf:Bag><rdf:li rdf:value='' s:z='1'/></rdf:Bag></q:a>", "q=urn:q# s=urn:s#"},
      {"<x:a xmlns:x='urn:x#'/><XmlY:a xmlns:XmlY='urn:y#'/>", "ns1=urn:x# ns2=urn:y#"},
      {"<a xmlns='adobe:ns:meta/'/>", "x=adobe:ns:meta/"},
      {"<p:a xmlns:p='urn:a&amp;&quot;&lt;'/>", "p=urn:a&amp;&quot;&lt;"},
      {"<q:a xmlns:rdf='urn:q2#' rdf:f='1'/>", "q=urn:q# ns1=urn:q2#"},
  };
  for (const auto& row : rows) {
    const Meta meta = Parse(Described(row.mProperties));
    const std::string packet = Serialize(meta);
    std::string declarations;
    const std::string key = "\n   xmlns:";
    for (std::size_t at = packet.find(key); at != std::string::npos;
         at = packet.find(key, at + 1)) {
      std::string entry =
          packet.substr(at + key.size(), packet.find_first_of(">\n", at + 1) - at - key.size());
      if (entry.ends_with('/')) entry.pop_back();
      entry.erase(entry.find('"'), 1);
      entry.pop_back();
      declarations += (declarations.empty() ? "" : " ") + entry;
    }
    EXPECT_EQ(declarations, row.mDeclarations) << packet;
    EXPECT_TRUE(AreEqual(meta, Parse(packet), xmptoolkit::Equality::kMetadata)) << packet;
  }
}

}  // namespace
