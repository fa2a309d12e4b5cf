#include <random>
#include <string>

#include <gmock/gmock.h>

#include "XMPTestSupport.h"

namespace {

using namespace xmptest;
using testing::StartsWith;
using xmptoolkit::Equality;

// Grows random metadata through the toolkit's own operations, so that everything that can be set is
// met sooner or later.
class RandomMetadata {
 public:
  explicit RandomMetadata(unsigned seed) : mRandom(seed) {
    const int count = Pick(12);
    for (int i = 0; i < count; ++i) Fill("p" + std::to_string(i), 1);
  }

  Meta mMeta;

 private:
  int Pick(int below) { return std::uniform_int_distribution<int>(0, below - 1)(mRandom); }

  std::string Text() {
    static const char* const kPieces[] = {"a",
                                          " ",
                                          "\n",
                                          "\t",
                                          "\r",
                                          "<",
                                          "&",
                                          ">",
                                          "\"",
                                          "'",
                                          "]]>",
                                          "&#65;",
                                          "<!--",
                                          "\xC3\xA9",
                                          "\xE2\x82\xAC",
                                          "\xF0\x9F\x8E\xAC",
                                          "\xEF\xBB\xBF",
                                          "\xC2\x85",
                                          "\xE2\x80\xA8",
                                          "\xEF\xBF\xBD",
                                          "\x7F"};
    std::string text;
    for (int i = Pick(5); i > 0; --i) text += kPieces[Pick(std::size(kPieces))];
    return text;
  }

  void Fill(const std::string& path, int depth) {
    const int kind = depth < 5 ? Pick(6) : Pick(2);
    if (kind < 2) {
      mMeta.SetProperty(kQ, path.c_str(), Text(), kind == 1 ? kXMP_PropValueIsURI : 0);
    } else if (kind == 2) {
      mMeta.SetProperty(kQ, path.c_str(), nullptr, kXMP_PropValueIsStruct);
      for (int i = Pick(4); i > 0; --i) Fill(path + "/s:f" + std::to_string(i), depth + 1);
    } else {
      mMeta.SetProperty(kQ, path.c_str(), nullptr, kXMP_PropValueIsArray << (kind - 3));
      for (int i = Pick(4); i > 0; --i) AppendItem(path, depth);
    }
    if (Pick(4) == 0) mMeta.SetProperty(kQ, (path + "/?xml:lang").c_str(), "en-US");
    if (Pick(4) == 0 && depth < 5) Fill(path + "/?s:q" + std::to_string(Pick(3)), depth + 1);
  }

  void AppendItem(const std::string& path, int depth) {
    constexpr XMP_OptionBits kKinds[] = {0, kXMP_PropValueIsURI, kXMP_PropValueIsStruct,
                                         kXMP_PropValueIsArray};
    const int kind = Pick(4);
    mMeta.AppendArrayItem(kQ, path.c_str(), 0, kind < 2 ? "item" : nullptr, kKinds[kind]);
    const std::string item = path + "[last()]";
    if (kind == 0) mMeta.SetProperty(kQ, item.c_str(), Text());
    if (kind == 2 && depth < 5) Fill(item + "/s:field", depth + 1);
    if (Pick(3) == 0 && depth < 5) Fill(item + "/?q:note", depth + 1);
  }

