#include <random>
#include <string>

#include "XMPTestSupport.h"

namespace {

using namespace xmptest;
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
    static const std::vector<Row> kPieces = Rows(R"(
        a ;; \s ;; \n ;; \t ;; \r ;; < ;; & ;; > ;; " ;; ' ;; ]]> ;; &#65; ;; <!-- ;; \xC3\xA9
        \xE2\x82\xAC ;; \xF0\x9F\x8E\xAC ;; \xEF\xBB\xBF ;; \xC2\x85 ;; \xE2\x80\xA8
        \xEF\xBF\xBD ;; \x7F)");
    std::string text;
    for (int i = Pick(5); i > 0; --i) text += kPieces[static_cast<std::size_t>(Pick(21))][0];
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
  }
}

// A packet as strangers write them, with everything that has to survive.
constexpr std::string_view kForeign = R"(<?xpacket begin='' id='W5M0MpCehiHzreSzNTczkc9d'?>
<!--before-->
<m:xmpmeta xmlns:m='adobe:ns:meta/' m:xmptk='Tool &lt;1&gt;' xmlns:v='urn:v' v:extra='1' v:e='' plain='2'>
<!--in meta-->
<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#' xmlns:q='urn:q#'
xmlns:mine='urn:s#'>
<!--in RDF--><rdf:Description rdf:about='uuid:1' q:attribute='a&#10;b'><!--first-->
<q:text>a<!--inside-->b</q:text>
<q:list><!--list--><rdf:Alt><!--item--><rdf:li xml:lang='x-default'>x</rdf:li><!--last--></rdf:Alt>
</q:list>
<q:struct rdf:parseType='Resource'><!--field--><mine:f>1</mine:f><!--end of struct--></q:struct>
<q:odd rdf:parseType='Resource'><rdf:value xml:lang='de'>v</rdf:value><!--qualifier-->
<mine:q>w</mine:q></q:odd>
<q:link rdf:resource='http://x.example/' mine:q='w'/><!--end of first-->
</rdf:Description><!--between-->
<rdf:Description rdf:about='uuid:1'><q:more/><!--end--></rdf:Description><!--after--></rdf:RDF>
<!--after RDF--></m:xmpmeta><?keep this?>
<?xpacket end='w'?>)";

TEST(RoundTripTest, ForeignPacketsKeepEverything) {
  const Meta meta = Parse(kForeign);
  const std::string packet = Serialize(meta);
  ExpectReadsAs(packet, meta);
  EXPECT_EQ(Serialize(Parse(packet)), packet);
  EXPECT_EQ(Serialize(Meta(meta)), packet);
  std::size_t at = 0;
  for (const Row& row : Rows(R"(
      <!--before--> ;; x:xmptk="Tool &lt;1>" xmlns:v="urn:v" v:extra="1" v:e="" plain="2"
      <!--in meta--> ;; <!--in RDF--> ;; rdf:about="uuid:1" ;; xmlns:mine="urn:s#"
      <q:attribute>a\nb< ;; <!--first--> ;; <!--inside--> ;; <q:text>ab</q:text>
      <!--list--> ;; <q:list> ;; <!--item--> ;; <!--last--> ;; </rdf:Alt>
      <!--field--> ;; <!--end of struct--> ;; </q:struct>
      <rdf:value xml:lang="de"> ;; <!--qualifier-->
      <q:link rdf:resource="http://x.example/" mine:q="w"/> ;; <!--end of first-->
      <!--between--> ;; <q:more/> ;; <!--end--> ;; </rdf:Description> ;; <!--after-->
      <!--after RDF--> ;; </x:xmpmeta> ;; <?keep this?>)")) {
    const std::size_t found = packet.find(row[0], at);
    ASSERT_NE(found, std::string::npos) << row[0] << " is missing or misplaced in\n" << packet;
    at = found + 1;
  }
}

TEST(RoundTripTest, EveryPrefixAndEveryDamagedByteIsReadOrRefused) {
  const std::string packet = Serialize(Parse(kForeign));
  const std::size_t padding = packet.rfind(" \n<?xpacket end");
  for (std::size_t length = 0; length < packet.size(); ++length) {
    if (length == packet.find("  \n", padding - 2000)) length = padding;
    EXPECT_NE(ErrorOf([&] { Parse(std::string_view(packet).substr(0, length)); }), "none")
        << length;
  }
  std::mt19937 random(1);
  for (int i = 0; i < 3000; ++i) {
    std::string damaged(kForeign);
    for (int times = 0; times < 2; ++times) {
      damaged[random() % damaged.size()] = "<>&'\"/ :=-?!\0\xFFqx"[random() % 16];
    }
    SCOPED_TRACE(damaged);
    Meta meta;
    if (ErrorOf([&] { meta = Parse(damaged); }) == "none") ExpectReadsAs(Serialize(meta), meta);
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
  EXPECT_TRUE(AreEqual(meta, Parse(Serialize(meta)), Equality::kFile));  // too long to show
}

// One more namespace, and nobody could read what is written.
TEST(RoundTripTest, NamespacesAreLimitedToWhatCanBeReadAgain) {
  std::string meta = "<x:xmpmeta xmlns:x='adobe:ns:meta/' xmlns:m='m' m:a='1'>", properties;
  for (int i = 1; i < 8000; ++i) {
    const std::string name = "n" + std::to_string(i);
    properties.append("<").append(name).append(":a xmlns:").append(name).append("='").append(name);
    properties += "'/>";
  }
  const std::string end = "</x:xmpmeta>";
  const Meta most = Parse(meta + Described(properties) + end);
  ExpectReadsAs(Serialize(most), most, Equality::kMetadata);
  std::string packet = "untouched";
  const Meta tooMany = Parse(meta + Described(properties + "<q:a/>") + end);
  ExpectError([&] { tooMany.SerializeToBuffer(&packet); }, "203 more than 8000");
  EXPECT_EQ(packet, "untouched");
}

}  // namespace
