#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <gmock/gmock.h>

#include <zelcore/xml/Reader.h>

#include "support/ScratchFolder.h"
#include "support/Table.h"

namespace zelcore::xml {
namespace {

using ::testing::StartsWith;

// The events of a parse as a text: ^ and $ for the document, <name a='v'>, </name>, 'text' however
// it was split, [ and ] for CDATA, !comment!. The positions of the tags are a text apart.
// Where namespaces are wanted, (p=uri and p) stand for a mapping, and {uri}local=name follows
// each tag, and {uri}local=name=value for its attributes.
class EventLog : public AbstractParseHandler {
 public:
  using Text = const UTF16String&;
  // The call after `calls` calls throws.
  explicit EventLog(const Reader& reader, int calls = -1) : mCallsLeft(calls), mReader(reader) {}

  bool WantsNamespaces() const override { return mWantsNamespaces; }
  void StartDocument() override { Add("^"); }
  void StartElement(Text name, const std::map<UTF16String, UTF16String>& attributes) override {
    std::string tag = "<" + Utf8(name);
    for (const auto& [key, value] : attributes) tag += Utf8(u" " + key + u"='" + value + u"'");
    AddTag(tag + ">");
  }
  void StartElementWithNamespace(Text uri, Text local, Text name,
                                 const std::vector<Attribute>& attributes) override {
    Add(Utf8(u"{" + uri + u"}" + local + u"=" + name));
    for (const Attribute& a : attributes) {
      StartElementWithNamespace(a.mNamespaceURI, a.mLocalName, a.mQualifiedName + u"=" + a.mValue,
                                {});
    }
  }
  void EndElement(Text name) override { AddTag("</" + Utf8(name) + ">"); }
  void EndElementWithNamespace(Text uri, Text local, Text name) override {
    StartElementWithNamespace(uri, local, name, {});
  }
  void StartPrefixMapping(Text prefix, Text uri) override { Add("(" + Utf8(prefix + u"=" + uri)); }
  void EndPrefixMapping(Text prefix) override { Add(Utf8(prefix + u")")); }
  void StartCDATA() override { Add("["); }
  void EndCDATA() override { Add("]"); }
  void Characters(Text text) override {
    EXPECT_FALSE(text.empty());
    const bool goesOn = mEvents.ends_with("'");
    if (goesOn) mEvents.pop_back();
    Add((goesOn ? "" : "'") + Utf8(text) + "'");
  }
  void Comment(Text text) override { Add("!" + Utf8(text) + "!"); }
  void EndDocument() override { Add("$"); }

  std::string mEvents, mPositions;
  int mCallsLeft;
  bool mWantsNamespaces = false;

 private:
  void Add(const std::string& event) {
    if (mCallsLeft-- == 0) throw std::runtime_error("handler");
    mEvents += event;
  }
  void AddTag(const std::string& tag) {
    Add(tag);
    const Position position = mReader.CurrentPosition();
    mPositions += std::to_string(position.mLine) + ":" + std::to_string(position.mColumn) + " ";
  }

