#include <random>
#include <string>

#include "XMPTestSupport.h"

namespace {

using namespace xmptest;
using xmptoolkit::Equality;

// A packet as strangers write them, with everything that has to survive.
constexpr std::string_view kForeign = R"(<?xpacket begin='' id='W5M0MpCehiHzreSzNTczkc9d'?>
<!--before-->
<m:xmpmeta xmlns:m='adobe:ns:meta/' m:xmptk='Tool &lt;1&gt;' xmlns:v='urn:v' v:extra='1' v:e='' plain='2' xml:lang='en'>
<!--in meta-->
<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#' xmlns:q='urn:q#'
xmlns:mine='urn:s#'>
<!--in RDF--><rdf:Description rdf:about='uuid:1' q:attribute='a&#10;b'><!--first-->
<q:text>a<!--inside-->b</q:text>
<q:list><!--list--><rdf:Alt><!--item--><rdf:li xml:lang='x-default'>x</rdf:li><!--last--></rdf:Alt>
</q:list>
<q:struct rdf:parseType='Resource'><!--field--><mine:f>1</mine:f><!--end of struct--></q:struct>
<q:odd rdf:parseType='Resource'><!--value--><rdf:value xml:lang='de'>v</rdf:value><!--qualifier-->
<mine:q>w</mine:q></q:odd>
<q:bag rdf:parseType='Resource'><rdf:value><rdf:Bag><!--in value--></rdf:Bag></rdf:value><mine:q/>
</q:bag><q:link rdf:resource='http://x.example/' mine:q='w'/><!--end of first-->
</rdf:Description><!--between-->
<rdf:Description rdf:about='uuid:1'><q:more/><!--end--></rdf:Description><!--after--></rdf:RDF>
<!--after RDF--></m:xmpmeta><?keep this?><?too?>
<?xpacket end='w'?>)";

TEST(RoundTripTest, ForeignPacketsKeepEverything) {
  const Meta meta = Parse(kForeign);
  const std::string packet = Serialize(meta);
  ExpectReadsAs(packet, Meta(meta));
  std::size_t at = 0;
  for (const Row& row : Rows(R"(
      <!--before--> ;; x:xmptk="Tool &lt;1>" xmlns:v="urn:v" v:extra="1" v:e="" plain="2" xml:lang="en"
      <!--in meta--> ;; <!--in RDF--> ;; rdf:about="uuid:1" ;; xmlns:mine="urn:s#"
      <q:attribute>a\nb< ;; <!--first--> ;; <!--inside--> ;; <q:text>ab</q:text>
      <!--list--> ;; <q:list> ;; <!--item--> ;; <!--last--> ;; </rdf:Alt>
      <!--field--> ;; <!--end of struct--> ;; </q:struct> ;; <!--value-->
      <rdf:value xml:lang="de"> ;; <!--qualifier-->
      <!--in value--> ;; <q:link rdf:resource="http://x.example/" mine:q="w"/> ;; <!--end of first-->
      <!--between--> ;; <q:more/> ;; <!--end--> ;; </rdf:Description> ;; <!--after-->
      <!--after RDF--> ;; </x:xmpmeta> ;; <?keep this?> ;; <?too?>)")) {
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
  EXPECT_TRUE(Serialize(Parse(Serialize(meta))) == Serialize(meta));  // too long to show
}

// One more namespace, and nobody could read what is written.
TEST(RoundTripTest, NamespacesAreLimitedToWhatCanBeReadAgain) {
  const auto packetOf = [](const std::string& more) {
    return "<x:xmpmeta xmlns:x='adobe:ns:meta/' xmlns:m='m' m:a='1'>" +
           Described(Repeated("<n#:a xmlns:n#='n#'/>", 7999) + more) + "</x:xmpmeta>";
  };
  const Meta most = Parse(packetOf("")), tooMany = Parse(packetOf("<q:a/>"));
  ExpectReadsAs(Serialize(most), most);
  std::string packet = "untouched";
  ExpectError([&] { tooMany.SerializeToBuffer(&packet); }, "203 more than 8000");
  EXPECT_EQ(packet, "untouched");
}

}  // namespace
