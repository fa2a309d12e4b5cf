#include <gmock/gmock.h>

#include "support/ScratchFolder.h"
#include "support/Table.h"
#include "zelcore/EventLog.h"

namespace zelcore::xml {
namespace {

using ::testing::StartsWith;

// The error of a document, "" for a good one; `events` receives what was reported before it.
std::string Error(const std::string& document, std::string* events = nullptr) {
  Reader reader;
  EventLog log(reader);
  const bool isGood = reader.ParseBuffer(document, "s", log);
  EXPECT_THAT(log.mEvents, ::testing::EndsWith("$"));
  if (events != nullptr) *events = log.mEvents;
  return ErrorText(isGood, reader);
}

TEST(ReaderErrors, NameThePlace) {  // line, and what was reported before, unless that is open
  for (const Row& row : Rows(R"(
      <r>\n <s></r> => 2 => <r>'\n '<s> ;; <r>\n\n</s> => 3 => <r>'\n\n' ;; <r/><s/> => 1 => <r></r> ;; text => 1
      <r a='1' a='2'/> => 1 ;; <r>\n<a b=1/></r> => 2 => <r>'\n' ;; <r>\n<a b='<'/></r> => 2 => <r>'\n'
      <r>\n&undeclared;</r> => 2 => <r>'\n' ;; <r>\na & b</r> => 2 => <r>'\na ' ;; <r>\n&#0;</r> => 2 => <r>'\n'
      <r>\n&#xD800;</r> => 2 => <r>'\n' ;; <r>\n\x01</r> => 2 => ? ;; <r>\n\xC3(</r> => 2 => ? ;; <r>\n]]></r> => 2 => ?
      <r>\n<!-- -- --></r> => 2 => ? ;; \s<?xml version='1.0'?><r/> => 1 ;; => 1 ;; \s => 1 ;; \n\s => ?
      <?xml version='1.0' encoding='klingon'?><r/> => 1 ;; <?xml version='1.0' encoding='US-ASCII'?>\n<r>\xE9</r> => 2 => ?
      <!DOCTYPE r [<!ENTITY e SYSTEM 'file:///etc/hostname'>]>\n<r>&e;</r> => 2 => <r>
      <!DOCTYPE r [<!ENTITY e SYSTEM '/dev/zero'>]>\n<r a='&e;'/> => 2
      <!DOCTYPE r [<!ENTITY % p SYSTEM 'file:///etc/hostname'>\n%p;]><r/> => 2
      <!DOCTYPE r SYSTEM 'file:///dev/zero'>\n<r>&e;</r> => 2 => <r>
      <!DOCTYPE r SYSTEM 'http://localhost/x'>\n<r a='&e;'/> => 2 => ?
      <!DOCTYPE r [<!ENTITY a '&b;'><!ENTITY b '&a;'>]>\n<r>&a;</r> => 2 => <r>
      <!DOCTYPE r [<!ENTITY a '</r>'>]>\n<r>&a; => 2 => <r>)")) {
    std::string events;
    const std::string error = Error(row[0], &events);
    EXPECT_THAT(error, StartsWith(row[1] == "?" ? "s:" : "s:" + row[1] + ":")) << row[0];
    EXPECT_TRUE(row[2] == "?" || events == "^" + row[2] + "$") << row[0] << events;
  }
  EXPECT_EQ(Error("<!DOCTYPE r SYSTEM 'file:///dev/zero'><r/>"), "");
}

TEST(ReaderErrors, NoPrefixOfADocumentIsGood) {
  const std::string document =
      "<?xml version='1.0'?>\n<!DOCTYPE r [<!ENTITY e 'x'>]>\n<r a='é'>\n<!--c-->té𝄞xt&e;&#233;\n"
      "<![CDATA[d]]><?p i?><b\n/></r>";
  ASSERT_EQ(Error(document), "");
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
    dtd += "<!ENTITY e" + std::to_string(level) + " '";
    for (int i = 0; i < 10; ++i) dtd += "&e" + std::to_string(level - 1) + ";";
    dtd += "'>";
  }
  return dtd + "]>" + root;
}

std::string Repeated(const std::string& text, int count) {
  std::string repeated;
  for (int i = 0; i < count; ++i) repeated += text;
  return repeated;
}

TEST(ReaderErrors, ExpansionIsLimited) {
  EXPECT_EQ(Error(Bomb(2, "x", "<r a='&e2;'>&e2;</r>")), "");
  const std::string bombs[] = {
      Bomb(9, "lol", "<r>&e9;</r>"),
      Bomb(9, "lol", "<r a='&e9;'/>"),
      Bomb(9, "", "<r>&e9;</r>"),
      Bomb(9, "", "<r a='&e9;'/>"),
      Bomb(9, "<b/>", "<r>&e9;</r>"),
      Bomb(0, std::string(100'000, 'x'), "<r>" + Repeated("&e0;", 2000) + "</r>"),
      Bomb(0, std::string(100'000, 'x'), "<r>" + Repeated("<b a='&e0;'/>", 2000) + "</r>"),
  };
  for (const std::string& bomb : bombs) {
    Reader reader;
    AbstractParseHandler handler;
    EXPECT_FALSE(reader.ParseBuffer(bomb, "s", handler)) << bomb.substr(0, 60);
    EXPECT_EQ(reader.Error().mReason.find('\n'), std::string::npos);
  }
}

TEST(ReaderErrors, DepthIsLimited) {
  const auto nested = [](int depth) { return Repeated("<a>", depth) + Repeated("</a>", depth); };
  EXPECT_EQ(Error(nested(10'000)), "");
  std::string events;
  EXPECT_THAT(Error("\n" + nested(10'001), &events), StartsWith("s:2:30001: "));
  EXPECT_EQ(events, "^" + Repeated("<a>", 10'000) + "$");
  const std::string entity = "<!DOCTYPE r [<!ENTITY e '" + nested(100) + "'>]>";
  EXPECT_NE(Error(entity + Repeated("<a>", 9'950) + "&e;" + Repeated("</a>", 9'950)), "");
}

TEST(ReaderErrors, FilesThatCannotBeRead) {
  const ScratchFolder folder;
  folder.Write("empty", "");
  folder.Write("bäd𝄞.quor", "<r>");
  const std::string path = folder.Path().string();
  for (const char* name : {"missing", "", "empty", "bäd𝄞.quor", "empty/below"}) {
    Reader reader;
    EventLog log(reader);
    const std::string file = path + "/" + name;
    EXPECT_FALSE(reader.ParseFile(file, log)) << name;
    EXPECT_THAT(ErrorText(false, reader), StartsWith(file + ":1:")) << name;
    EXPECT_FALSE(reader.Error().mReason.empty()) << name;
  }
  Reader reader;
  EventLog log(reader);
  EXPECT_TRUE(reader.ParseFile(folder.Write("good", "<r>é</r>"), log));
  EXPECT_EQ(log.mEvents, "^<r>'é'</r>$");
}

}  // namespace
}  // namespace zelcore::xml
