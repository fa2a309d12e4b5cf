#include "XMPTestSupport.h"

namespace {

using namespace xmptest;

// A tree, and spellings of it; a row without a tree has more spellings of the one above. In the
// last six a language on an element that is not a property belongs to the properties directly
// within.
constexpr const char* kForms = R"(
  {} => <!--empty-->
  {q:a='v'} => <q:a>v</q:a> => <a xmlns='urn:q#'>v</a> => <other:a xmlns:other='urn:q#'>v</other:a>
            => <q:a rdf:value='v'/> => <q:a RES><rdf:value>v</rdf:value></q:a>
  {q:a=' v\n '} => <q:a> v\n </q:a> ;; {q:a=' '} => <q:a> </q:a> ;; {q:a=''} => <q:a/>
  {q:a='x<<&\xF0\x9F\x8E\xACy'} => <q:a>x&lt;<![CDATA[<&]]>&#x1F3AC;<!--c-->y</q:a>
  {q:a=<u>} => <q:a rdf:resource='u'/> => <q:a resource='u'> </q:a>
  {rdf:type=<u>} => <rdf:type rdf:resource='u'/>
  {q:a='5'/rdf:datatype='u'} => <q:a rdf:datatype='u'>5</q:a>

  {q:a={s:f='1' s:g='2'}} => <q:a RES><s:f>1</s:f><s:g>2</s:g></q:a> => <q:a s:f='1' s:g='2'/>
      => <q:a parseType='Resource'> <s:f>1</s:f> <s:g>2</s:g> </q:a>
      => <q:a><rdf:Description><s:f>1</s:f><s:g>2</s:g></rdf:Description></q:a>
  {q:a={}} => <q:a RES/>
  {q:a={rdf:type=<urn:s#T> s:f='1'}} => <q:a><s:T s:f='1'/></q:a>
      => <q:a rdf:type='urn:s#T' s:f='1'/> => <q:a type='urn:s#T' s:f='1'/>
      => <q:a RES><rdf:type rdf:resource='urn:s#T'/><s:f>1</s:f></q:a>

  {q:a=bag('1' '')} => <q:a><rdf:Bag><LI>1</LI><LI/></rdf:Bag></q:a>
  {q:a=seq('1' <u>)}
      => <q:a> <rdf:Seq> <rdf:_1>1</rdf:_1> <rdf:_2 rdf:resource='u'/> </rdf:Seq> </q:a>
  {q:a=alt()} => <q:a><rdf:Alt/></q:a>
  {q:a=alt('x' 'y'/xml:lang='de')}
      => <q:a><rdf:Alt><LI>x</LI><LI xml:lang='de'>y</LI></rdf:Alt></q:a>
  {q:a=lang('x'/xml:lang='x-default')}
      => <q:a><rdf:Alt><LI xml:lang='x-default'>x</LI></rdf:Alt></q:a>
  {q:a=seq({s:f='1'} bag(alt()))} 
      => <q:a><rdf:Seq><LI s:f='1'/><LI><rdf:Bag><LI><rdf:Alt/></LI></rdf:Bag></LI></rdf:Seq></q:a>

  {q:a='v'/xml:lang='en'} => <q:a xml:lang='en'>v</q:a>
      => <q:a RES><rdf:value xml:lang='en'>v</rdf:value></q:a>
  {q:a='v'/s:q='w'} => <q:a RES><s:q>w</s:q><rdf:value>v</rdf:value></q:a>
      => <q:a rdf:value='v' s:q='w'/>
  {q:a='v'/xml:lang='en'/rdf:type=<urn:s#T>} => <q:a xml:lang='en'><s:T rdf:value='v'/></q:a>
  {q:a=<u>/s:q='w'} => <q:a rdf:resource='u' s:q='w'/>
      => <q:a RES><rdf:value rdf:resource='u'/><s:q>w</s:q></q:a>
  {q:a={s:f='1'}/s:q={s:g='2'}} => <q:a RES><rdf:value s:f='1'/><s:q s:g='2'/></q:a>
  {q:a=bag('1'/s:r='x')/s:q=''}
      => <q:a RES><rdf:value><rdf:Bag><LI rdf:value='1' s:r='x'/></rdf:Bag></rdf:value><s:q/></q:a>
  {q:a={s:f='1'}/xml:lang='en'} => <q:a xml:lang='en' s:f='1'/>

  {q:a=bag('1'/xml:lang='en' '2'/xml:lang='de')}
      => <q:a><rdf:Bag xml:lang='en'><LI>1</LI><LI xml:lang='de'>2</LI></rdf:Bag></q:a>
  {q:a={s:f='1'/xml:lang='en' s:g=<u>}}
      => <q:a><rdf:Description xml:lang='en' s:f='1'><s:g rdf:resource='u'/></rdf:Description></q:a>
  {q:a='v'/xml:lang='en'/s:q='w'/xml:lang='fr'}
      => <q:a xml:lang='fr' RES><rdf:value xml:lang='en'>v</rdf:value><s:q>w</s:q></q:a>
  {q:a='v'/xml:lang='fr'/s:u=<u>}
      => <q:a xml:lang='en' RES><rdf:value xml:lang='fr'>v</rdf:value><s:u rdf:resource='u'/></q:a>
  {q:a=bag(<u>/xml:lang='fr'/s:q='w' <v>)}
      => <q:a><rdf:Bag xml:lang='fr'><LI resource='u' s:q='w'/><LI resource='v'/></rdf:Bag></q:a>
  {q:a='v'/xml:lang='fr'/s:q='w'/xml:lang='de'/s:r='t'/xml:lang='en'/s:u=<u>/xml:lang='en'/s:r='t'}
      => <q:a xml:lang='en' RES><rdf:value xml:lang='fr'>v</rdf:value><s:q RES><s:r>t</s:r><rdf:value xml:lang='de'>w</rdf:value></s:q><s:u rdf:resource='u' s:r='t'/></q:a>
)";

TEST(ReaderTest, ReadsEveryForm) {
  RegisterTestNamespaces();
  std::string tree;
  for (const Row& row : Rows(kForms)) {
    if (!row[0].empty()) tree = row[0];
    for (std::size_t i = 1; i < row.size() && !row[i].empty(); ++i) {
      SCOPED_TRACE(row[i]);
      Meta meta;
      EXPECT_EQ(ErrorOf([&] { meta = Parse(Described(row[i])); }), "none");
      EXPECT_EQ(Show(meta), tree);
      ExpectReadsAs(Serialize(meta), meta);
    }
  }
}

TEST(ReaderTest, MergesDescriptionsOfOneSubject) {
  for (const Row& row : Rows(R"(
      {} =>
      {q:a='1' rdf:type=<u> q:b='2'} => <D rdf:about='' q:a='1' rdf:type='u'><q:b>2</q:b></D>
      {q:a='1' q:b='2'} => <D about='x' q:a='1'/> <D rdf:about='x'><q:b>2</q:b></D>
      {q:a='1' q:b='2'} => <D rdf:about='' q:a='1'/><D q:b='2'/>
      {q:a='1'/xml:lang='en' rdf:type=<u> q:b='2'} => <D xml:lang='en' q:a='1' rdf:type='u'/><D q:b='2'/>)")) {
    const std::string body =
        Replaced(row[1], Rows("<D => <rdf:Description ;; /D => /rdf:Description"));
    EXPECT_EQ(Show(Parse(RDF(body))), row[0]) << body;
  }
  const std::string packet = RDF("<rdf:Description q:a='1'/>");
  EXPECT_EQ(Show(Parse(Replaced(packet, {{"<rdf:RDF", "<rdf:RDF xml:lang='en'"}}))),
            "{q:a='1'/xml:lang='en'}");
}

// The first property is at 3:1.
constexpr const char* kRefused = R"(
  <q:a><rdf:Bag><q:b/></rdf:Bag></q:a> => 202 3:15: ...rdf:Bag holds a q:b, but may only hold rdf:li
  <q:a><rdf:Bag>x</rdf:Bag></q:a> => 202 3:...rdf:Bag must not hold text ;; <q:a> => 201 3:
  <q:a><rdf:Bag q:b='1'/></q:a> => 202 3:6: ...rdf:Bag must not have the attribute q:b
  <q:a><rdf:Seq><rdf:_2/></rdf:Seq></q:a> => 202 3:15: ...rdf:_2 is item 2, but is in place 1
  <q:a><rdf:Seq><rdf:_1/><rdf:li/></rdf:Seq></q:a> => 202 3:24: ...rdf:li is item 1
  <q:a><rdf:Seq><rdf:_01/></rdf:Seq></q:a> => 202 3:15: ...rdf:_01 ;; <q:a>&unknown;</q:a> => 201 3:
  <q:a>\n text<q:b/></q:a> => 202 ...q:a holds text beside the element q:b
  <q:a><q:T/>text</q:a> => 202 3:...q:a must not hold text ;; <q:a ID='i'/> => 202 3:1: ...q:a must not have the attribute ID
  text => 202 ...rdf:Description must not hold text ;; <q:a/><q:a/> => 203 3:7: ...a second property q:a
  <q:a><q:T/><q:T/></q:a> => 202 3:12: ...second element, q:T ;; <rdf:li/> => 202 3:1: ...rdf:li
  <q:a rdf:resource='u'><q:T/></q:a> => 202 3:23: ...its value is in its attributes
  <q:a s:f='1' s:g='2'/><q:b><q:T s:f='1'><s:f/></q:T></q:b> => 203 3:41: ...a second property s:f
  <q:a RES><rdf:value/><rdf:value/></q:a> => 202 3:43: ...second rdf:value
  <q:a RES><rdf:value rdf:value='v'/></q:a> => 202 3:31: ...own rdf:value
  <q:a><rdf:Bag><LI RES><rdf:value rdf:resource='u' q:q='1'/></LI></rdf:Bag></q:a> => 202 3:48:...qualifiers
  <q:a rdf:resource='u' rdf:value='v'/> => 202 3:1: ...both rdf:resource and rdf:value
  <q:a rdf:datatype='u'><q:T/></q:a> => 202 3:23: ...rdf:datatype ;; <q:a>\x01</q:a> => 201 3:
  <q:a rdf:parseType='Literal'><b/></q:a> => 202 3:1: ..."Literal"
  <q:a RES q:b='1'/> => 202 3:1: ...rdf:parseType and another ;; <q:a RES rdf:datatype='u'/> => 202 3:1: ...another
  <q:a rdf:resource='u' resource='v'/> => 202 3:1: ...twice
  <q:a rdf:nodeID='i'/> => 202 3:1: ...rdf:nodeID ;; <q:1a/> => 201 3:1: ...q:1a is not a name
  <q:a><rdf:Description rdf:about='x'/></q:a> => 202 3:6: ...rdf:about
  <q:a xml:base='u'>x</q:a> => 202 3:1: ...xml:base ;; <q:a><b/></q:a> => 202 3:6: ...q:a holds a b
  <q:a b='1'/> => 202 3:1: ...attribute b has no namespace
  <q:a n:b='1'/> => 201 3:1: ...prefix of the attribute n:b is not declared
  <q:a q:b:c='1'/> => 201 3:1: ...q:b:c is not a name
  <q:a xmlns:p='urn:s#' rdf:value='' s:b='1' p:b='2'/> => 20...p:b
  <n:a/> => 201 3:1: ...prefix of n:a is not declared
  <a/> => 202 3:1: ...property a has no namespace ;; <xml:lang>en</xml:lang> => 202 3:1: ...xml:lang
  <q:a>ok</q:a>\n<q:b>\xC3(</q:b> => 205 4:6: ...not text)";

TEST(ReaderTest, RefusesWhatXMPDoesNotAllow) {
  Meta meta;
  RegisterTestNamespaces();
  meta.SetProperty(kQ, "kept", "1");
  for (const Row& row : Rows(kRefused)) {
    SCOPED_TRACE(row[0]);
    const std::string packet = Described(row[0]);
    ExpectError([&] { meta.ParseFromBuffer(packet.data(), Size(packet)); }, row[1]);
    EXPECT_EQ(Show(meta), "{q:kept='1'}");
  }
}

TEST(ReaderTest, RefusesOtherFrames) {
  std::vector<Row> names = Rows(R"(
      $xmp => $open</rdf:RDF> ;; $meta => <x:xmpmeta xmlns:x='adobe:ns:meta/'>
      $begin => <?xpacket begin='' id='W5M0MpCehiHzreSzNTczkc9d'?> ;; $end => <?xpacket end='w'?>
      $D => <rdf:Description  ;; $xml => <?xml version='1.0' encoding=)");
  names.push_back(Row{"$open", RDF("").substr(0, RDF("").find("</"))});
  for (const Row& row : Rows(R"(
      none => <?xml-stylesheet encoding='latin1'?>$xmp ;; 201 1:1: the buffer is empty => ;; 201 1:1:\s => no XML ;; 201 2: => $xmp$xmp
      202 1:1: the root element is Ā => <\x00\x00\x01/\x00>\x00
      203 2:...a second property q:a => $open$D q:a='1'/>$D q:a='2'/></rdf:RDF>
      202 1:1: the root element is q:a => <q:a xmlns:q='urn:q#'/> ;; 201 1: => $xml'UTF-8' ?$xmp
      201 1:1: the prefix of rdf:RDF is not declared => <rdf:RDF/>
      202 1:37: x:xmpmeta holds no rdf:RDF => $meta</x:xmpmeta> ;; 201 1:31:\s => $xml'UTF-16'?>$xmp
      202 1:37: x:xmpmeta holds a b => $meta<b/></x:xmpmeta>
      203 2:11: a second rdf:RDF => $meta$xmp$xmp</x:xmpmeta>
      203 1: => <!DOCTYPE a [<!ENTITY e 'x'>]>$xmp ;; 202 2:1:\s => $open<rdf:Bag/></rdf:RDF>
      202 2:1: rdf:RDF holds a q:Typed => $open<q:Typed/></rdf:RDF>
      202 2:1:\s => $open$D rdf:ID='a'/></rdf:RDF> ;; 201 2:53:\s => garbage\n  $begin<rdf:RDF/>$end
      203 3:1: rdf:about is "b" => $open$D rdf:about='a'/>\n$D rdf:about='b'/></rdf:RDF>
      203 3:1:\s => $open$D rdf:about='a'/>\n$D/></rdf:RDF>
      203 1:1: the packet has no trailer => $begin$xmp
      203 3:11: the trailer has neither => \n $begin$xmp<?xpacket end='x'?>
      203 2:11: the trailer has neither => $begin$xmp<?xpacket end='w"?>
      202 3:1:\s => garbage $begin\n$open<rdf:Bag/></rdf:RDF>$end ;; 203 2:24: an xpacket => $begin$xmp<?xpacket x?>$end
      203 2:11: the trailer has no end => $begin$xmp<?xpacket end='w'
      203 2:80: an xpacket instruction => $begin$xmp$end$begin$xmp$end
      203 1:22: an xpacket instruction without a header => <?xpacket  begin=''?>$xmp$end
      203 2:30: an xpacket => $begin$meta$xmp$end</x:xmpmeta>$end
      201 1:31: the encoding "ISO-8859-1" => $xml'ISO-8859-1'?>$xmp
      201 1:31:\s => \xEF\xBB\xBF<?xml\tversion='1.0' encoding='latin1'?>$xmp
      201 1:31:\s => \xEF\xBB\xBF$xml'latin1'?>\n<a>\xFF$begin$xmp$end</a> ;; 201 1:31: => $xml''?>$xmp
      201 1:31:\s => $xml'US-ASCII'?>$xmp<!--\xC3\xA9--> ;; 205 1:1: => \xEF\xBB\xBF\xFF
      201 1:31:\s => $xml'ascii'?><?xpacket begin='\xEF\xBB\xBF'?>$xmp$end
      201 1:51:\s => \xEF\xBB\xBF$begin<rdf:RDF/>$end
      201 1:...twice => <x:xmpmeta xmlns:x='adobe:ns:meta/' xmlns:p='u' xmlns:q='u' p:a='' q:a=''/>)")) {
    const std::string packet = Replaced(row[1], names);
    SCOPED_TRACE(packet);
    ExpectError([&] { Parse(packet); }, row[0]);
  }
}

// Fields: what opens and closes a repetition, and the levels that it adds.
TEST(ReaderTest, NestsToTheLimitAndNoFurther) {
  for (const Row& row : Rows(R"(
      <q:a RES> => </q:a> => 1 ;; <q:a RES><rdf:value/> => </q:a> => 1
      <q:a><rdf:Bag><rdf:li RES> => </rdf:li></rdf:Bag></q:a> => 2
      <q:a RES><s:q/><rdf:value RES> => </rdf:value></q:a> => 1)")) {
    SCOPED_TRACE(row[0]);
    const auto nested = [&](int times) {
      return Described(Repeated(row[0], times) + "<q:leaf/>" + Repeated(row[1], times));
    };
    const int most = (kXMP_MaxNesting - 1) / std::stoi(row[2]);
    const Meta meta = Parse(nested(most));
    ExpectReadsAs(Serialize(Meta(meta)), meta);
    for (const int tooMany : {most + 1, 5000}) {
      ExpectError([&] { Parse(nested(tooMany)); }, "203 3:...deeper than 100");
    }
  }
  ExpectError(
      [] { Parse(Described(Repeated("<q:a RES>", kXMP_MaxNesting - 1) + "<q:leaf s:f='1'/>")); },
      "203 3:...deeper than 100");
}

}  // namespace
