#include "XMPTestSupport.h"

namespace {

using namespace xmptest;

class DataModelTest : public testing::Test {
 protected:
  DataModelTest() { RegisterTestNamespaces(); }

  Meta mMeta;
};

TEST_F(DataModelTest, BuildsEveryForm) {
  mMeta.SetProperty(kQ, "text", "a");
  mMeta.SetProperty(kQ, "text", std::string("b"));
  mMeta.SetProperty(kQ, "uri", "http://x.example/", kXMP_PropValueIsURI);
  mMeta.SetProperty(kQ, "noFields", nullptr, kXMP_PropValueIsStruct);
  mMeta.SetProperty(kQ, "noItems", nullptr, kXMP_PropArrayIsAlternate);
  mMeta.SetStructField(kQ, "made", kS, "f", "1");
  mMeta.SetStructField(kQ, "made/s:inner", kS, "g", std::string("2"));
  mMeta.AppendArrayItem(kQ, "bag", kXMP_PropValueIsArray, "1");
  mMeta.AppendArrayItem(kQ, "bag", 0, "http://2.example/", kXMP_PropValueIsURI);
  mMeta.AppendArrayItem(kQ, "made/s:list", kXMP_PropArrayIsOrdered, nullptr,
                        kXMP_PropValueIsStruct);
  mMeta.SetStructField(kQ, "made/s:list[last()]", kS, "h", "3");
  mMeta.AppendArrayItem(kQ, "bag", kXMP_PropValueIsArray, nullptr, kXMP_PropValueIsArray);
  mMeta.AppendArrayItem(kQ, "bag[last()]", 0, "nested");
  mMeta.SetProperty(kQ, "bag[1]", "one");
  mMeta.SetProperty(kQ, "bag[1]/?s:q", "qualifies");
  mMeta.SetProperty(kQ, "bag[1]/?xml:lang", "en");
  EXPECT_EQ(Show(mMeta),
            "{q:text='b' q:uri=<http://x.example/> q:noFields={} q:noItems=alt() "
            "q:made={s:f='1' s:inner={s:g='2'} s:list=seq({s:h='3'})} "
            "q:bag=bag('one'/xml:lang='en'/s:q='qualifies' <http://2.example/> bag('nested'))}");

  mMeta.SetProperty(kQ, "uri", "no more");
  const std::pair<const char*, XMP_OptionBits> rows[] = {
      {"uri", 0},
      {"noItems", kXMP_PropValueIsArray | kXMP_PropArrayIsOrdered | kXMP_PropArrayIsAlternate},
      {"bag[1]", kXMP_PropHasQualifiers | kXMP_PropHasLang},
      {"bag[1]/?s:q", kXMP_PropIsQualifier}};
  for (const auto& [path, wanted] : rows) {
    XMP_OptionBits options = 0xBAD;
    EXPECT_TRUE(mMeta.GetProperty(kQ, path, nullptr, &options));
    EXPECT_EQ(options, wanted) << path;
  }
  EXPECT_EQ(mMeta.CountArrayItems(kQ, "bag"), 3);
  EXPECT_EQ(mMeta.CountArrayItems(kQ, "absent"), 0);
}

TEST_F(DataModelTest, CopiesAreIndependent) {
  mMeta.AppendArrayItem(kQ, "bag", kXMP_PropValueIsArray, "1");
  mMeta.SetProperty(kQ, "bag[1]/?s:q", "x");
  Meta copy(mMeta);
  mMeta.SetProperty(kQ, "bag[1]", "changed");
  mMeta.SetProperty(kQ, "bag[1]/?s:q", "changed");
  EXPECT_EQ(Show(copy), "{q:bag=bag('1'/s:q='x')}");
  copy = mMeta;
  const Meta moved(std::move(copy));
  copy = Meta();
  EXPECT_EQ(Show(copy), "{}");
  EXPECT_EQ(Serialize(moved), Serialize(mMeta));
}

TEST_F(DataModelTest, RefusesAndStaysAsItWas) {
  mMeta =
      Parse(Described("<q:text>a</q:text><q:struct s:f='1'/><q:typed rdf:datatype='u'>1</q:typed>"
                      "<q:seq><rdf:Seq><LI>1</LI></rdf:Seq></q:seq>"));
  const std::string before = Serialize(mMeta);
  const auto options = [](const std::string& words) {
    const auto bit = [&](const char* word, XMP_OptionBits bits) {
      return words.find(word) == words.npos ? 0 : bits;
    };
    return bit("bag", kXMP_PropValueIsArray) | bit("struct", kXMP_PropValueIsStruct) |
           bit("uri", kXMP_PropValueIsURI) | bit("unknown", 0x8);
  };
  for (const Row& row : Rows(R"(
      struct => x => => 102 ..."struct" ;; seq => x => => 102 ..."seq"
      seq => null => bag => 103 ...another kind ;; new => x => struct => 103 ...cannot have a value
      new => null => => 4 ...no value ;; new => null => struct bag => 103 ...several kinds
      new => x => unknown => 103 ...bits ;; seq[2] => x => => 104 ...has 1 items
      new[1] => x => => 102 ..."new" is absent ;; text/?rdf:datatype => x => => 102 ...only be read
      new/?s:q => x => => 102 ...absent, so it cannot be qualified ;; text => ab\xC3( => => 205 ...byte 3
      text/?xml:lang => en => uri => 103 ...plain text
      text/?xml:lang => null => struct => 103 ...plain text ;; text => a\x01 => => 205 ...byte 2\s
      typed => x => uri => 103 ...rdf:datatype ;; text => \xED\xA0\x80 => => 205 ...not UTF-8
      text => \xEF\xBF\xBE => => 205 ...XML cannot represent ;; text => a\x00b => => 205 ...byte 2)")) {
    SCOPED_TRACE(row[0] + ' ' + row[3]);
    const auto set = [&](auto value) {
      ExpectError([&] { mMeta.SetProperty(kQ, row[0].c_str(), value, options(row[2])); }, row[3]);
    };
    row[1] == "null" ? set(nullptr) : set(row[1]);
    EXPECT_EQ(Serialize(mMeta), before);
  }
  const Row deep{"$deep", Repeated("/s:f", kXMP_MaxNesting - 1)};
  for (const Row& row : Rows(R"(
      text => bag => 102 ..."text"  ;; new => => 103 ...no kind of array
      new => struct => 103 ...not name an array ;; seq => bag => 103 ...another kind
      deep$deep => bag => 102 ...nested too deeply)")) {
    SCOPED_TRACE(row[0] + ' ' + row[2]);
    const std::string path = Replaced(row[0], {deep});
    ExpectError([&] { mMeta.AppendArrayItem(kQ, path.c_str(), options(row[1]), "x"); }, row[2]);
    EXPECT_EQ(Serialize(mMeta), before);
  }
  ExpectError([&] { mMeta.SetStructField(kQ, "struct", kS, "f", "\x0B"); }, "205 ...byte 1");
  ExpectError([&] { mMeta.CountArrayItems(kQ, "struct"); }, "102 ...\"struct\"");
  EXPECT_EQ(Serialize(mMeta), before);
}

TEST_F(DataModelTest, EditsKeepTheRest) {
  mMeta = Parse(Described(R"(<!--1--><q:a>1</q:a><!--2--><q:b/>
      <q:c><rdf:Bag><!--3--><LI>1</LI><!--4--></rdf:Bag></q:c>
      <q:d RES><rdf:value>v</rdf:value><!--5--><s:q/></q:d>
      <q:e rdf:resource='u' s:q='w'/><q:f rdf:resource='u' s:q='w'/>)"));
  for (const char* path : {"absent", "c[1]", "c[1]", "a", "b", "d/?s:q"}) {
    mMeta.DeleteProperty(kQ, path);
  }
  mMeta.SetProperty(kQ, "e", "n", kXMP_PropValueIsURI);
  mMeta.SetProperty(kQ, "f", "n");
  EXPECT_EQ(Show(mMeta), "{q:c=bag() q:d='v' q:e=<n>/s:q='w' q:f='n'/s:q='w'}");
  ExpectReadsAs(Described(R"(<!--1--><!--2--><q:c><rdf:Bag><!--3--><!--4--></rdf:Bag></q:c>
      <!--5--><q:d RES><rdf:value>v</rdf:value></q:d><q:e rdf:resource='n' s:q='w'/>
      <q:f rdf:value='n' s:q='w'/>)"),
                mMeta);
  for (const char* path : {"c", "d", "e", "f"}) mMeta.DeleteProperty(kQ, path);
  ExpectReadsAs(Described("<!--1--><!--2--><!--5-->"), mMeta);
}

// Finding goes through an index once there are many; positions have to follow every change.
TEST_F(DataModelTest, ManyPropertiesAreFoundAfterEveryChange) {
  constexpr int kCount = 60;
  const auto name = [](int i) { return "p" + std::to_string(i); };
  for (int i = 0; i < kCount; ++i) mMeta.SetProperty(kQ, name(i).c_str(), name(i));
  for (int removed = 0; removed < kCount; removed += 7)
    mMeta.DeleteProperty(kQ, name(removed).c_str());
  mMeta.SetProperty(kQ, "p0", "again");
  const Meta copy(mMeta);
  for (int i = 0; i < kCount; ++i) {
    std::string value = "absent";
    copy.GetProperty(kQ, name(i).c_str(), &value, nullptr);
    EXPECT_EQ(value, i == 0 ? "again" : i % 7 == 0 ? "absent" : name(i));
  }
}

TEST_F(DataModelTest, EqualityIgnoresOrderButNotContent) {
  const std::string a = "<q:a>1</q:a>", b = "<q:b><rdf:Seq><LI>x</LI><LI>y</LI></rdf:Seq></q:b>";
  const Meta left = Parse(Described(a + b));
  const auto equals = [&](const std::string& packet) {
    return AreEqual(left, Parse(packet), xmptoolkit::Equality::kMetadata);
  };
  const std::string reordered = Described(b + "<!--c-->" + a);
  EXPECT_TRUE(equals(reordered));
  for (const Row& edit : Rows(R"(
      x</rdf:li><rdf:li>y => y</rdf:li><rdf:li>x ;; rdf:Seq => rdf:Bag ;; q:a> => s:a>
      <q:a> => <q:a xml:lang='en'> ;; <q:a>1</q:a> => <q:a rdf:resource='1'/>
      <q:a>1</q:a> => ;; rdf:about='' => rdf:about='x')")) {
    EXPECT_FALSE(equals(Replaced(reordered, {edit}))) << edit[0];
  }
  // As files, packets also differ by order and by what describes the file.
  const auto isSameFile = [](const std::string& one, const std::string& other) {
    return AreEqual(Parse(one), Parse(other), xmptoolkit::Equality::kFile);
  };
  EXPECT_FALSE(isSameFile(Described(a + b), Described(b + a)));
  const std::string meta = "<x:xmpmeta xmlns:x='adobe:ns:meta/'>" + Described(a) + "</x:xmpmeta>";
  EXPECT_FALSE(isSameFile(meta, Replaced(meta, {{"meta/'", "meta/' x:xmptk='1'"}})));
}

}  // namespace
