#include <gmock/gmock.h>

#include "XMPTestSupport.h"

namespace {

using namespace xmptest;
using testing::HasSubstr;
using testing::StartsWith;

class PathTest : public testing::Test {
 protected:
  PathTest() {
    RegisterTestNamespaces();
    mMeta = Parse(Described(
        "<q:simple>text</q:simple>"
        "<q:seq><rdf:Seq><rdf:li>one</rdf:li><rdf:li rdf:parseType='Resource'><s:f>two</s:f>"
        "<s:inner><rdf:Bag><rdf:li>deep</rdf:li></rdf:Bag></s:inner></rdf:li></rdf:Seq></q:seq>"
        "<q:empty><rdf:Bag/></q:empty>"
        "<q:qualified xml:lang='en' rdf:parseType='Resource'><rdf:value>v</rdf:value>"
        "<s:note rdf:parseType='Resource'><q:by>me</q:by></s:note></q:qualified>"
        "<q:\xC3\xA9t\xC3\xA9>summer</q:\xC3\xA9t\xC3\xA9>"));
  }

  Meta mMeta;
};

TEST_F(PathTest, LeadsToValues) {
  const struct {
    const char* mPath;
    const char* mValue;  // null: absent
  } rows[] = {
      {"simple", "text"},
      {"q:simple", "text"},
      {"seq", ""},
      {"seq[1]", "one"},
      {"q:seq[02]/s:f", "two"},
      {"seq[last()]/s:inner[last()]", "deep"},
      {"seq[2]/s:inner[1]", "deep"},
      {"qualified/?xml:lang", "en"},
      {"qualified/?s:note/q:by", "me"},
      {"\xC3\xA9t\xC3\xA9", "summer"},
      {"absent", nullptr},
      {"absent/s:f[3]/s:g", nullptr},
      {"seq[3]", nullptr},
      {"seq[2147483647]", nullptr},
      {"seq[2]/s:absent", nullptr},
      {"seq[2]/q:f", nullptr},
      {"empty[last()]", nullptr},
      {"simple/?xml:lang", nullptr},
  };
  for (const auto& row : rows) {
    std::string value = "untouched";
    XMP_OptionBits options = 0xBAD;
    const bool found = mMeta.GetProperty(kQ, row.mPath, &value, &options);
    EXPECT_EQ(found, row.mValue != nullptr) << row.mPath;
    EXPECT_EQ(value, found ? row.mValue : "untouched") << row.mPath;
    EXPECT_EQ(options == 0xBAD, !found) << row.mPath;
    EXPECT_EQ(mMeta.DoesPropertyExist(kQ, row.mPath), found) << row.mPath;
  }
}

TEST_F(PathTest, RefusesWhatIsNoPathOrDoesNotFit) {
  std::string tooDeep = "simple";
  for (int i = 0; i < kXMP_MaxNesting; ++i) tooDeep += "/s:f";
  const struct {
    const char* mPath;
    const char* mError;
    const char* mPart;
  } rows[] = {
      {nullptr, "102", "null"},
      {"", "102", "begin with a property name"},
      {"q:", "102", "begin with"},
      {"q:a:b", "102", "begin with"},
      {"/simple", "102", "begin with"},
      {"\xFF", "102", "begin with"},
      {"s:simple", "102", "does not belong to the schema"},
      {"unknown:simple", "101", "\"unknown\""},
      {"seq[", "102", "not closed"},
      {"seq[]", "102", "\"\""},
      {"seq[0]", "102", "\"0\""},
      {"seq[+1]", "102", "\"+1\""},
      {"seq[2147483648]", "102", "\"2147483648\""},
      {"seq[last]", "102", "\"last\""},
      {"seq[?xml:lang=\"en\"]", "102", "?xml:lang"},
      {"seq[1]x", "102", "followed by"},
      {"seq[1]//s:f", "102", "no name"},
      {"seq[1]/f", "102", "needs its prefix"},
      {"simple/rdf:value", "102", "cannot be metadata"},
      {"qualified/?xml:space", "102", "cannot be metadata"},
      {"qualified/?xml:lang/?s:a", "102", "has no parts"},
      {"seq/s:f", "102", "\"seq\" is no struct"},
      {"simple/s:f", "102", "\"simple\" is no struct"},
      {"simple[1]", "102", "\"simple\" is no array"},
      {"seq[1]/s:f/s:g", "102", "\"seq[1]\" is no struct"},
      {tooDeep.c_str(), "102", "more than 100 steps"},
  };
  const std::string before = Serialize(mMeta);
  for (const auto& row : rows) {
    const std::string shown = row.mPath == nullptr ? "null" : row.mPath;
    for (const std::string& error :
         {ErrorOf([&] { mMeta.GetProperty(kQ, row.mPath, nullptr, nullptr); }),
          ErrorOf([&] { mMeta.SetProperty(kQ, row.mPath, "x"); }),
          ErrorOf([&] { mMeta.DeleteProperty(kQ, row.mPath); }),
          ErrorOf([&] { mMeta.CountArrayItems(kQ, row.mPath); }),
          ErrorOf([&] { mMeta.AppendArrayItem(kQ, row.mPath, kXMP_PropValueIsArray, "x"); }),
          ErrorOf([&] { mMeta.SetStructField(kQ, row.mPath, kS, "f", "x"); })}) {
      EXPECT_THAT(error, StartsWith(row.mError)) << shown;
      EXPECT_THAT(error, HasSubstr(row.mPart)) << shown;
    }
  }
  EXPECT_EQ(Serialize(mMeta), before);
}

TEST_F(PathTest, SchemasHaveToBeRegistered) {
  for (const char* schema : {static_cast<const char*>(nullptr), "", "urn:unheard-of#"}) {
    EXPECT_THAT(ErrorOf([&] { mMeta.DoesPropertyExist(schema, "a"); }), StartsWith("101 "));
    EXPECT_THAT(ErrorOf([&] { mMeta.GetStructField(kQ, "a", schema, "f", nullptr, nullptr); }),
                StartsWith("101 "));
  }
}

TEST_F(PathTest, FieldsAreNamedByNamespaceAndName) {
  std::string value;
  EXPECT_TRUE(mMeta.GetStructField(kQ, "seq[2]", kS, "f", &value, nullptr));
  EXPECT_TRUE(mMeta.GetStructField(kQ, "seq[2]", kS, "s:f", &value, nullptr));
  EXPECT_FALSE(mMeta.GetStructField(kQ, "seq[2]", kQ, "f", &value, nullptr));
  for (const char* name : {static_cast<const char*>(nullptr), "", "q:f", "f[1]", "s:f/s:g"}) {
    EXPECT_THAT(ErrorOf([&] { mMeta.SetStructField(kQ, "new", kS, name, "x"); }),
                StartsWith("102 "));
  }
  EXPECT_FALSE(mMeta.DoesPropertyExist(kQ, "new"));
}

TEST_F(PathTest, ComposesItemPaths) {
  std::string path;
  TXMPUtils::ComposeArrayItemPath(kQ, "seq[2]/s:inner", 1, &path);
  EXPECT_EQ(path, "seq[2]/s:inner[1]");
  TXMPUtils::ComposeArrayItemPath(kQ, "seq", kXMP_ArrayLastItem, &path);
  EXPECT_EQ(path, "seq[last()]");
  for (const XMP_Index index : {0, -2}) {
    EXPECT_THAT(ErrorOf([&] { TXMPUtils::ComposeArrayItemPath(kQ, "seq", index, &path); }),
                StartsWith("4 "));
  }
  EXPECT_THAT(ErrorOf([&] { TXMPUtils::ComposeArrayItemPath("urn:no#", "a", 1, &path); }),
              StartsWith("101 "));
  EXPECT_THAT(ErrorOf([&] { TXMPUtils::ComposeArrayItemPath(kQ, "a b", 1, &path); }),
              StartsWith("102 "));
  EXPECT_EQ(path, "seq[last()]");
}

}  // namespace
