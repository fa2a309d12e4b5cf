#include "XMPTestSupport.h"

namespace {

using namespace xmptest;

class PathTest : public testing::Test {
 protected:
  PathTest() {
    RegisterTestNamespaces();
    mMeta = Parse(Described(R"(<q:simple>text</q:simple>
        <q:seq><rdf:Seq><LI>one</LI><LI RES><s:f>two</s:f>
            <s:inner><rdf:Bag><LI>deep</LI></rdf:Bag></s:inner></LI></rdf:Seq></q:seq>
        <q:empty><rdf:Bag/></q:empty>
        <q:qualified xml:lang='en' RES><rdf:value>v</rdf:value><s:note q:by='me'/></q:qualified>
        <q:été·2>summer</q:été·2>)"));
  }

  Meta mMeta;
};

TEST_F(PathTest, LeadsToValues) {
  for (const Row& row : Rows(R"(
      simple => text ;; q:simple => text ;; seq => ;; seq[1] => one ;; q:seq[02]/s:f => two
      seq[last()]/s:inner[last()] => deep ;; seq[2]/s:inner[1] => deep
      qualified/?xml:lang => en ;; qualified/?s:note/q:by => me ;; été·2 => summer
      absent => - ;; absent/s:f[3]/s:g => - ;; seq[3] => - ;; seq[2147483647] => -
      seq[2]/s:absent => - ;; seq[2]/q:f => - ;; empty[last()] => - ;; simple/?xml:lang => -)")) {
    SCOPED_TRACE(row[0]);
    const bool isThere = row[1] != "-";
    std::string value = "untouched";
    XMP_OptionBits options = 0xBAD;
    EXPECT_EQ(mMeta.GetProperty(kQ, row[0].c_str(), &value, &options), isThere);
    EXPECT_EQ(value, isThere ? row[1] : "untouched");
    EXPECT_EQ(options == 0xBAD, !isThere);
    EXPECT_EQ(mMeta.DoesPropertyExist(kQ, row[0].c_str()), isThere);
  }
}

TEST_F(PathTest, RefusesWhatIsNotAPathOrDoesNotFit) {
  const std::vector<Row> rows = Rows(R"(
      null => 102 ...null ;; => 102 ...begin with a property name ;; q: => 102 ...begin with
      q:a:b => 102 ...begin with ;; /simple => 102 ...begin with ;; \xFF => 102 ...begin with
      s:simple => 102 ...does not belong to the schema ;; unknown:simple => 101 ..."unknown"
      seq[ => 102 ...not closed ;; seq[] => 102 ..."" ;; seq[1x] => 102 ..."1x" ;; seq[0] => 102 ..."0"
      seq[+1] => 102 ..."+1" ;; seq[2147483648] => 102 ..."2147483648" ;; seq[last] => 102 ..."last"
      seq[?xml:lang="en"] => 102 ...?xml:lang ;; seq[1]x => 102 ...followed by
      seq[1]//s:f => 102 ...not a name ;; seq[1]/f => 102 ...needs its prefix
      simple/rdf:value => 102 ...cannot be metadata ;; q\x01 => 102 ..."q?"
      simple/rdf:datatype => 102 ...cannot be metadata ;; seq/s:f => 102 ..."seq" is not a struct
      qualified/?xml:space => 102 ...cannot be metadata ;; simple[1] => 102 ..."simple" is not an array
      qualified/?xml:lang/?s:a => 102 ...has no parts ;; simple/s:f => 102 ..."simple" is not a struct
      seq[1]/s:f/s:g => 102 ..."seq[1]" is not a struct ;; simple$deep => 102 ...more than 100 steps)");
  const std::string before = Serialize(mMeta);
  for (const Row& row : rows) {
    SCOPED_TRACE(row[0]);
    const std::string text = Replaced(row[0], {Row{"$deep", Repeated("/s:f", kXMP_MaxNesting)}});
    const char* path = Nullable(text);
    ExpectError([&] { mMeta.GetProperty(kQ, path, nullptr, nullptr); }, row[1]);
    ExpectError([&] { mMeta.SetProperty(kQ, path, "x"); }, row[1]);
    ExpectError([&] { mMeta.DeleteProperty(kQ, path); }, row[1]);
    ExpectError([&] { mMeta.CountArrayItems(kQ, path); }, row[1]);
    ExpectError([&] { mMeta.AppendArrayItem(kQ, path, kXMP_PropValueIsArray, "x"); }, row[1]);
    ExpectError([&] { mMeta.SetStructField(kQ, path, kS, "f", "x"); }, row[1]);
  }
  EXPECT_EQ(Serialize(mMeta), before);
}

TEST_F(PathTest, SchemasMustBeRegisteredOrInUse) {
  constexpr const char* kUnheardOf = "urn:unheard-of#";
  for (const char* schema : {static_cast<const char*>(nullptr), "", kUnheardOf}) {
    ExpectError([&] { mMeta.DoesPropertyExist(schema, "a"); }, "101 ");
    ExpectError([&] { mMeta.GetStructField(kQ, "a", schema, "f", nullptr, nullptr); }, "101 ");
  }
  Meta meta = Parse(Described("<a xmlns='urn:unheard-of#' rdf:parseType='Resource'><f>1</f></a>"));
  meta.SetStructField(kUnheardOf, "a", kUnheardOf, "g", "2");
  meta.AppendArrayItem(kUnheardOf, "new", kXMP_PropValueIsArray, "3");
  std::string value;
  EXPECT_TRUE(meta.GetStructField(kUnheardOf, "a", kUnheardOf, "f", &value, nullptr));
  EXPECT_EQ(value, "1");
  ExpectReadsAs(
      "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
      "<rdf:Description rdf:about='' xmlns='urn:unheard-of#'>"
      "<a rdf:parseType='Resource'><f>1</f><g>2</g></a>"
      "<new><rdf:Bag><rdf:li>3</rdf:li></rdf:Bag></new></rdf:Description></rdf:RDF>",
      meta);
  meta.DeleteProperty(kUnheardOf, "a");
  EXPECT_FALSE(meta.DoesPropertyExist(kUnheardOf, "a"));
  ExpectError([&] { meta.DoesPropertyExist(kUnheardOf, "u:a"); }, "101 ...prefix");
}

TEST_F(PathTest, FieldsAreNamedByNamespaceAndName) {
  std::string value;
  EXPECT_TRUE(mMeta.GetStructField(kQ, "seq[2]", kS, "f", &value, nullptr));
  EXPECT_TRUE(mMeta.GetStructField(kQ, "seq[2]", kS, "s:f", &value, nullptr));
  EXPECT_FALSE(mMeta.GetStructField(kQ, "seq[2]", kQ, "f", &value, nullptr));
  for (const char* name : {static_cast<const char*>(nullptr), "", "q:f", "f[1]", "s:f/s:g"}) {
    ExpectError([&] { mMeta.SetStructField(kQ, "new", kS, name, "x"); }, "102 ");
  }
  EXPECT_FALSE(mMeta.DoesPropertyExist(kQ, "new"));
}

TEST_F(PathTest, ComposesItemPaths) {
  std::string path;
  TXMPUtils::ComposeArrayItemPath(kQ, "seq[2]/s:inner", 1, &path);
  EXPECT_EQ(path, "seq[2]/s:inner[1]");
  TXMPUtils::ComposeArrayItemPath(kQ, "seq", kXMP_ArrayLastItem, &path);
  const auto refuse = [&](const char* schema, const char* name, XMP_Index index,
                          const char* error) {
    ExpectError([&] { TXMPUtils::ComposeArrayItemPath(schema, name, index, &path); }, error);
  };
  refuse(kQ, "seq", 0, "4 ");
  refuse(kQ, "seq", -2, "4 ");
  refuse("urn:no#", "a", 1, "101 ");
  refuse(kQ, "a b", 1, "102 ");
  EXPECT_EQ(path, "seq[last()]");
}

TEST(RegistryTest, KeepsTheFirstPrefixAndMakesTakenOnesUnique) {
  for (const Row& row : Rows(R"(
      urn:reg:1# => reg   => reg ;; urn:reg:1# => reg  => reg  ;; urn:reg:1#      => other => reg
      urn:reg:2# => reg   => reg1;; urn:reg:3# => reg  => reg2 ;; urn:reg:3#      => reg2  => reg2
      urn:reg:4# => rdf   => rdf1;; urn:reg:5# => x    => x1   ;; adobe:ns:meta/  => m     => x
      http://www.w3.org/XML/1998/namespace => xml => xml)")) {
    std::string prefix;
    const bool asSuggested = Meta::RegisterNamespace(row[0].c_str(), row[1].c_str(), &prefix);
    EXPECT_EQ(prefix, row[2]) << row[0] << ' ' << row[1];
    EXPECT_EQ(asSuggested, prefix == row[1]);
  }
}

TEST(RegistryTest, RefusesWhatCannotBeDeclared) {
  for (const Row& row : Rows(R"(
      101 =>          => a ;; 101 => null    => a ;; 101 => urn:\x01 => a  ;; 101 => urn:\xFF => a
      4   => urn:r#   =>   ;; 4   => urn:r#  => null ;; 4 => urn:r#  => a: ;; 4   => urn:r#   => 1a
      4   => urn:r#   => xml  ;; 4 => urn:r# => XMLfoo    ;; 4 => urn:r#   => \xC3
      101 => http://www.w3.org/2000/xmlns/   => a)")) {
    SCOPED_TRACE(row[1] + ' ' + row[2]);
    std::string prefix = "untouched";
    ExpectError([&] { Meta::RegisterNamespace(Nullable(row[1]), Nullable(row[2]), &prefix); },
                row[0]);
    EXPECT_EQ(prefix, "untouched");
  }
}

}  // namespace
