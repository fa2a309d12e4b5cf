#include <string>

#include <gmock/gmock.h>

#include "XMPTestSupport.h"

namespace {

using namespace xmptest;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

// Property elements, and what they mean. Rows with equal trees are spellings of one thing.
TEST(ReaderTest, ReadsEveryForm) {
  const struct {
    const char* mProperties;
    const char* mTree;
  } rows[] = {
      {"", "{}"},
      // Simple values.
      {"<q:a>v</q:a>", "{q:a='v'}"},
      {"<q:a> v\n </q:a>", "{q:a=' v\n '}"},
      {"<q:a> </q:a>", "{q:a=' '}"},
      {"<q:a/>", "{q:a=''}"},
      {"<q:a>x&lt;<![CDATA[<&]]>&#x1F3AC;<!--c-->y</q:a>", "{q:a='x<<&\xF0\x9F\x8E\xACy'}"},
      {"<a xmlns='urn:q#'>v</a>", "{q:a='v'}"},
      {"<other:a xmlns:other='urn:q#'>v</other:a>", "{q:a='v'}"},
      {"<q:a rdf:resource='u'/>", "{q:a=<u>}"},
      {"<q:a resource='u'> </q:a>", "{q:a=<u>}"},
      {"<q:a rdf:parseType='Resource'><rdf:value>v</rdf:value></q:a>", "{q:a='v'}"},
      {"<q:a rdf:value='v'/>", "{q:a='v'}"},
      {"<rdf:type rdf:resource='u'/>", "{rdf:type=<u>}"},
      {"<q:a rdf:datatype='u'>5</q:a>", "{q:a='5'/rdf:datatype='u'}"},
      // Structs.
      {"<q:a rdf:parseType='Resource'><s:f>1</s:f><s:g>2</s:g></q:a>", "{q:a={s:f='1' s:g='2'}}"},
      {"<q:a parseType='Resource'> <s:f>1</s:f> <s:g>2</s:g> </q:a>", "{q:a={s:f='1' s:g='2'}}"},
      {"<q:a><rdf:Description><s:f>1</s:f><s:g>2</s:g></rdf:Description></q:a>",
       "{q:a={s:f='1' s:g='2'}}"},
      {"<q:a s:f='1' s:g='2'/>", "{q:a={s:f='1' s:g='2'}}"},
      {"<q:a rdf:parseType='Resource'/>", "{q:a={}}"},
      {"<q:a><s:T s:f='1'/></q:a>", "{q:a={rdf:type=<urn:s#T> s:f='1'}}"},
      {"<q:a rdf:type='urn:s#T' s:f='1'/>", "{q:a={rdf:type=<urn:s#T> s:f='1'}}"},
      {"<q:a rdf:parseType='Resource'><rdf:type rdf:resource='urn:s#T'/><s:f>1</s:f></q:a>",
       "{q:a={rdf:type=<urn:s#T> s:f='1'}}"},
      // Arrays.
      {"<q:a><rdf:Bag><rdf:li>1</rdf:li><rdf:li/></rdf:Bag></q:a>", "{q:a=bag('1' '')}"},
      {"<q:a> <rdf:Seq> <rdf:_1>1</rdf:_1> <rdf:_2 rdf:resource='u'/> </rdf:Seq> </q:a>",
       "{q:a=seq('1' <u>)}"},
      {"<q:a><rdf:Alt/></q:a>", "{q:a=alt()}"},
      {"<q:a><rdf:Alt><rdf:li>x</rdf:li><rdf:li xml:lang='de'>y</rdf:li></rdf:Alt></q:a>",
       "{q:a=alt('x' 'y'/xml:lang='de')}"},
      {"<q:a><rdf:Alt><rdf:li xml:lang='x-default'>x</rdf:li></rdf:Alt></q:a>",
       "{q:a=lang('x'/xml:lang='x-default')}"},
      {"<q:a><rdf:Seq><rdf:li s:f='1'/><rdf:li><rdf:Bag><rdf:li><rdf:Alt/></rdf:li></rdf:Bag>"
       "</rdf:li></rdf:Seq></q:a>",
       "{q:a=seq({s:f='1'} bag(alt()))}"},
      // Qualifiers.
      {"<q:a xml:lang='en'>v</q:a>", "{q:a='v'/xml:lang='en'}"},
      {"<q:a rdf:parseType='Resource'><rdf:value xml:lang='en'>v</rdf:value></q:a>",
       "{q:a='v'/xml:lang='en'}"},
      {"<q:a rdf:parseType='Resource'><s:q>w</s:q><rdf:value>v</rdf:value></q:a>",
       "{q:a='v'/s:q='w'}"},
      {"<q:a rdf:value='v' s:q='w'/>", "{q:a='v'/s:q='w'}"},
      {"<q:a xml:lang='en'><s:T rdf:value='v'/></q:a>",
       "{q:a='v'/xml:lang='en'/rdf:type=<urn:s#T>}"},
      {"<q:a rdf:resource='u' s:q='w'/>", "{q:a=<u>/s:q='w'}"},
      {"<q:a rdf:parseType='Resource'><rdf:value rdf:resource='u'/><s:q>w</s:q></q:a>",
       "{q:a=<u>/s:q='w'}"},
      {"<q:a rdf:parseType='Resource'><rdf:value s:f='1'/><s:q s:g='2'/></q:a>",
       "{q:a={s:f='1'}/s:q={s:g='2'}}"},
      {"<q:a rdf:parseType='Resource'><rdf:value><rdf:Bag><rdf:li rdf:value='1' s:r='x'/></rdf:Bag>"
       "</rdf:value><s:q>w</s:q></q:a>",
       "{q:a=bag('1'/s:r='x')/s:q='w'}"},
      {"<q:a xml:lang='en' s:f='1'/>", "{q:a={s:f='1'}/xml:lang='en'}"},
      // A language on what is no property belongs to the properties directly within.
      {"<q:a><rdf:Bag xml:lang='en'><rdf:li>1</rdf:li><rdf:li "
       "xml:lang='de'>2</rdf:li></rdf:Bag></q:a>",
       "{q:a=bag('1'/xml:lang='en' '2'/xml:lang='de')}"},
      {"<q:a><rdf:Description xml:lang='en' s:f='1'><s:g "
       "rdf:resource='u'/></rdf:Description></q:a>",
       "{q:a={s:f='1'/xml:lang='en' s:g=<u>}}"},
      {"<q:a xml:lang='fr' rdf:parseType='Resource'><rdf:value "
       "xml:lang='en'>v</rdf:value><s:q>w</s:q></q:a>",
       "{q:a='v'/xml:lang='en'/s:q='w'/xml:lang='fr'}"},
  };
  RegisterTestNamespaces();
  for (const auto& row : rows) {
    EXPECT_EQ(ErrorOf([&] { Parse(Described(row.mProperties)); }), "none") << row.mProperties;
    const Meta meta = Parse(Described(row.mProperties));
    EXPECT_EQ(Show(meta), row.mTree) << row.mProperties;
    for (const XMP_OptionBits options : {XMP_OptionBits{0}, kXMP_UseCompactFormat}) {
      const std::string packet = Serialize(meta, options);
      const Meta again = Parse(packet);
      EXPECT_TRUE(AreEqual(meta, again, xmptoolkit::Equality::kMetadata)) << packet;
      EXPECT_EQ(Serialize(again, options), packet);
    }
  }
}

TEST(ReaderTest, MergesDescriptionsOfOneSubject) {
  const struct {
    const char* mBody;
    const char* mTree;
  } rows[] = {
      {"", "{}"},
      {"<rdf:Description rdf:about='' q:a='1' rdf:type='u'><q:b>2</q:b></rdf:Description>",
       "{q:a='1' rdf:type=<u> q:b='2'}"},
      {"<rdf:Description about='x' q:a='1'/> <rdf:Description "
       "rdf:about='x'><q:b>2</q:b></rdf:Description>",
       "{q:a='1' q:b='2'}"},
      {"<rdf:Description rdf:about='' q:a='1'/><rdf:Description q:b='2'/>", "{q:a='1' q:b='2'}"},
      {"<rdf:Description xml:lang='en' q:a='1'/><rdf:Description q:b='2'/>",
       "{q:a='1'/xml:lang='en' q:b='2'}"},
  };
  for (const auto& row : rows) EXPECT_EQ(Show(Parse(RDF(row.mBody))), row.mTree) << row.mBody;
}

// The first property stands at 3:1.
TEST(ReaderTest, RefusesWhatXMPDoesNotAllow) {
  const struct {
    const char* mProperties;
    const char* mError;  // number, line and column
    const char* mPart;
  } rows[] = {
      {"<q:a><rdf:Bag><q:b/></rdf:Bag></q:a>",
       "202 3:15: ", "rdf:Bag holds a q:b, where only rdf:li"},
      {"<q:a><rdf:Bag>x</rdf:Bag></q:a>", "202 3:", "text stands in rdf:Bag"},
      {"<q:a><rdf:Bag q:b='1'/></q:a>", "202 3:6: ", "rdf:Bag must not have the attribute q:b"},
      {"<q:a><rdf:Seq><rdf:_2/></rdf:Seq></q:a>",
       "202 3:15: ", "rdf:_2 is item 2, but stands in place 1"},
      {"<q:a><rdf:Seq><rdf:_1/><rdf:li/></rdf:Seq></q:a>", "202 3:24: ", "rdf:li is item 1"},
      {"<q:a><rdf:Seq><rdf:_01/></rdf:Seq></q:a>", "202 3:15: ", "rdf:_01"},
      {"<q:a>\n text<q:b/></q:a>", "202 ", "text stands in q:a beside the element q:b"},
      {"<q:a><q:T/>text</q:a>", "202 3:", "text stands in q:a"},
      {"text", "202 ", "text stands in rdf:Description"},
      {"<q:a><q:T/><q:T/></q:a>", "202 3:12: ", "second element, q:T"},
      {"<q:a rdf:resource='u'><q:T/></q:a>", "202 3:23: ", "its attributes say that it is empty"},
      {"<q:a/><q:a/>", "203 3:7: ", "q:a is there already"},
      {"<q:a s:f='1' s:g='2'/><q:b><q:T s:f='1'><s:f/></q:T></q:b>",
       "203 3:41: ", "s:f is there already"},
      {"<q:a rdf:parseType='Resource'><rdf:value/><rdf:value/></q:a>",
       "202 3:43: ", "second rdf:value"},
      {"<q:a rdf:parseType='Resource'><rdf:value rdf:value='v'/></q:a>",
       "202 3:31: ", "value of its own"},
      {"<q:a><rdf:Bag><rdf:li rdf:parseType='Resource'><rdf:value rdf:resource='u' "
       "q:q='1'/></rdf:li></rdf:Bag></q:a>",
       "202 3:48: ", "qualifiers of its own"},
      {"<q:a rdf:resource='u' rdf:value='v'/>", "202 3:1: ", "both rdf:resource and rdf:value"},
      {"<q:a rdf:datatype='u'><q:T/></q:a>", "202 3:23: ", "rdf:datatype"},
      {"<q:a rdf:parseType='Literal'><b/></q:a>", "202 3:1: ", "\"Literal\""},
      {"<q:a rdf:parseType='Resource' q:b='1'/>", "202 3:1: ", "rdf:parseType and another"},
      {"<q:a rdf:resource='u' resource='v'/>", "202 3:1: ", "twice"},
      {"<q:a rdf:ID='i'/>", "202 3:1: ", "rdf:ID"},
      {"<q:a rdf:nodeID='i'/>", "202 3:1: ", "rdf:nodeID"},
      {"<q:a><rdf:Description rdf:about='x'/></q:a>", "202 3:6: ", "rdf:about"},
      {"<q:a xml:base='u'>x</q:a>", "202 3:1: ", "xml:base"},
      {"<q:a b='1'/>", "202 3:1: ", "attribute b has no namespace"},
      {"<q:a n:b='1'/>", "201 3:1: ", "prefix of the attribute n:b is not declared"},
      {"<q:1a/>", "201 3:1: ", "q:1a is no name"},
      {"<q:a q:b:c='1'/>", "201 3:1: ", "q:b:c is no name"},
      {"<q:a xmlns:p='urn:s#' rdf:value='' s:b='1' p:b='2'/>", "20", "p:b"},
      {"<n:a/>", "201 3:1: ", "prefix of n:a is not declared"},
      {"<a/>", "202 3:1: ", "property a has no namespace"},
      {"<q:a><b/></q:a>", "202 3:6: ", "q:a holds a b"},
      {"<rdf:li/>", "202 3:1: ", "rdf:li"},
      {"<xml:lang>en</xml:lang>", "202 3:1: ", "xml:lang"},
      {"<q:a>", "201 3:", ""},
      {"<q:a>&unknown;</q:a>", "201 3:", ""},
      {"<q:a>\x01</q:a>", "201 3:", ""},
      {"<q:a>ok</q:a>\n<q:b>\xC3(</q:b>", "205 4:6: ", "no text"},
  };
  Meta meta;
  RegisterTestNamespaces();
  meta.SetProperty(kQ, "kept", "1");
  for (const auto& row : rows) {
    const std::string packet = Described(row.mProperties);
    const auto parse = [&] {
      meta.ParseFromBuffer(packet.data(), static_cast<XMP_StringLen>(packet.size()));
    };
    EXPECT_THAT(ErrorOf(parse), AllOf(StartsWith(row.mError), HasSubstr(row.mPart)))
        << row.mProperties;
    EXPECT_EQ(Show(meta), "{q:kept='1'}");
  }
}

TEST(ReaderTest, RefusesOtherFrames) {
  const std::string rdf = RDF("");
  const std::string header = "<?xpacket begin='' id='W5M0MpCehiHzreSzNTczkc9d'?>";
  const std::string trailer = "<?xpacket end='w'?>";
  const auto meta = [](const std::string& inside) {
    return "<x:xmpmeta xmlns:x='adobe:ns:meta/'>" + inside + "</x:xmpmeta>";
  };
  const struct {
    std::string mPacket;
    const char* mError;
  } rows[] = {
      {"", "201 1:1: the buffer is empty"},
      {"no XML", "201 1:1: "},
      {"<q:a xmlns:q='urn:q#'/>", "202 1:1: the root element is q:a"},
      {"<rdf:RDF/>", "201 1:1: the prefix of rdf:RDF is not declared"},
      {meta(""), "202 1:37: x:xmpmeta holds no rdf:RDF"},
      {meta("<b/>"), "202 1:37: x:xmpmeta holds a b"},
      {meta(rdf + rdf), "203 2:11: a second rdf:RDF"},
      {rdf + rdf, "201 2:"},
      {"<!DOCTYPE a [<!ENTITY e 'x'>]>" + rdf, "203 1:"},
      {RDF("<q:Typed/>"), "202 2:1: rdf:RDF holds a q:Typed"},
      {RDF("<rdf:Bag/>"), "202 2:1: "},
      {RDF("<rdf:Description rdf:ID='a'/>"), "202 2:1: "},
      {RDF("<rdf:Description rdf:about='a'/>\n<rdf:Description rdf:about='b'/>"),
       "203 3:1: rdf:about is \"b\""},
      {RDF("<rdf:Description rdf:about='a'/>\n<rdf:Description/>"), "203 3:1: "},
      {header + rdf, "203 1:1: the packet has no trailer"},
      {"\n " + header + rdf + "<?xpacket end='x'?>", "203 3:11: the trailer says neither"},
      {header + rdf + "<?xpacket end='w'", "203 2:11: the trailer has no end"},
      {"garbage\n  " + header + "<rdf:RDF/>" + trailer, "201 2:53: "},
      {header + rdf + trailer + header + rdf + trailer, "203 2:80: an xpacket instruction"},
      {header + meta(rdf + trailer) + trailer, "203 2:30: an xpacket"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?>" + rdf,
       "201 1:31: the encoding \"ISO-8859-1\""},
      {"<?xml version='1.0' encoding='UTF-16'?>" + rdf, "201 1:31: "},
      {"<?xml version='1.0' encoding='UTF-8' ?" + rdf, "201 1:"},
  };
  for (const auto& row : rows) {
    EXPECT_THAT(ErrorOf([&] { Parse(row.mPacket); }), StartsWith(row.mError)) << row.mPacket;
  }
}

TEST(ReaderTest, NestsToTheLimitAndNoFurther) {
  const auto nested = [](const char* open, const char* close, int levels) {
    std::string text;
    for (int i = 0; i < levels; ++i) text += open;
    text += "<q:leaf/>";
    for (int i = 0; i < levels; ++i) text += close;
    return Described(text);
  };
  const struct {
    const char* mOpen;
    const char* mClose;
    int mLevels;  // that each repetition adds
  } rows[] = {
      {"<q:a rdf:parseType='Resource'>", "</q:a>", 1},
      {"<q:a><rdf:Bag><rdf:li rdf:parseType='Resource'>", "</rdf:li></rdf:Bag></q:a>", 2},
      {"<q:a rdf:parseType='Resource'><s:q/><rdf:value rdf:parseType='Resource'>",
       "</rdf:value></q:a>", 1},
      {"<q:a rdf:parseType='Resource'><rdf:value/>", "</q:a>", 1},
  };
  for (const auto& row : rows) {
    const int most = (kXMP_MaxNesting - 1) / row.mLevels;
    const Meta meta = Parse(nested(row.mOpen, row.mClose, most));
    EXPECT_TRUE(AreEqual(meta, Parse(Serialize(meta)), xmptoolkit::Equality::kFile)) << row.mOpen;
    const Meta copy(meta);
    for (const int tooMany : {most + 1, 5000}) {
      EXPECT_THAT(ErrorOf([&] { Parse(nested(row.mOpen, row.mClose, tooMany)); }),
                  AllOf(StartsWith("203 3:"), HasSubstr("deeper than 100")))
          << row.mOpen;
    }
  }
}

}  // namespace