  const Reader& mReader;
};

// An error as it is shown, or "".
std::string ErrorText(bool isGood, const Reader& reader) {
  if (isGood) return "";
  const ReadError& error = reader.Error();
  return error.mSource + ":" + std::to_string(error.mPosition.mLine) + ":" +
         std::to_string(error.mPosition.mColumn) + ": " + error.mReason;
}

struct Parsed {
  std::string mEvents, mPositions, mError;  // the error follows the events, too
};

Parsed ParseAll(const std::string& document, bool asStream = false, bool wantsNamespaces = false) {
  Reader reader;
  EventLog log(reader);
  log.mWantsNamespaces = wantsNamespaces;
  std::istringstream stream(document);
  const bool isGood =
      asStream ? reader.ParseStream(stream, "s", log) : reader.ParseBuffer(document, "s", log);
  EXPECT_THAT(log.mEvents, ::testing::EndsWith("$"));
  const std::string error = ErrorText(isGood, reader);
  return {log.mEvents + error, log.mPositions, error};
}

TEST(Reader, ReportsEventsInDocumentOrder) {
  const std::vector<Row> dtd = Rows(
      "%dtd => <!DOCTYPE r [<!ENTITY e 'x&#233;'><!ENTITY m '<b>y</b>'><!ENTITY no ''>"
      "<!ENTITY two '&e;&e;'><!ATTLIST r d CDATA 'dflt'>]>");
  for (const Row& row : Rows(R"(
      <?xml version='1.0' encoding='ISO-8859-1'?><r>\xE9\xFC</r> => <r>'éü'</r>
      <?xml version='1.0' encoding='windows-1252'?><r>\xE9\x80\x93</r> => <r>'é€“'</r>
      <?xml version='1.0' encoding='US-ASCII'?><r>&#233;</r> => <r>'é'</r>
      <r/> => <r></r> ;; <?xml version='1.0'?>\n<!-- c --><r></r>\n<?pi x?> => ! c !<r></r>
      <r b='2' a='1'/> => <r a='1' b='2'></r>
      <r xml:lang='de'> a <s> b </s>\n</r> => <r xml:lang='de'>' a '<s>' b '</s>'\n'</r>
      <ré é='ü𝄞'>𝄞</ré> => <ré é='ü𝄞'>'𝄞'</ré>
      <r>a<![CDATA[<b>&amp;]]>c<![CDATA[]]></r> => <r>'a'['<b>&amp;']'c'[]</r>
      <r>1<![CDATA[\r\n2\r\r]]><![CDATA[\n&]]></r> => <r>'1'['\n2\n\n']['\n&']</r>
      <r><![CDATA[a]]><s/><![CDATA[b]]><!--c--><![CDATA[d]]><?p?>e</r> => <r>['a']<s></s>['b']!c!['d']'e'</r>
      <r><![CDATA[a]]><![CDATA[b]]></r> => <r>['a']['b']</r> ;; <r>a<!-- -c -->b<?pi?>c</r> => <r>'a'! -c !'bc'</r>
      <r a='&lt;&#x1D11E;&quot;'>&lt;&gt;&amp;&apos;&#233;&#x1D11E;</r> => <r a='<𝄞"'>'<>&'é𝄞'</r>
      <r a='x\r\ny\tz&#10;'>1\r\n2\r3\n4&#13;</r> => <r a='x y z\n'>'1\n2\n3\n4\r'</r>
      %dtd<r a='&e;&no;'>&e;&no;-&two;&e;</r> => <r a='xé' d='dflt'>'xé-xéxéxé'</r>
      %dtd<r>&m;-&m;</r> => <r d='dflt'><b>'y'</b>'-'<b>'y'</b></r>
      <!DOCTYPE r [<!ENTITY t '1&#13;2&#13;&#10;3'>]><r a='&t;'>&t;\r</r> => <r a='1 2  3'>'1\r2\r\n3\n'</r>
      <!DOCTYPE r [<!ENTITY c '<b&#13;a="&#13;>"/><!--&#13;-->&#13;'><!ENTITY d '&#13;&c;'>]><r>&d;</r> => <r>'\r'<b a=' >'></b>!\n!'\r'</r>)")) {
    EXPECT_EQ(ParseAll(Replaced(row[0], dtd)).mEvents, "^" + row[1] + "$") << row[0];
  }
}

TEST(Reader, ResolvesNamespacesWhereTheyAreWanted) {
  for (const Row& row : Rows(R"(
      <r b='2' a='1'>t<s/></r> => <r a='1' b='2'>{}r=r{}b=b=2{}a=a=1't'<s>{}s=s</s>{}s=s</r>{}r=r
      <p:r xml:a='1'/> => <p:r xml:a='1'>{}r=p:r{http://www.w3.org/XML/1998/namespace}a=xml:a=1</p:r>{}r=p:r
      <r xmlns='u'><a:b:c xmlns='' q:a=''/></r> => (=u<r xmlns='u'>{u}r=r(=<a:b:c q:a='' xmlns=''>{}b:c=a:b:c{}a=q:a=</a:b:c>{}b:c=a:b:c)</r>{u}r=r)
      <p:r q:a='1' xmlns:p='u' a='2' xmlns:q='v'><p:s xmlns:p='w'/></p:r> => (p=u(q=v<p:r a='2' q:a='1' xmlns:p='u' xmlns:q='v'>{u}r=p:r{v}a=q:a=1{}a=a=2(p=w<p:s xmlns:p='w'>{w}s=p:s</p:s>{w}s=p:sp)</p:r>{u}r=p:rq)p))")) {
    EXPECT_EQ(ParseAll(row[0], false, true).mEvents, "^" + row[1] + "$") << row[0];
  }
}

// A text in the encoding "8", "16B", "16L", "32B" or "32L": bits, and the order of bytes.
std::string Encoded(const std::string& text, const std::string& encoding) {
  if (encoding == "8") return text;
  std::string bytes;
  char32_t lead = 0;
  for (const char32_t unit : Utf16(text)) {
    const bool isLead = encoding[0] == '3' && unit >= 0xD800 && unit < 0xDC00;
    const bool isPair = lead != 0;
    const char32_t value = isPair ? 0x10000 + ((lead - 0xD800) << 10) + (unit - 0xDC00) : unit;
    lead = isLead ? unit : 0;
    if (isLead) continue;
    const int size = encoding[0] == '3' ? 4 : 2;
    for (int i = 0; i < size; ++i) {
      bytes += static_cast<char>(value >> 8 * (encoding[2] == 'B' ? size - 1 - i : i));
    }
  }
  return bytes;
}

std::string Marked(const std::string& text, const std::string& encoding) {
  return Encoded("\uFEFF" + text, encoding);
}

// Every mark with every declaration and every encoding: Y for a text that is read as it was meant,
// o for another text, a dot for a refusal. Combinations that are not listed are refused.
TEST(Reader, MarkDeclarationAndBytesMustAgree) {
  const std::vector<Row> names = Rows(
      "=> 1 ;; ?> => 2 ;; UTF-8 ;; UTF-16 ;; utf-16le ;; UTF-16BE ;; ISO-10646-UCS-2 ;; "
      "UTF-32 ;; UTF-32LE ;; UTF-32BE ;; UCS-4 ;; ISO-8859-1 ;; US-ASCII");
  const std::string kRefused(names.size(), '.');
  const std::vector<Row> read = Rows(R"(
      8 => none => YYY........o. ;; 8 => 8 => YYY..........
      16B => none => ...Y.YY...... ;; 16B => 16B => YY.Y.YY......
      16L => none => ...YY.Y...... ;; 16L => 16L => YY.YY.Y......
      32B => none => .......Y.YY.. ;; 32B => 32B => YY.....Y.YY..
      32L => none => .......YY.Y.. ;; 32L => 32L => YY.....YY.Y..)");
  for (const std::string encoding : {"8", "16B", "16L", "32B", "32L"}) {
    for (const std::string mark : {"none", "8", "16B", "16L", "32B", "32L"}) {
      std::string outcomes;
      for (const Row& name : names) {
        const std::string declaration =
            name[1] == "1" ? ""
                           : "<?xml version='1.0'" +
                                 (name[1] == "2" ? "" : " encoding='" + name[0] + "'") + "?>";
        const std::string document = Encoded(declaration + "<r>é€𝄞</r>", encoding);
        const auto parsed = ParseAll((mark == "none" ? "" : Marked("", mark)) + document);
        outcomes += !parsed.mError.empty() ? '.' : parsed.mEvents == "^<r>'é€𝄞'</r>$" ? 'Y' : 'o';
      }
      const auto row = std::find_if(read.begin(), read.end(), [&](const Row& candidate) {
        return candidate[0] == encoding && candidate[1] == mark;
      });
      EXPECT_EQ(outcomes, row == read.end() ? kRefused : (*row)[2]) << encoding << ' ' << mark;
    }
  }
}

// A long document's parts come in pieces; wherever they are cut, nothing may change.
TEST(Reader, PiecesOfLongDocumentsDoNotShow) {
  constexpr std::size_t kPiece = 64 * 1024;
  const std::string content = "é<s é='ü&amp;\n𝄞'\n  b='1'/>\r\nté€xt𝄞&lt;&#233;<t\n/>\n𝄞</r\n>";
  const std::string events = "<s b='1' é='ü& 𝄞'></s>'\nté€xt𝄞<é'<t></t>'\n𝄞'</r>$";
  const std::string others = "<r><!--é-->a<![CDATA[é\r\n𝄞]]>b<?é é?>c</r>";
  for (const char filler : {' ', '\n'}) {
    for (std::size_t i = 0; i <= content.size(); ++i) {
      const std::size_t length = kPiece - 3 - i, lines = filler == '\n' ? length : 0;
      const std::string filling(length, filler);
      const Parsed parsed = ParseAll("<r>" + filling + content, i % 2 == 0);
      ASSERT_EQ(parsed.mEvents, "^<r>'" + filling + "é'" + events) << i;
      const auto at = [&](std::size_t line, std::size_t column) {
        return std::to_string(lines + line) + ":" + std::to_string(column) + " ";
      };
      const std::string s = at(1, lines > 0 ? 2 : length + 5), t = at(4, 17);
      ASSERT_EQ(parsed.mPositions, "1:1 " + s + s + t + t + at(6, 2)) << "cut at " << i;
    }
  }
  for (std::size_t i = 0; i <= others.size(); ++i) {
    const std::string document = std::string(kPiece - i, ' ') + others;
    ASSERT_EQ(ParseAll(document, i % 2 == 0).mEvents, "^<r>!é!'a'['é\n𝄞']'bc'</r>$") << i;
  }
  for (int i = 290; i < 310; ++i) {  // sections come in pieces of their own
    const std::string filling = std::string(2 * static_cast<std::size_t>(i), 'x');
    ASSERT_EQ(ParseAll("<r><![CDATA[" + filling + "\r\ny]]></r>").mEvents,
              "^<r>['" + filling + "\ny']</r>$");
  }
}

// Latin-1, so that each character is a byte, and a column.
std::string ManyPlaces(std::string& places) {
  std::string document = "<?xml version='1.0' encoding='ISO-8859-1'?> <r>";
  places = "1:45 ";
  std::int64_t column = 48;
  for (int line = 1; line < 3000; ++line) {
    const std::string at = std::to_string(line) + ":" + std::to_string(column + line % 97) + " ";
    document += std::string(static_cast<std::size_t>(line % 97), '\xE9') + "<b a='\xE9'\n/>";
    places += at + at;
    column = 3;
  }
  places += "3000:3 ";
  return document + "</r>";
}

TEST(Reader, KnowsThePlacesOfTags) {
  std::string places;
  EXPECT_EQ(ParseAll(ManyPlaces(places), true).mPositions, places);
  EXPECT_EQ(ParseAll(std::string(65'500, '\n') + "<r><b/></r>").mPositions,
            "65501:1 65501:4 65501:4 65501:8 ");
  EXPECT_EQ(ParseAll("\xEF\xBB\xBF<r>é<a/></r>", true).mPositions, "1:1 1:5 1:5 1:9 ");
  for (const std::string encoding : {"16B", "32L"}) {
    const std::string document = "\n<r>é𝄞<a/>" + std::string(65'500, '\n') + "</r>";
    EXPECT_EQ(ParseAll(Marked(document, encoding), true).mPositions, "2:1 2:6 2:6 65502:1 ");
  }
  EXPECT_THAT(  // tags of an entity are where it is referred to
      ParseAll("<!DOCTYPE r [<!ENTITY e '<b>t</b>'>]>\n<r>\n  &e;\n    &e;</r>").mPositions,
      ::testing::MatchesRegex("2:1 3:[3-6] 3:[3-6] 4:[5-8] 4:[5-8] 4:8 "));
}

TEST(Reader, KnowsItsPlaceAgainAfterAnotherDocumentWithinACallback) {
  struct Nesting : AbstractParseHandler {
    void StartElement(const UTF16String& name,
                      const std::map<UTF16String, UTF16String>& /*attributes*/) override {
      const bool isGood = name != u"r" || mReader.ParseBuffer("\n\n<inner/>", "inner", *this);
      EXPECT_TRUE(isGood);
      mLines.push_back(mReader.CurrentPosition().mLine);
    }
    Reader mReader;
    std::vector<std::int64_t> mLines;
  } handler;
  EXPECT_TRUE(handler.mReader.ParseBuffer("\n<r>\n\n<s/></r>", "outer", handler));
  EXPECT_EQ(handler.mLines, (std::vector<std::int64_t>{3, 2, 4}));
}

TEST(Reader, LimitsMarkup) {
  for (const Row& row :
       Rows("<r a=' => '/> ;; <r><![CDATA[ => ]]></r> ;; <!-- => --><r/> ;; <r><?p => ?></r>")) {
    for (const std::size_t size : {8'380'000u, 8'600'000u}) {
      const std::string events = ParseAll(row[0] + std::string(size, ' ') + row[1]).mEvents;
      EXPECT_EQ(events.ends_with("$"), size < (8u << 20)) << row[0] << events.substr(0, 200);
    }
  }
}

TEST(Reader, LetsExceptionsThroughAndCanBeUsedAgain) {
  const std::string document =
      "<!DOCTYPE r [<!ENTITY e '<b>y</b>'>]><r>a<!--c-->&e;<![CDATA[d]]></r>";
  Reader reader;
  bool hasThrown = true;
  for (int call = 0; hasThrown; ++call) {
    EventLog thrower(reader, call), log(reader);
    try {
      EXPECT_TRUE(reader.ParseBuffer(document, "s", thrower));
      hasThrown = false;
    } catch (const std::runtime_error&) {
      EXPECT_EQ(thrower.mCallsLeft, -1) << "nothing may follow call " << call;
    }
    EXPECT_EQ(hasThrown, call < 12);
    EXPECT_TRUE(reader.ParseBuffer("<r/>", "s", log));
    EXPECT_EQ(log.mEvents, "^<r></r>$");
  }
}

TEST(ReaderErrors, NameThePlace) {  // line, and what was reported before, unless that is open
  for (const Row& row : Rows(R"(
      <r>\n <s></r> => 2 => <r>'\n '<s> ;; <r>\n\n</s> => 3 => <r>'\n\n' ;; <r/><s/> => 1 => <r></r> ;; text => 1
      <r a='1' a='2'/> => 1 ;; <r>\n<a b=1/></r> => 2 => <r>'\n' ;; <r>\n<a b='<'/></r> => 2 => <r>'\n'
      <r>\n&undeclared;</r> => 2 => <r>'\n' ;; <r>\na & b</r> => 2 => <r>'\na ' ;; <r>\n&#0;</r> => 2 => <r>'\n'
      <r>\n&#xD800;</r> => 2 => <r>'\n' ;; <r>\n\x01</r> => 2 => ? ;; <r>\n\xC3(</r> => 2 => ? ;; <r>\n]]></r> => 2 => ?
      <r>\n<![CDATA[\xC1\x81]]></r> => 2 => <r>'\n'[ ;; <r>\n<!-- -- --></r> => 2 => ? ;; \s<?xml version='1.0'?><r/> => 1 ;; => 1 ;; \s => 1 ;; \n\s => ?
      \xFF\xFE<\x00r\x00/\x00 => 1:3 => ? ;; <\x00r\x00/\x00>\x00 => 1:1: the document is in UTF-16LE without byte-order mark or declaration
      <?xml version='1.0'\nencoding='UTF-16'?>\n<r/> => 2:11: the declared encoding is not that of the document
      \xEF\xBB\xBF<?xml version='1.0' encoding='latin1'?><r/> => 1:31: the declared encoding is not that of the document, which is UTF-8
      <!DOCTYPE r [\n<!ENTITY e 'x''>\n<!--'-->]><r/> => 2:15 ;; <!DOCTYPE r [\n<!ENTITY e "x>\n]>\n<r/> => 4:5: the document ends ;; <!DOCTYPE r [\n<!-- c ]> => 2:10: the document ends
      <?xml version='1.0' encoding='latin1'?>\n<!DOCTYPE r [\n<!ENTITY e 'x''>]><r/> => 3:15 ;; <!DOCTYPE r [\n<!ENTITY e 'x'>]]\n => 2:17 ;; <!DOCTYPE r [\n<!ENTITY e 'x'> => 2:16: the document ends
      <?xml version='1.0' encoding='klingon'?><r/> => 1 ;; <?xml version='1.0' encoding='US-ASCII'?>\n<r>\xE9</r> => 2 => ?
      <?xml version='1.0' encoding='windows-1252'?>\n<r>\n<b/>\x81</r> => 3:5: bytes that are not text in the document encoding => ?
      <?xml version='1.0' encoding='US-ASCII'?>\n<r/>\n\xE9 => 3:1: bytes that are not text in the document encoding => <r></r>
      <?xml version='1.0' encoding='UTF-8'?>\n<r>\xE9</r> => 2 => ? ;; <?xml version='1.0' encoding='Shift_JIS'?><r>\x83 => 1:46: bytes that are not text in the document encoding => ?
      <!DOCTYPE r [<!ENTITY e SYSTEM 'file:///etc/hostname'>]>\n<r>&e;</r> => 2 => <r>
      <!DOCTYPE r [<!ENTITY e SYSTEM '/dev/zero'>]>\n<r a='&e;'/> => 2
      <!DOCTYPE r [<!ENTITY % p SYSTEM 'file:///etc/hostname'>\n%p;]><r/> => 2
      <!DOCTYPE r SYSTEM 'file:///dev/zero'>\n<r>&e;</r> => 2 => <r>
      <!DOCTYPE r SYSTEM 'http://localhost/x'>\n<r a='&e;'/> => 2 => ?
      <!DOCTYPE r [<!ENTITY a '&b;'><!ENTITY b '&a;'>]>\n<r>&a;</r> => 2 => <r>
      <!DOCTYPE r [<!ENTITY a '&#10;&#10;&#10;</r>'>]>\n<r>&a; => 2:7 => <r>'\n\n\n')")) {
    const auto [events, places, error] = ParseAll(row[0]);
    const bool isPlace = !row[1].empty() && row[1].find_first_not_of("0123456789:") == row[1].npos;
    EXPECT_THAT(error, StartsWith(row[1] == "?" ? "s:" : "s:" + row[1] + (isPlace ? ":" : "")))
        << row[0];
    EXPECT_TRUE(row[2] == "?" || events == "^" + row[2] + "$" + error) << row[0] << events;
  }
  EXPECT_EQ(ParseAll("<!DOCTYPE r SYSTEM 'file:///dev/zero'><r/>").mError, "");
}

TEST(ReaderErrors, NoPrefixOfADocumentIsGood) {
  const std::string document =
      "<?xml version='1.0'?>\n<!DOCTYPE r [<!ENTITY e 'x'>]>\n<r a='é'>\n<!--c-->té𝄞xt&e;&#233;\n"
      "<![CDATA[d]]><?p i?><b\n/></r>";
  ASSERT_EQ(ParseAll(document).mError, "");
  for (std::size_t length = 0; length < document.size(); ++length) {
    const std::string prefix = document.substr(0, length);
    Reader reader;
    EventLog log(reader);
    ASSERT_FALSE(reader.ParseBuffer(prefix, "s", log)) << length;
    const ReadError& error = reader.Error();
    const auto lines = 1 + std::count(prefix.begin(), prefix.end(), '\n');
    EXPECT_TRUE(error.mPosition.mLine >= 1 && error.mPosition.mLine <= lines) << length;
    EXPECT_TRUE(error.mPosition.mColumn >= 1 && error.mPosition.mColumn <= 60) << length;
    EXPECT_TRUE(!error.mReason.empty() && error.mReason.find('\n') == std::string::npos) << length;
  }
}

// Entities that multiply each other, in `levels` levels of ten references each.
std::string Bomb(int levels, const std::string& seed, const std::string& root) {
  std::string dtd = "<!DOCTYPE r [<!ENTITY e0 '" + seed + "'>";
  for (int level = 1; level <= levels; ++level) {
    dtd += "<!ENTITY e" + std::to_string(level) + " '" +
           Repeated("&e" + std::to_string(level - 1) + ";", 10) + "'>";
  }
  return dtd + "]>" + root;
}

// Documents with their errors; those within the limits have none. Within a tag the limit is noticed
// at once, at the line of an attribute, not where the tag ends.
TEST(ReaderErrors, GrowthIsLimited) {
  constexpr int kMost = 10'000;
  const std::string large(100'000, 'x'), small(900, 'x'), references = Repeated("&e0;", 1000);
  const auto declared = [](int count) {
    return "<!DOCTYPE r [<!ATTLIST b " + Repeated("a# CDATA '' ", count) + ">]>";
  };
  const auto nested = [](int depth, const std::string& innermost = "") {
    return Repeated("<a>", depth) + innermost + Repeated("</a>", depth);
  };
  for (const auto& [document, error] : std::vector<std::pair<std::string, std::string>>{
           {Bomb(2, "x", "<r a='&e2;'>&e2;</r>"), ""},
           {Bomb(9, "lol", "<r>&e9;</r>"), "s:1:.*expand.*"},
           {Bomb(9, "", "<r a='&e9;'/>"), "s:1:.*expand.*"},
           {Bomb(9, "<b/>", "<r>&e9;</r>"), "s:1:.*expand.*"},
           {Bomb(0, large, "<r>" + Repeated("&e0;", 2000) + "</r>"), "s:1:.*beyond the limit.*"},
           {Bomb(0, large, "<r>" + Repeated("<b a='&e0;'/>", 2000) + "</r>"),
            "s:1:.*beyond the limit.*"},
           {Bomb(0, small, "<r>" + Repeated(references, 100)), "s:1:.*beyond the limit.*"},
           {Bomb(0, small, "<r" + Repeated("\na#='" + references + "'", 200) + "/>"),
            "s:7.:.*beyond the limit.*"},
           {nested(kMost), ""},
           {Bomb(0, nested(100), nested(kMost - 50, "&e0;")), "s:.+"},
           {"<r" + Repeated(" a#=''", kMost) + "/>", ""},
           {"<r" + Repeated(" a#=''", kMost + 1) + "/>", ".*more than 10000.*"},
           {"<r" + Repeated(" xmlns:n#='u'", kMost) + "/>", ""},
           {"<r" + Repeated(" xmlns:a#='u'", kMost) + "><b xmlns='u'/></r>", ".*more than 10000.*"},
           {declared(kMost) + "<r><b/></r>", ""},
           {declared(kMost + 1) + "<r/>", ".*more than 10000.*"},
           {declared(kMost) + "<r>" + Repeated("<b/>", 100) + "</r>", ".*default attributes.*"}}) {
    Reader reader;
    AbstractParseHandler handler;
    const bool isGood = reader.ParseBuffer(document, "s", handler);
    EXPECT_THAT(ErrorText(isGood, reader), ::testing::MatchesRegex(error))
        << document.substr(0, 60);
  }
  EXPECT_THAT(ParseAll("\n" + nested(kMost + 1)).mEvents,
              StartsWith("^" + Repeated("<a>", kMost) + "$s:2:30001: "));
}

TEST(ReaderErrors, FilesAndStreamsThatCannotBeRead) {
  const ScratchFolder folder;
  const std::string path = folder.Write("bäd𝄞", "<r>").parent_path().string();
  folder.Write("good", "<r>é</r>");
  for (const std::string name : {"/missing", "/", "/bäd𝄞", "/bäd𝄞/below", "/good"}) {
    Reader reader;
    EventLog log(reader);
    const std::string error = ErrorText(reader.ParseFile(path + name, log), reader);
    EXPECT_EQ(error.starts_with(path + name + ":1:"), name != "/good") << error;
    EXPECT_EQ(reader.Error().mReason.empty(), name == "/good") << name;
    EXPECT_EQ(log.mEvents == "^<r>'é'</r>$", name == "/good") << log.mEvents;
  }
  struct Failing : std::stringbuf {
    using std::stringbuf::stringbuf;
    int_type underflow() override { throw std::runtime_error("fails after the first piece"); }
  } failing("<r/>" + std::string(64 * 1024 - 4, ' '));
  std::istream stream(&failing);
  Reader reader;
  EventLog log(reader);
  EXPECT_EQ(ErrorText(reader.ParseStream(stream, "s", log), reader), "s:1:65537: reading failed");
}

}  // namespace
}  // namespace zelcore::xml
