#include <sstream>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "support/Table.h"
#include "zelcore/EventLog.h"

namespace zelcore::xml {
namespace {

struct Parsed {
  std::string mEvents, mPositions;
};

Parsed ParseAll(const std::string& document, bool asStream = false) {
  Reader reader;
  EventLog log(reader);
  std::istringstream stream(document);
  const bool isGood =
      asStream ? reader.ParseStream(stream, "s", log) : reader.ParseBuffer(document, "s", log);
  return {log.mEvents + ErrorText(isGood, reader), log.mPositions};
}

std::string Events(const std::string& document) {
  return ParseAll(document).mEvents;
}

TEST(Reader, ReportsEventsInDocumentOrder) {
  const std::vector<Row> dtd = Rows(
      "%dtd => <!DOCTYPE r [<!ENTITY e 'x&#233;'><!ENTITY m '<b>y</b>'><!ENTITY no ''>"
      "<!ENTITY two '&e;&e;'><!ATTLIST r d CDATA 'dflt'>]>");
  for (const Row& row : Rows(R"(
      <r/> => <r></r> ;; <?xml version='1.0'?>\n<!-- c --><r></r>\n<?pi x?> => ! c !<r></r>
      <r b='2' a='1'/> => <r a='1' b='2'></r> ;; <r xml:lang='de'> a <s> b </s>\n</r> => <r xml:lang='de'>' a '<s>' b '</s>'\n'</r>
      <r xmlns='u' xmlns:p='v' p:a='1' a='2'><p:s/></r> => <r a='2' p:a='1' xmlns='u' xmlns:p='v'><p:s></p:s></r>
      <p:r q:a='1'><a:b:c/></p:r> => <p:r q:a='1'><a:b:c></a:b:c></p:r> ;; <ré é='ü𝄞'>𝄞</ré> => <ré é='ü𝄞'>'𝄞'</ré>
      <r>a<![CDATA[<b>&amp;]]>c<![CDATA[]]></r> => <r>'a'['<b>&amp;']'c'[]</r>
      <r><![CDATA[a]]><![CDATA[b]]></r> => <r>['a']['b']</r> ;; <r>a<!-- -c -->b<?pi?>c</r> => <r>'a'! -c !'bc'</r>
      <r a='&lt;&#x1D11E;&quot;'>&lt;&gt;&amp;&apos;&#233;&#x1D11E;</r> => <r a='<𝄞"'>'<>&'é𝄞'</r>
      <r a='x\r\ny\tz&#10;'>1\r\n2\r3\n4&#13;</r> => <r a='x y z\n'>'1\n2\n3\n4\r'</r>
      %dtd<r a='&e;&no;'>&e;&no;-&two;&e;</r> => <r a='xé' d='dflt'>'xé-xéxéxé'</r>
      %dtd<r>&m;-&m;</r> => <r d='dflt'><b>'y'</b>'-'<b>'y'</b></r>)")) {
    EXPECT_EQ(Events(Replaced(row[0], dtd)), "^" + row[1] + "$") << row[0];
  }
}

std::string InUTF16(const std::u16string& text, bool bigEndian) {
  std::string bytes;
  for (const char16_t unit : u"\xFEFF" + text) {
    const char high = static_cast<char>(unit >> 8), low = static_cast<char>(unit & 0xFF);
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  }
  return bytes;
}

TEST(Reader, ReadsEncodings) {
  const std::u16string wide = u"<?xml version='1.0' encoding='UTF-16'?><r>é€𝄞</r>";
  const std::pair<std::string, std::string> cases[] = {
      {"\xEF\xBB\xBF<r>é€𝄞</r>", "é€𝄞"},
      {"<?xml version='1.0' encoding='utf-8'?><r>é€𝄞</r>", "é€𝄞"},
      {InUTF16(wide, true), "é€𝄞"},
      {InUTF16(wide, false), "é€𝄞"},
      {InUTF16(u"<r>é€𝄞</r>", false), "é€𝄞"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><r>\xE9\xFC</r>", "éü"},
      {"<?xml version='1.0' encoding='windows-1252'?><r>\xE9\x80\x93</r>", "é€“"},
      {"<?xml version='1.0' encoding='US-ASCII'?><r>&#233;</r>", "é"},
  };
  for (const auto& [document, text] : cases) {
    EXPECT_EQ(Events(document), "^<r>'" + text + "'</r>$") << document;
  }
}

// The places of the "<" of every tag of a document without comments, CDATA and DTD, in the order of
// the events, found by walking its text.
std::string TagPositions(const std::string& document) {
  std::string positions, tag;
  std::size_t line = 1, column = 1;
  char quote = 0;
  for (std::size_t i = 0; i < document.size(); ++i) {
    const char c = document[i];
    const bool isInTag = !tag.empty();
    if (isInTag && (c == '"' || c == '\'') && (quote == 0 || quote == c)) quote ^= c;
    if (c == '<' && document[i + 1] != '?') {
      tag = std::to_string(line) + ":" + std::to_string(column) + " ";
      positions += tag;
    } else if (isInTag && c == '>' && quote == 0) {
      if (document[i - 1] == '/') positions += tag;
      tag.clear();
    }
    if ((c & 0xC0) != 0x80) ++column;
    if (c == '\n') ++line, column = 1;
  }
  return positions;
}

// A long document's parts come in pieces; wherever they are cut, nothing may change.
TEST(Reader, PiecesOfLongDocumentsDoNotShow) {
  constexpr std::size_t kPiece = 64 * 1024;
  const std::string content = "é<s é='ü&amp;\n𝄞'\n  b='1'/>\r\nté€xt𝄞&lt;&#233;<t\n/>\n𝄞</r\n>";
  const std::string events = "<s b='1' é='ü& 𝄞'></s>'\nté€xt𝄞<é'<t></t>'\n𝄞'</r>$";
  const std::string others = "<r><!--é-->a<![CDATA[é𝄞]]>b<?é é?>c</r>";
  for (const char filler : {' ', '\n'}) {
    for (std::size_t i = 0; i <= content.size(); ++i) {
      const std::string document = "<r>" + std::string(kPiece - 3 - i, filler) + content;
      const Parsed parsed = ParseAll(document, i % 2 == 0);
      ASSERT_EQ(parsed.mEvents, "^<r>'" + std::string(kPiece - 3 - i, filler) + "é'" + events) << i;
      ASSERT_EQ(parsed.mPositions, TagPositions(document)) << "cut at " << i;
    }
  }
  for (std::size_t i = 0; i <= others.size(); ++i) {
    const std::string document = std::string(kPiece - i, ' ') + others;
    ASSERT_EQ(ParseAll(document, i % 2 == 0).mEvents, "^<r>!é!'a'['é𝄞']'bc'</r>$") << i;
  }
}

TEST(Reader, KnowsThePlacesOfTags) {
  const std::string longText(200'000, 'x');
  std::string longAccents;
  for (int i = 0; i < 100'000; ++i) longAccents += "é";
  const std::string documents[] = {
      "<r><a/><b></b></r>",
      "\n  <r\n a='1'\n\tb='2'\n><é/>𝄞é<b\n>\n</b\n\n></r>",
      "<?xml version='1.0'?>\r\n<r>\r\n  <a\r\n/></r>",
      "<r>" + longAccents + "<a/>" + longAccents + "<b>" + longText + "</b></r>",
      "<r a='" + longText + "'><b\n c='" + longAccents + "\n" + longText + "'>" + longText +
          "</b></r>",
      "<r>\n" + longText + "<a\n" + std::string(200'000, '\n') + "b='1'/>" + longText + "<c/></r>",
      "<r><a b='>'/><c d=\">\n>\"/></r>",
  };
  for (const std::string& document : documents) {
    for (const bool asStream : {false, true}) {
      EXPECT_EQ(ParseAll(document, asStream).mPositions, TagPositions(document))
          << document.substr(0, 60);
    }
  }
  EXPECT_EQ(ParseAll("\xEF\xBB\xBF<r>é<a/></r>", true).mPositions, "1:1 1:5 1:5 1:9 ");
  EXPECT_EQ(ParseAll(InUTF16(u"\n<r>é𝄞<a/></r>", true), true).mPositions, "2:1 2:6 2:6 2:10 ");
  EXPECT_EQ(
      ParseAll("<?xml version='1.0' encoding='ISO-8859-1'?>\n<r>\xE9<a/></r>", true).mPositions,
      "2:1 2:5 2:5 2:9 ");
  Reader reader;
  EXPECT_EQ(reader.CurrentPosition().mLine, 1);
  EXPECT_EQ(reader.CurrentPosition().mColumn, 1);
}

TEST(Reader, TagsOfAnEntityAreWhereItIsReferredTo) {
  const std::string document = "<!DOCTYPE r [<!ENTITY e '<b>t</b>'>]>\n<r>\n  &e;\n    &e;</r>";
  EXPECT_THAT(ParseAll(document, false).mPositions,
              ::testing::MatchesRegex("2:1 3:[3-6] 3:[3-6] 4:[5-8] 4:[5-8] 4:8 "));
}

TEST(Reader, LimitsMarkupButNotText) {
  const std::string longText(12'000'000, 'x');
  EXPECT_TRUE(Events("<r>" + longText + "</r>") == "^<r>'" + longText + "'</r>$");
  for (const Row& row :
       Rows("<r a=' => '/> ;; <r><![CDATA[ => ]]></r> ;; <!-- => --><r/> ;; <r><?p => ?></r>")) {
    for (const std::size_t size : {8'380'000u, 8'600'000u}) {
      const std::string events = Events(row[0] + std::string(size, ' ') + row[1]);
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

TEST(Reader, SeveralReadAtOnce) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int j = 0; j < 50; ++j)
        EXPECT_EQ(Events("<r>é<s a='1'/></r>"), "^<r>'é'<s a='1'></s></r>$");
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace zelcore::xml
