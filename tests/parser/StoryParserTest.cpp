#include <gtest/gtest.h>

#include <zelstoryparser/StoryParser.h>

#include "support/AllocationCountdown.h"
#include "support/EventScript.h"
#include "support/StoryBuilder.h"
#include "support/TreeDump.h"

namespace zelstoryparser {
namespace {

// Abbreviations: what they stand for in a script, and in an outcome.
const std::vector<Row>& Abbreviations() {
  static const std::vector<Row> table = Rows(R"(
    %scene => %section<scene> => %section>scene
    %section => %body<section> => %body>section
    %body => %document<stream name='body'> => %document>body
    %document => %root<document> => %root>document
    %root => <TavroStory version='1.0'> => story version=1.0
    %heading => <paragraph element='SceneHeading'
    %p => <paragraph><textRun>
    !document => => ! We found a Document, but we already had one, are there two?
    !streams => => ! We found a Stream, but we already found one.  Are there two?
    !body => => ! We found a Stream, but it's not part of a BodyStream?
    !header => => ! We found a Header, but it's not part of a HeaderStream?
    !footer => => ! We found a Footer, but it's not part of a FooterStream?
    !section => => ! We found a Section, but it's not part of a Stream or CommentStream?
    !scene => => ! We founda a Scene, but it's not part of a Section?
    !comments => => ! We found a CommentStream, but it's not part of Document?
    !meta => => ! Metadata already exists.  Are there two?
    !version => => ! Wrong Version.  The parser doesn't support version:\s)");
  return table;
}

void Play(const std::string& script, StoryParser& parser) {
  Drive(Replaced(script, Abbreviations()), parser);
}
std::string Expected(const std::string& outcome) {
  return Replaced(outcome, Abbreviations(), 2);
}

// The tree that was built, behind "! message" when there was an error.
std::string Outcome(StoryParser& parser) {
  const std::string error = parser.IsParseError() ? "! " + Utf8(parser.GetErrorString()) + " " : "";
  return error + DumpTree(parser.GetStory());
}
std::string Parse(const std::string& script) {
  StoryParser parser;
  Play("^" + script + "$", parser);
  return Outcome(parser);
}

class StoryParserTest : public LeavesNothing {
 protected:
  static void SetUpTestSuite() { Abbreviations(); }
};

TEST_F(StoryParserTest, BuildsTrees) {
  for (const Row& row : Rows(R"(
       => null
      <x><y/>text</x> => null ;; <tavrostory version='1.0'/><Document/> => null
      <TavroStory template='t' x='?' version='1.0' documentType='d' objID='i'/> => %root type=d template=t
      %root<document version='zwei' objID='i'> => %root>document version=zwei
      %body</stream><stream name='header' objID='h'/><stream objID='f' name='footer'/> => %document{header#h body footer#f}
      %body<section objID='s'><scene objID='n' sceneNumber=' 12A'><paragraph objID='p' element='Shot'><textRun objID=' r'>t => %body>section#s>scene#n number= 12A>204#p>''# r
      %scene%pa</textRun>-<textRun/>-<textRun>b</textRun>-</paragraph><paragraph/></scene><scene/> => %section{scene{207{'a' '' 'b'} 207} scene}
      %document<commentStream objID='i' name='n' commentAuthor='a' dependent='d' commentAuthorID='ai'/> => %document>comments#i name=n author=a dependent=d authorID=ai
      %document<commentStream><section objID='s'><scene/></section></commentStream><commentStream/> => %document{comments>section#s>scene comments}
      %root<Tag label='a'/><Tag/><document><Tag label=' b'/></document> => %root tag=a tag= tag= b>document
      <Tag label='early'/>%root => %root
      %document<stream name='margin'><section><scene/></section></stream><stream name='Body'/> => %document
      %scene%p a\n\t b\s</textRun> => %scene>207>' a\n\t b\s' ;; %scene%pa<b>c</b>d</textRun> => %scene>207>'cd'
      %scene%pa<b/></textRun> => %scene>207>'' ;; %root<metaData>a|b<x/>c|d</metaData> => %root meta=cd
      %root<metaData></metaData><metaData>m</metaData> => %root meta=m ;; %rootlost</metaData> => %root meta=lost
      %section%pa</textRun></paragraph> => %section ;; %scene<textRun>a</textRun> => %scene
      %scene%pa</textRun></paragraph><textRun>b</textRun> => %scene>207>'a'
      %scene%p</textRun></paragraph><textRun>b</textRun> => %scene>207>'b'
      %scene%pa<textRun>b</textRun>c</textRun> => %scene>207{'' 'b'}
      %scene%p<textRun/>c</textRun>d</textRun> => %scene>207{'' 'c'}
      %scene%pa</textRun>b</textRun> => %scene>207>'a' ;; %scene%p</paragraph>a</textRun> => %scene>207>'a'
      %scene%heading shotDuration='1'/>%heading shotDuration='2'/><paragraph element='Shot' shotDuration='3'/> => %scene duration=2{200 200 204}
      %scene%heading shotDuration='1'/>%heading/> => %scene{200 200}
      %scene<scene objID='i'></scene><paragraph/></scene> => %section{scene scene#i}
      %scene<paragraph><paragraph></paragraph><textRun>a</textRun> => %scene{207 207}
      </x></document></stream></scene></textRun></Tag></TavroStory>%root => %root
      %body</stream></stream></section><stream name='header'/> => %document{header body}
      %scene</TavroStory></Tag></x><paragraph/> => %scene>207 ;; %scene</section><paragraph/> => %scene>207
      %scene</stream></document><paragraph/> => %scene>207
      %document<commentStream><stream name='body'><section><scene/></section> => %document{body>section>scene comments}
      %body<commentStream><section></section><section><scene/> => %document{body>section comments>section>scene}
      %document<commentStream><section><stream name='body'><section><scene/> => %document{body>section>scene comments>section}
      %document<commentStream name='a'><commentStream name='b'><section/> => %document{comments name=a comments name=b>section}
      %document%root<stream name='body'/><commentStream/></document><document version='2'> => %root>document version=2
      %root<metaData>a</metaData>%root<metaData>b</metaData> => %root meta=b)")) {
    EXPECT_EQ(Parse(row[0]), Expected(row[1])) << row[0];
  }
}

TEST_F(StoryParserTest, RecordsTheFirstError) {
  for (const Row& row : Rows(R"(
      <document/> => !document null ;; %document</document><document version='2'/> => !document %document
      %document<document/> => !document %document ;; %document%root<document/> => !document %root
      <stream/> => !streams null ;; %root<stream name='body'/> => !streams %root
      %body<stream name='header'/> => !streams %body ;; %document<stream><stream/> => !streams %document
      %scene%root<stream/> => !streams %root
      %body</stream><stream name='body' objID='2'><section/></stream> => !body %body
      %document<stream name='header'/><stream name='header' objID='2'/> => !header %document>header
      %document<stream name='footer'/><stream name='footer' objID='2'/> => !footer %document>footer
      <section/> => !section null ;; %document<section/> => !section %document
      %body<section/><section/> => !section %section ;; %section<section/> => !section %section
      %document<commentStream><section/><section/> => !section %document>comments>section
      %section<commentStream><section/> => !section %document{body>section comments}
      %section</stream><commentStream><section/> => !section %document{body>section comments}
      <scene/> => !scene null ;; %body<scene/> => !scene %body ;; %body<section/><scene/> => !scene %section
      %root<commentStream/> => !comments %root ;; %document</document><commentStream/> => !comments %document
      <metaData>a</metaData> => !meta null ;; </metaData> => !meta null
      %root<metaData>a</metaData><metaData>b</metaData> => !meta %root meta=a
      %root<metaData>a</metaData><metaData/> => !meta %root meta=a
      %scene<section/><scene/>%pa</textRun>%root<document/><Tag label='a'/></metaData> => !section %scene
      %scene%pa<section/>b</textRun><metaData>m</metaData> => !section %scene>207>'')")) {
    EXPECT_EQ(Parse(row[0]), Expected(row[1])) << row[0];
  }
}

TEST_F(StoryParserTest, TestsTheVersion) {
  for (const std::string version : {"1.0", "1.0.7", "1.0.", "1.0..", "1.0.x y"}) {
    EXPECT_EQ(Parse("<TavroStory version='" + version + "'/>"), "story version=" + version);
  }
  for (const std::string version : {"", "1", "1.", "1.00", "01.0", "2.0", "1.0a", "1.0 ", " 1.0",
                                    ".1.0", "1..0", "1,0", "1.1"}) {
    const std::string tag = "<TavroStory documentType='d' template='t' version='" + version + "'/>";
    const std::string tree = "story" + (version.empty() ? "" : " version=" + version);
    const std::string outcome = Expected("!version ") + version + " " + tree + " type=d template=t";
    EXPECT_EQ(Parse(tag + "<document/>"), outcome);
    EXPECT_EQ(Parse("%document" + tag), outcome);
  }
  EXPECT_EQ(Parse("<TavroStory/>"), Expected("!version  story"));
}

TEST_F(StoryParserTest, ServesDerivedHandlers) {
  struct : StoryParser {
    using StoryParser::GetElement;
    using StoryParser::SetParseError;
  } parser;
  for (const Row& row :
       Rows(R"(SceneHeading => 200 ;; Character => 201 ;; Dialog => 202 ;; Action => 203
      Shot => 204 ;; Parenthetical => 205 ;; Transition => 206 ;; dialog => 207 ;; \sDialog => 207
      Dialog\s => 207 ;; Dialogs => 207 ;; Dialo => 207 ;; => 207)")) {
    const std::int32_t code =
        parser.GetElement({{u"element", Utf16(row[0])}, {u"Element", u"Shot"}});
    EXPECT_EQ(std::to_string(code), row[1]) << row[0];
  }
  EXPECT_EQ(parser.GetElement({{u"Element", u"Shot"}}), 207);
  Play("^%scene", parser);
  parser.SetParseError(u"mine");
  Play("<paragraph/><document/>", parser);
  EXPECT_EQ(Outcome(parser), Expected("! mine %scene"));
  parser.SetParseError(u"");
  EXPECT_EQ(Outcome(parser), Expected("!  %scene"));
}

TEST_F(StoryParserTest, KeepsOpenElementsAfterAnErrorUntilTheEnd) {
  StoryParser parser;
  EXPECT_EQ(Outcome(parser) + Utf8(parser.GetErrorString()), "null");
  Play("^%scene<paragraph><textRun>", parser);
  const StoryPtr story = parser.GetStory();
  const Document& document = *story->mDocument;
  const Section& section = *document.mBodyStream->mSection;
  const Scene& scene = *section.mScenes[0];
  const Paragraph& paragraph = *scene.mParagraphs[0];
  const RefCountedObject* nodes[] = {story.get(), &document,  document.mBodyStream.get(),  &section,
                                     &scene,      &paragraph, paragraph.mTextRuns[0].get()};
  const auto holders = [&] {
    std::string counts;
    for (const RefCountedObject* node : nodes) counts += std::to_string(node->mRefCount);
    return counts;
  };
  const std::string ends = "</textRun></paragraph></scene></section></stream></document>";
  EXPECT_EQ(holders(), "2222222");
  Play("<section/>" + ends, parser);
  EXPECT_EQ(holders(), "2222222");
  Play("$", parser);
  EXPECT_EQ(holders(), "2111112");  // the root and the last run stay with the parser
  Play("^", parser);
  EXPECT_EQ(holders(), "1111112");
  Play("%scene<paragraph><textRun>", parser);
  EXPECT_EQ(holders(), "1111111");
  Play(ends, parser);
  EXPECT_EQ(parser.GetStory()->mDocument->mRefCount, 1);
}

// Plays scripts to several parsers in turn. A script may begin with "b=a ", for an assignment.
void PlaySteps(std::string_view table) {
  std::map<char, StoryParser> parsers;
  for (const Row& row : Rows(table)) {
    StoryParser& parser = parsers[row[0][0]];
    const bool isAssigned = row[0][1] == '=';
    EXPECT_TRUE(!isAssigned || &(parser = parsers[row[0][2]]) == &parser);
    Play(row[1], parser);
    EXPECT_EQ(Outcome(parser), Expected(row[2])) << row[1];
    const std::string message = "! " + Utf8(parser.GetErrorString());
    EXPECT_TRUE(row[3].empty() || message == Expected(row[3])) << message;
  }
}

TEST_F(StoryParserTest, ReadsSeveralDocuments) {
  PlaySteps(R"(
      a => ^<scene/>$ => !scene null => !scene
      a => ^ => null => !scene
      a => %scene%p => %scene>207>'' => !scene
      b=a => => %scene>207>''
      a => $x^%scene => %scene
      a => <textRun>late</textRun>$ => %scene
      b => => %scene>207>'late'
      a => ^</metaData>$^%root$</metaData> => %root => !meta
      a => x^%document$<stream name='body'/> => !streams %document => !streams)");
}

TEST_F(StoryParserTest, CopiesGoOnBuildingTheSameTree) {
  PlaySteps(R"(
      a => ^%scene%px => %scene>207>''
      b=a => y => %scene>207>''
      a => z</textRun> => %scene>207>'xz'
      b => </textRun><textRun>d</textRun></paragraph><paragraph/></scene> => %scene{207{'xz' 'd'} 207}
      a => <textRun>e</textRun><paragraph element='Shot'/></scene></section> => %scene{207{'xz' 'd' 'e'} 207 204}
      a => <scene/> => !scene %scene{207{'xz' 'd' 'e'} 207 204}
      c => ^%body => %body
      c=b => => %scene{207{'xz' 'd' 'e'} 207 204}
      c=c => <paragraph/><scene><paragraph/> => %section{scene{207{'xz' 'd' 'e'} 207 204} scene>207}
      c=a => <scene/> => !scene %section{scene{207{'xz' 'd' 'e'} 207 204} scene>207} => !scene
      c=d => => null => !\s
      c => ^%scene$ => %scene)");
  StoryParser parser;
  Play("^%scene%px", parser);
  StoryParser copy(parser);
  Play("y</textRun>", copy);
  EXPECT_EQ(Outcome(parser), Expected("%scene>207>'xy'"));
}

TEST_F(StoryParserTest, TextSplitAnywhereIsTheSame) {
  const std::string text = " é\n𝄞  x'\t€ ", opening = "%root<metaData>", closing = "</metaData>";
  std::string everywhere;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isBoundary = (text[i] & 0xC0) != 0x80;
    const std::string split = text.substr(0, i) + (isBoundary ? "||" : "") + text.substr(i);
    EXPECT_EQ(Parse(opening + split + closing), Expected("%root meta=") + text) << i;
    everywhere += (isBoundary ? "|" : "") + text.substr(i, 1);
  }
  EXPECT_EQ(Parse(opening + everywhere + closing), Expected("%root meta=") + text);
}

TEST_F(StoryParserTest, SurvivesFailedAllocations) {
  const std::string script =
      "^%scene<paragraph objID='an identifier of some length'>"
      "<textRun>a text of some length that is no short "
      "string</textRun></paragraph></scene></section>"
      "</stream><commentStream/><Tag label='a'/></document><metaData>meta</metaData></TavroStory>$";
  const std::string tree = Parse(script);
  std::unique_ptr<StoryParser> parser;
  FailEachAllocation(
      [&] {
        parser = std::make_unique<StoryParser>();
        Play(script, *parser);
        StoryParser copy(*parser);
        copy = StoryParser(*parser);
      },
      [&](bool) {
        if (parser) Play(script, *parser);
        EXPECT_TRUE(!parser || Outcome(*parser) == tree);
        parser.reset();
      });
}

}  // namespace
}  // namespace zelstoryparser
