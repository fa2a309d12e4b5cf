#include <regex>

#include "XMPTestSupport.h"

namespace {

using namespace xmptest;
using testing::HasSubstr;
using testing::StartsWith;

constexpr std::string_view kHeader =
    "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>";
constexpr std::string_view kTrailer = "<?xpacket end=\"w\"?>";

class PacketTest : public testing::Test {
 protected:
  PacketTest() {
    RegisterTestNamespaces();
    mMeta.SetProperty(kQ, "a", "x<&>\"\t\n\r]]>\xF0\x9F\x8E\xAC\xF4\x8F\xBF\xBF");
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
      "   <q:a>x&lt;&amp;&gt;\"\t\n&#xD;]]&gt;\xF0\x9F\x8E\xAC\xF4\x8F\xBF\xBF</q:a>\n"
      "   <q:b>\n    <rdf:Seq>\n     <rdf:li>\xE2\x82\xAC</rdf:li>\n    </rdf:Seq>\n   </q:b>\n"
      "  </rdf:Description>\n </rdf:RDF>\n</x:xmpmeta>\n";
  ASSERT_THAT(packet, StartsWith(std::string(kHeader) + body));
  EXPECT_EQ(packet.size(), kHeader.size() + body.size() + 2048 + kTrailer.size());
  EXPECT_TRUE(packet.ends_with("\n" + std::string(kTrailer)));
  EXPECT_TRUE(Write(0, 101).ends_with(" \n\n" + std::string(kTrailer)));  // the padding's last line
  ExpectReadsAs(packet, mMeta);
}

TEST_F(PacketTest, PaddingIsCountedExactly) {
  for (const std::string newline : {"", "\n", "\r\n", "\r", "\n\n\n"}) {
    const std::size_t rest = Write(kXMP_ReadOnlyPacket, 0, newline.c_str()).size();
    const std::string line = newline.empty() ? "\n" : newline;
    for (const XMP_StringLen padding : {1u, 2u, 3u, 99u, 100u, 101u, 200u, 2048u, 10000u}) {
      const std::string packet = Write(0, padding, newline.c_str());
      EXPECT_EQ(packet.size(), rest + padding);
      EXPECT_EQ(Write(kXMP_ExactPacketLength, Size(packet), newline.c_str()), packet);
      const std::size_t end = packet.size() - kTrailer.size();
      for (std::size_t start = end - padding; start + 100 <= end; start += 100) {
        EXPECT_EQ(packet.substr(start, 100), std::string(100 - line.size(), ' ') + line);
      }
      ExpectReadsAs(packet, mMeta);
    }
  }
  const XMP_StringLen unpadded = Size(Write(kXMP_ReadOnlyPacket));
  for (const XMP_OptionBits access : {XMP_OptionBits{0}, kXMP_ReadOnlyPacket}) {
    const XMP_OptionBits options = kXMP_ExactPacketLength | access;
    EXPECT_EQ(Write(options, unpadded).size(), unpadded);
    ExpectError([&] { Write(options, unpadded - 1); },
                "110 the packet needs " + std::to_string(unpadded));
  }
}

TEST_F(PacketTest, ArgumentsAreHonouredOrRefused) {
  EXPECT_TRUE(Write(kXMP_ReadOnlyPacket).ends_with("</x:xmpmeta>\n<?xpacket end=\"r\"?>"));
  const std::string bare = Write(kXMP_OmitPacketWrapper, 0, "\r\n", "\t", 2);
  EXPECT_THAT(bare, StartsWith("\t\t<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\r\n\t\t\t<rdf:RDF"));
  EXPECT_THAT(bare, HasSubstr("\r\n\t\t\t\t\t<q:b>\r\n\t\t\t\t\t\t<rdf:Seq>\r\n"));
  EXPECT_TRUE(bare.ends_with("\r\n\t\t</x:xmpmeta>\r\n"));
  EXPECT_THAT(Write(0, 1, "", "", 3), StartsWith("   " + std::string(kHeader) + "\n   <x:xmpmeta"));
  const auto refuse = [&](const char* error, XMP_OptionBits options, auto... layout) {
    SCOPED_TRACE(options);
    std::string packet = "untouched";
    ExpectError([&] { mMeta.SerializeToBuffer(&packet, options, layout...); }, error);
    EXPECT_EQ(packet, "untouched");
  };
  refuse("103", 0x1000);
  refuse("103", kXMP_OmitPacketWrapper | kXMP_ReadOnlyPacket);
  refuse("103", kXMP_OmitPacketWrapper | kXMP_ExactPacketLength);
  refuse("4", kXMP_OmitPacketWrapper, 1u);
  refuse("4", kXMP_ReadOnlyPacket, 1u);
  refuse("4", kXMP_EncodeUTF16Big, 101u);
  refuse("4", 0, 0u, "x");
  refuse("4", 0, 0u, "", "-");
  refuse("4", 0, 0u, "", "", -1);
  refuse("4", 0, 0u, "", "", 101);
}

// Packets in every encoding, among the other bytes of a file.
TEST_F(PacketTest, EncodingsAreFoundAndRead) {
  const struct {
    XMP_OptionBits mEncoding;
    std::size_t mUnit;
    std::string mMark, mName;
  } rows[] = {{kXMP_EncodeUTF8, 1, "\xEF\xBB\xBF", "utf8"},
              {kXMP_EncodeUTF16Big, 2, "\xFE\xFF", "UTF-16"},
              {kXMP_EncodeUTF16Little, 2, "\xFF\xFE", "UTF-16LE"},
              {kXMP_EncodeUTF32Big, 4, std::string("\0\0\xFE\xFF", 4), "UTF-32"},
              {kXMP_EncodeUTF32Little, 4, std::string("\xFF\xFE\0\0", 4), "UTF-32LE"}};
  for (const auto& [encoding, unit, mark, name] : rows) {
    const auto expectFound = [&, code = encoding](const std::string& front, std::size_t length,
                                                  const std::string& rest, bool hasWrapper) {
      const std::string file = front + rest;
      const XMP_PacketInfo info = TXMPUtils::LocatePacket(file.data(), Size(file));
      EXPECT_EQ(info.mOffset, front.size()) << code;
      EXPECT_EQ(info.mLength, length) << code;
      EXPECT_EQ(info.mEncoding, code);
      EXPECT_TRUE(info.mHasWrapper == hasWrapper && !info.mIsReadOnly) << code;
      ExpectReadsAs(file, mMeta);
    };
    const auto widen = [&, code = encoding,
                        zeros = std::string(unit - 1, '\0')](std::string ascii) {
      std::string wide;
      for (const char c : ascii) wide += (code & 1) != 0 ? c + zeros : zeros + c;
      return wide;
    };
    const std::string declaration = "<?xml version='1.0' encoding='" + name + "'?>\n";
    const std::string packet = Write(encoding, static_cast<XMP_StringLen>(100 * unit));
    EXPECT_EQ(Write(encoding), Write(encoding, 2048));
    EXPECT_EQ(Write(encoding | kXMP_ExactPacketLength, Size(packet)), packet);
    if (unit > 1) {
      ExpectError([&] { Write(rows[1].mEncoding | kXMP_ExactPacketLength, 9999); }, "110 ");
      std::string quoted = packet;
      for (int i = 0; i < 2; ++i) quoted.replace(quoted.find(widen("\"")), unit, widen("'"));
      expectFound("", quoted.size(), quoted, true);
    }
    for (const std::string& junk : {std::string(), mark, std::string("junk"), widen(declaration),
                                    std::string("\0<\0\xFF\n", 5), std::string("odd\0", 4)}) {
      // The last could be a trailer in two bytes, but begins where no character of the packet does.
      for (const std::string& after : {std::string(), std::string("\xFE junk <?pi?>"),
                                       unit == 1 ? "\n" : "x" + widen("<?xpacket end=")}) {
        expectFound(junk, packet.size(), packet + after, true);
      }
    }
    // Without a wrapper: with and without mark and declaration, white space around.
    const std::string bare = Write(encoding | kXMP_OmitPacketWrapper);
    for (const std::string& front : {std::string(), mark}) {
      for (const std::string& lead : {std::string(), declaration, std::string("\n ")}) {
        expectFound(front + widen(lead), bare.size() - unit, bare, false);  // less the last newline
      }
    }
  }
  const std::string readOnly = Write(kXMP_ReadOnlyPacket | kXMP_EncodeUTF16Little);
  EXPECT_TRUE(TXMPUtils::LocatePacket(readOnly.data(), Size(readOnly)).mIsReadOnly);
}

// The old packet, what precedes it, and what precedes the new one; the same bytes follow both.
TEST_F(PacketTest, ReplacingKeepsTheRestOfTheFile) {
  const std::string ascii = "<?xml version='1.0' encoding='us-ascii'?>";
  const std::string utf8 = "<?xml version='1.0' encoding='UTF-8'   ?>";
  const std::string mark = "\xEF\xBB\xBF";
  Meta edited(mMeta);
  edited.SetProperty(kQ, "c", "\xC3\xA9");
  for (const XMP_OptionBits form :
       {XMP_OptionBits{0}, kXMP_EncodeUTF16Big, kXMP_EncodeUTF32Little, kXMP_ReadOnlyPacket,
        kXMP_OmitPacketWrapper, kXMP_OmitPacketWrapper | kXMP_EncodeUTF16Little}) {
    const bool isWide = (form & kXMP_EncodingMask) != 0;
    for (const auto& [front, newFront] :
         {std::pair(std::string(), std::string()), std::pair(ascii, utf8),
          std::pair(mark + ascii, mark + utf8)}) {
      if (isWide && !front.empty()) continue;
      SCOPED_TRACE(std::to_string(form) + front);
      const std::string old = Write(form), after = (form & kXMP_OmitPacketWrapper) ? "" : "\xFF\n";
      std::string file = front + old + after, expected;
      TXMPUtils::ReplacePacket(file.data(), Size(file), edited, &file);
      edited.SerializeToBuffer(&expected, form);
      const bool isPadded = (form & (kXMP_OmitPacketWrapper | kXMP_ReadOnlyPacket)) == 0;
      if (isPadded) edited.SerializeToBuffer(&expected, form | kXMP_ExactPacketLength, Size(old));
      EXPECT_EQ(file, newFront + expected + after);
    }
  }
  const std::string tight = Write(kXMP_ExactPacketLength, Size(Write(kXMP_ReadOnlyPacket)));
  std::string renewed, expected;
  TXMPUtils::ReplacePacket(tight.data(), Size(tight), edited, &renewed);
  edited.SerializeToBuffer(&expected);
  EXPECT_EQ(renewed, expected);
  ExpectError([&] { TXMPUtils::ReplacePacket(tight.data(), Size(tight) - 1, edited, &renewed); },
              "203 ");
  EXPECT_EQ(renewed, expected);
  ExpectError([&] { TXMPUtils::ReplacePacket(tight.data(), Size(tight), edited, nullptr); }, "4 ");
}

TEST_F(PacketTest, BrokenEncodingsAreRefusedWithTheirPlace) {
  const std::string packet = Write(kXMP_EncodeUTF16Big);
  const std::size_t place = packet.find(std::string("\0<\0/\0q\0:\0a", 10));
  for (const char* surrogate : {"\xD8\x00", "\xDC\x00"}) {
    std::string broken = packet;
    broken.replace(place, 3, std::string(surrogate, 2) + '\0');
    ExpectError([&] { Parse(broken); }, "205 7:14: ");
    ExpectError([&] { Parse("\xEF\xBB\xBF\n" + broken); }, "205 7:");  // a mark of another encoding
  }
  const std::string wide = Write(kXMP_EncodeUTF32Little | kXMP_OmitPacketWrapper);
  for (const Row& end : Rows(R"(\x00\x00\x11\x00 ;; \x00\xD8\x00\x00\x00\xDC\x00\x00 ;; a)")) {
    ExpectError([&] { Parse(wide + end[0]); }, "205 15:1: ");
  }
}

// Fields: properties, and the declarations that are written for them, in order.
TEST_F(PacketTest, PrefixesAreTheFilesOwnAndNeverCollide) {
  Meta::RegisterNamespace("urn:pre:registered#", "regd", nullptr);
  for (const Row& row : Rows(R"(
      <other:a xmlns:other='urn:q#'/> => other=urn:q# ;; <a xmlns='urn:q#'/> => q=urn:q#
      <a xmlns='urn:1#'/><p:b xmlns:p='urn:1#'/> => p=urn:1#
      <a xmlns='urn:1#'/><b xmlns='urn:2#'/> => ns1=urn:1# ns2=urn:2#
      <a xmlns='urn:2#'/><ns1:a xmlns:ns1='urn:1#'/> => ns2=urn:2# ns1=urn:1#
      <p:a xmlns:p='urn:1#'/><p:b xmlns:p='urn:2#'/><p:c xmlns:p='urn:q#'/> => p=urn:1# ns1=urn:2# q=urn:q#
      <q:a><rdf:Bag><rdf:li rdf:value='' s:z='1'/></rdf:Bag></q:a> => q=urn:q# s=urn:s#
      <x:a xmlns:x='urn:x#'/><XmlY:a xmlns:XmlY='urn:y#'/> => ns1=urn:x# ns2=urn:y#
      <a xmlns='adobe:ns:meta/'/> => x=adobe:ns:meta/
      <p:a xmlns:p='urn:a&amp;&quot;&lt;'/> => p=urn:a&amp;&quot;&lt;
      <q:a xmlns:rdf='urn:q2#' rdf:f='1'/> => q=urn:q# ns1=urn:q2#)")) {
    const Meta meta = Parse(Described(row[0]));
    const std::string packet = Serialize(meta);
    const std::regex declaration("\n   xmlns:([^=]+)=\"([^\"]*)\"");
    std::string declarations;
    for (std::sregex_iterator at(packet.begin(), packet.end(), declaration), end; at != end; ++at) {
      declarations += at->format(declarations.empty() ? "$1=$2" : " $1=$2");
    }
    EXPECT_EQ(declarations, row[1]) << packet;
    ExpectReadsAs(packet, meta);
  }
}

}  // namespace
