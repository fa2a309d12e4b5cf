#include <functional>
#include <string>

#include <gmock/gmock.h>

#include "XMPTestSupport.h"

namespace {

using namespace xmptest;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class DataModelTest : public testing::Test {
 protected:
  DataModelTest() { RegisterTestNamespaces(); }

  XMP_OptionBits OptionsOf(const char* path) const {
    XMP_OptionBits options = 0;
    EXPECT_TRUE(mMeta.GetProperty(kQ, path, nullptr, &options)) << path;
    return options;
  }

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
  EXPECT_EQ(OptionsOf("uri"), 0u);
  EXPECT_EQ(OptionsOf("noItems"),
            kXMP_PropValueIsArray | kXMP_PropArrayIsOrdered | kXMP_PropArrayIsAlternate);
  EXPECT_EQ(OptionsOf("bag[1]"), kXMP_PropHasQualifiers | kXMP_PropHasLang);
  EXPECT_EQ(OptionsOf("bag[1]/?s:q"), kXMP_PropIsQualifier);
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
  EXPECT_TRUE(AreEqual(copy, mMeta, xmptoolkit::Equality::kFile));
  const Meta moved(std::move(copy));
  copy = Meta();
  EXPECT_EQ(Show(copy), "{}");
  EXPECT_TRUE(AreEqual(moved, mMeta, xmptoolkit::Equality::kFile));
}

TEST_F(DataModelTest, RefusesAndStaysAsItWas) {
  mMeta =
      Parse(Described("<q:text>a</q:text><q:struct rdf:parseType='Resource'><s:f>1</s:f>"
                      "</q:struct><q:seq><rdf:Seq><rdf:li>1</rdf:li></rdf:Seq></q:seq>"
                      "<q:typed rdf:datatype='urn:int'>1</q:typed>"));
  std::string deep = "deep";
  for (int i = 1; i < kXMP_MaxNesting; ++i) deep += "/s:f";
  const auto set = [](const char* path, const char* value, XMP_OptionBits options) {
    return [=](Meta& meta) { meta.SetProperty(kQ, path, value, options); };
  };
  const auto append = [](const char* path, XMP_OptionBits arrayOptions, const char* value,
                         XMP_OptionBits options = 0) {
    return [=](Meta& meta) { meta.AppendArrayItem(kQ, path, arrayOptions, value, options); };
  };
  constexpr XMP_OptionBits kBag = kXMP_PropValueIsArray;
  constexpr XMP_OptionBits kStruct = kXMP_PropValueIsStruct;
  const struct {
    const char* mName;
    std::function<void(Meta&)> mAction;
    const char* mError;
    const char* mPart;
  } rows[] = {
      {"value for a struct", set("struct", "x", 0), "102", "\"struct\""},
      {"value for an array", set("seq", "x", 0), "102", "\"seq\""},
      {"bag for a seq", set("seq", nullptr, kBag), "103", "another kind"},
      {"value and kind", set("new", "x", kStruct), "103", "cannot have a value"},
      {"neither value nor kind", set("new", nullptr, 0), "4", "no value"},
      {"two kinds", set("new", nullptr, kStruct | kBag), "103", "several kinds"},
      {"unknown bit", set("new", "x", 0x8), "103", "bits"},
      {"item beyond the end", set("seq[2]", "x", 0), "104", "has 1 items"},
      {"item of nothing", set("new[1]", "x", 0), "102", "\"new\" is not there"},
      {"qualifier of nothing", set("new/?s:q", "x", 0), "102", "not there to be qualified"},
      {"language as a struct", set("text/?xml:lang", nullptr, kStruct), "103", "plain text"},
      {"datatype set", set("text/?rdf:datatype", "x", 0), "102", "only read"},
      {"datatype of a URI", set("typed", "x", kXMP_PropValueIsURI), "103", "rdf:datatype"},
      {"not UTF-8", set("text", "ab\xC3(", 0), "205", "byte 3"},
      {"encoded surrogate", set("text", "\xED\xA0\x80", 0), "205", "not UTF-8"},
      {"control character", set("text", "a\x01", 0), "205", "byte 2 "},
      {"U+FFFE", set("text", "\xEF\xBF\xBE", 0), "205", "XML cannot carry"},
      {"NUL", [](Meta& meta) { meta.SetProperty(kQ, "text", std::string("a\0b", 3)); }, "205",
       "byte 2"},
      {"bad field", [](Meta& meta) { meta.SetStructField(kQ, "struct", kS, "f", "\x0B"); }, "205",
       "byte 1"},
      {"append to text", append("text", kBag, "x"), "102", "\"text\""},
      {"append to nothing", append("new", 0, "x"), "103", "no kind of array"},
      {"append to no kind", append("new", kStruct, "x"), "103", "no array"},
      {"append to another kind", append("seq", kBag, "x"), "103", "another kind"},
      {"append too deep", append(deep.c_str(), kBag, "x"), "102", "nested too deeply"},
      {"count a struct", [](Meta& meta) { meta.CountArrayItems(kQ, "struct"); }, "102",
       "\"struct\""},
  };
  const std::string before = Serialize(mMeta);
  for (const auto& row : rows) {
    EXPECT_THAT(ErrorOf([&] { row.mAction(mMeta); }),
                AllOf(StartsWith(row.mError), HasSubstr(row.mPart)))
        << row.mName;
    EXPECT_EQ(Serialize(mMeta), before) << row.mName;
  }
}

TEST_F(DataModelTest, DeletesWithoutLosingComments) {
  const std::string packet = Described(
      "<!--1--><q:a>1</q:a><!--2--><q:b/><q:c><rdf:Bag><!--3--><rdf:li>1</rdf:li><!--4--></rdf:Bag>"
      "</q:c>");
  mMeta = Parse(packet);
  for (const char* path : {"absent", "c[1]", "c[1]", "a", "b"}) mMeta.DeleteProperty(kQ, path);
  EXPECT_EQ(Show(mMeta), "{q:c=bag()}");
  const Meta expected =
      Parse(Described("<!--1--><!--2--><q:c><rdf:Bag><!--3--><!--4--></rdf:Bag></q:c>"));
  EXPECT_TRUE(AreEqual(mMeta, expected, xmptoolkit::Equality::kFile));
  mMeta.DeleteProperty(kQ, "c");
  EXPECT_TRUE(AreEqual(mMeta, Parse(Described("<!--1--><!--2-->")), xmptoolkit::Equality::kFile));
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

TEST_F(DataModelTest, EqualityOfMetadataIgnoresOrderButNotContent) {
  using xmptoolkit::Equality;
  const Meta left = Parse(
      Described("<q:a>1</q:a><q:b><rdf:Seq><rdf:li>x</rdf:li><rdf:li>y</rdf:li></rdf:Seq></q:b>"));
  const struct {
    const char* mProperties;
    bool mAreEqual;
  } rows[] = {
      {"<q:b><rdf:Seq><rdf:li>x</rdf:li><rdf:li>y</rdf:li></rdf:Seq></q:b><!--c--><q:a>1</q:a>",
       true},
      {"<q:b><rdf:Seq><rdf:li>y</rdf:li><rdf:li>x</rdf:li></rdf:Seq></q:b><q:a>1</q:a>", false},
      {"<q:b><rdf:Bag><rdf:li>x</rdf:li><rdf:li>y</rdf:li></rdf:Bag></q:b><q:a>1</q:a>", false},
      {"<q:b><rdf:Seq><rdf:li>x</rdf:li><rdf:li>y</rdf:li></rdf:Seq></q:b><q:a "
       "xml:lang='en'>1</q:a>",
       false},
      {"<q:b><rdf:Seq><rdf:li>x</rdf:li><rdf:li>y</rdf:li></rdf:Seq></q:b><s:a>1</s:a>", false},
      {"<q:b><rdf:Seq><rdf:li>x</rdf:li><rdf:li>y</rdf:li></rdf:Seq></q:b><q:a rdf:resource='1'/>",
       false},
      {"<q:a>1</q:a>", false},
  };
  for (const auto& row : rows) {
    const Meta right = Parse(Described(row.mProperties));
    EXPECT_EQ(AreEqual(left, right, Equality::kMetadata), row.mAreEqual) << row.mProperties;
    EXPECT_FALSE(AreEqual(left, right, Equality::kFile)) << row.mProperties;
  }
}

}  // namespace