  std::mt19937 mRandom;
};

TEST(RoundTripTest, RandomTreesComeBack) {
  RegisterTestNamespaces();
  for (unsigned seed = 0; seed < 300; ++seed) {
    SCOPED_TRACE(seed);
    const RandomMetadata random(seed);
    const std::string packet = Serialize(random.mMeta);
    const Meta again = Parse(packet);
    ASSERT_EQ(Show(again), Show(random.mMeta)) << packet;
    ASSERT_EQ(Serialize(again), packet);
    const std::string compact = Serialize(random.mMeta, kXMP_UseCompactFormat);
    ASSERT_TRUE(AreEqual(random.mMeta, Parse(compact), Equality::kMetadata)) << compact;
    ASSERT_EQ(Serialize(Parse(compact), kXMP_UseCompactFormat), compact);
  }
}

// A packet as strangers write them, with everything that has to survive.
constexpr std::string_view kForeign =
    "<?xpacket begin='\xEF\xBB\xBF' id='W5M0MpCehiHzreSzNTczkc9d'?>\n"
    "<!--before-->\n"
    "<m:xmpmeta xmlns:m='adobe:ns:meta/' m:xmptk='Tool &lt;1&gt;' xmlns:v='urn:v' v:extra='1' "
    "plain='2'><!--in meta-->\n"
    "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#' xmlns:q='urn:q#' "
    "xmlns:mine='urn:s#'>\n"
    "<!--in RDF--><rdf:Description rdf:about='uuid:1' q:attribute='a&#10;b'><!--first-->\n"
    "<q:text>a<!--inside-->b</q:text>\n"
    "<q:list><!--list--><rdf:Alt><!--item--><rdf:li xml:lang='x-default'>x</rdf:li><!--end of "
    "list--></rdf:Alt></q:list>\n"
    "<q:struct rdf:parseType='Resource'><!--field--><mine:f>1</mine:f><!--end of "
    "struct--></q:struct>\n"
    "<q:odd rdf:parseType='Resource'><rdf:value "
    "xml:lang='de'>v</rdf:value><!--qualifier--><mine:q>w</mine:q></q:odd>\n"
    "<q:link rdf:resource='http://x.example/' mine:q='w'/><!--end of first-->\n"
    "</rdf:Description><!--between-->\n"
    "<rdf:Description "
    "rdf:about='uuid:1'><q:more/><!--end--></rdf:Description><!--after--></rdf:RDF>\n"
    "<!--after RDF--></m:xmpmeta><?keep this?>\n"
    "<?xpacket end='w'?>";

TEST(RoundTripTest, ForeignPacketsKeepEverything) {
  const Meta meta = Parse(kForeign);
  const std::string packet = Serialize(meta);
  EXPECT_TRUE(AreEqual(meta, Parse(packet), Equality::kFile)) << packet;
  EXPECT_EQ(Serialize(Parse(packet)), packet);
  EXPECT_EQ(Serialize(Meta(meta)), packet);
  std::size_t at = 0;
  for (const char* part : {"<!--before-->",
                           "x:xmptk=\"Tool &lt;1>\" xmlns:v=\"urn:v\" v:extra=\"1\" plain=\"2\"",
                           "<!--in meta-->",
                           "<!--in RDF-->",
                           "rdf:about=\"uuid:1\"",
                           "xmlns:mine=\"urn:s#\"",
                           "<q:attribute>a\nb<",
                           "<!--first-->",
                           "<!--inside-->",
                           "<q:text>ab</q:text>",
                           "<!--list-->",
                           "<q:list>",
                           "<!--item-->",
                           "<!--end of list-->",
                           "</rdf:Alt>",
                           "<!--field-->",
                           "<!--end of struct-->",
                           "</q:struct>",
                           "<rdf:value xml:lang=\"de\">",
                           "<!--qualifier-->",
                           "<q:link rdf:resource=\"http://x.example/\" mine:q=\"w\"/>",
                           "<!--end of first-->",
                           "<!--between-->",
                           "<q:more/>",
                           "<!--end-->",
                           "</rdf:Description>",
                           "<!--after-->",
                           "<!--after RDF-->",
                           "</x:xmpmeta>",
                           "<?keep this?>"}) {
    const std::size_t found = packet.find(part, at);
    ASSERT_NE(found, std::string::npos) << part << " is missing or misplaced in\n" << packet;
    at = found + 1;
  }
}

TEST(RoundTripTest, EveryPrefixAndEveryDamagedByteIsReadOrRefused) {
  const std::string packet = Serialize(Parse(kForeign)).substr(0);
  const std::size_t padding = packet.rfind(" \n<?xpacket end");
  for (std::size_t length = 0; length < packet.size(); ++length) {
    if (length == packet.find("  \n", padding - 2000)) length = padding;
    EXPECT_THAT(ErrorOf([&] { Parse(std::string_view(packet).substr(0, length)); }),
                testing::Ne("none"))
        << length;
  }
  std::mt19937 random(1);
  for (int i = 0; i < 3000; ++i) {
    std::string damaged(kForeign);
    for (int times = 0; times < 2; ++times) {
      damaged[random() % damaged.size()] = "<>&'\"/ :=-?!\0\xFFqx"[random() % 16];
    }
    if (ErrorOf([&] { Parse(damaged); }) != "none") continue;
    const Meta meta = Parse(damaged);
    const std::string again = Serialize(meta);
    EXPECT_TRUE(AreEqual(meta, Parse(again), Equality::kFile)) << damaged << "\n" << again;
  }
}

TEST(RoundTripTest, LongValuesAndManyItems) {
  RegisterTestNamespaces();
  Meta meta;
  meta.SetProperty(kQ, "long", std::string(12'000'000, 'x'));
  for (int i = 0; i < 20'000; ++i) {
    meta.AppendArrayItem(kQ, "seq", kXMP_PropArrayIsOrdered, nullptr, kXMP_PropValueIsStruct);
    meta.SetStructField(kQ, "seq[last()]", kS, "f", std::to_string(i));
    meta.SetProperty(kQ, ("p" + std::to_string(i)).c_str(), "v");
  }
  EXPECT_TRUE(AreEqual(meta, Parse(Serialize(meta)), Equality::kFile));
}

}  // namespace
