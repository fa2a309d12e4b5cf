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
      %t => </textRun> ;; %c => <commentStream> ;; %q => </paragraph> ;; %e => <paragraph/> ;; @ => => %scene>207
      %scene => %section<scene> => %section>scene ;; %section => %body<section> => %body>section
      %body => %document<stream name='body'> => %document>body ;; %document => %root<document> => %root>document
      %root => <TavroStory version='1.0'> => story version=1.0 ;; %heading => <paragraph element='SceneHeading'
      %p => <paragraph><textRun> ;; !document => => ! We found a Document, but we already had one, are there two?
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
      => null ;; <x><y/>text</x> => null ;; <tavrostory version='1.0'/><Document/> => null
      <TavroStory template='t' x='?' version='1.0' documentType='d' objID='i'/> => %root type=d template=t
      %root<document version='zwei' objID='i'> => %root>document version=zwei
      %body</stream><stream name='header' objID='h'/><stream objID='f' name='footer'/> => %document{header#h body footer#f}
      %body<section objID='s'><scene objID='n' sceneNumber=' 12A'><paragraph objID='p' element='Shot'><textRun objID=' r'>t => %body>section#s>scene#n number= 12A>204#p>''# r
      %scene%pa%t-<textRun/>-<textRun>b%t-%q%e</scene><scene/> => %section{scene{207{'a' '' 'b'} 207} scene}
      %document<commentStream objID='i' name='n' commentAuthor='a' dependent='d' commentAuthorID='ai'/> => %document>comments#i name=n author=a dependent=d authorID=ai
      %document%c<section objID='s'><scene/></section></commentStream><commentStream/> => %document{comments>section#s>scene comments}
      %root<Tag label='a'/><Tag/><document><Tag label=' b'/></document> => %root tag=a tag= tag= b>document
      <Tag label='early'/>%root => %root
      %document<stream name='margin'><section><scene/></section></stream><stream name='Body'/> => %document
      %scene%p a\n\t b\s%t => @>' a\n\t b\s' ;; %scene%pa<b>c</b>d%t => @>'cd' ;; %scene%pa<b/>%t => @>''
      %root<metaData>a|b<x/>c|d</metaData> => %root meta=cd ;; %root<metaData></metaData><metaData>m</metaData> => %root meta=m
      %rootlost</metaData> => %root meta=lost ;; %section%pa%t%q => %section ;; %scene<textRun>a%t => %scene
      %scene%pa%t%q<textRun>b%t => @>'a' ;; %scene%p%t%q<textRun>b%t => @>'b' ;; %scene%pa<textRun>b%tc%t => @{'' 'b'}
      %scene%p<textRun/>c%td%t => @{'' 'c'} ;; %scene%pa%tb%t => @>'a' ;; %scene%p%qa%t => @>'a'
      %scene%heading shotDuration='1'/>%heading shotDuration='2'/><paragraph element='Shot' shotDuration='3'/> => %scene duration=2{200 200 204}
      %scene%heading shotDuration='1'/>%heading/> => %scene{200 200}
      %scene<scene objID='i'></scene>%e</scene> => %section{scene scene#i}
      %scene<paragraph><paragraph>%q<textRun>a%t => %scene{207 207}
      </x></document></stream></scene>%t</Tag></TavroStory>%root => %root
      %body</stream></stream></section><stream name='header'/> => %document{header body} ;; %scene</TavroStory></Tag></x>%e => @
      %scene</section>%e => @ ;; %scene</stream></document>%e => @
      %document%c<stream name='body'><section><scene/></section> => %document{body>section>scene comments}
      %body%c<section></section><section><scene/> => %document{body>section comments>section>scene}
      %document%c<section><stream name='body'><section><scene/> => %document{body>section>scene comments>section}
      %document<commentStream name='a'><commentStream name='b'><section/> => %document{comments name=a comments name=b>section}
      %document%root<stream name='body'/><commentStream/></document><document version='2'> => %root>document version=2
      %root<metaData>a</metaData>%root<metaData>b</metaData> => %root meta=b)")) {
    EXPECT_EQ(Parse(row[0]), Expected(row[1])) << row[0];
  }
}

TEST_F(StoryParserTest, RecordsTheFirstError) {
  for (const Row& row : Rows(R"(
      <document/> => !document null ;; %document</document><document version='2'/> => !document %document
      %document<document/> => !document %document ;; %document%root<document/> => !document %root ;; <stream/> => !streams null
      %root<stream name='body'/> => !streams %root ;; %body<stream name='header'/> => !streams %body
      %document<stream><stream/> => !streams %document ;; %scene%root<stream/> => !streams %root
      %body</stream><stream name='body' objID='2'><section/></stream> => !body %body
      %document<stream name='header'/><stream name='header' objID='2'/> => !header %document>header
      %document<stream name='footer'/><stream name='footer' objID='2'/> => !footer %document>footer
      <section/> => !section null ;; %document<section/> => !section %document ;; %body<section/><section/> => !section %section
      %section<section/> => !section %section ;; %document%c<section/><section/> => !section %document>comments>section
      %section%c<section/> => !section %document{body>section comments}
      %section</stream>%c<section/> => !section %document{body>section comments} ;; <scene/> => !scene null
      %body<scene/> => !scene %body ;; %body<section/><scene/> => !scene %section ;; %root<commentStream/> => !comments %root
      %document</document><commentStream/> => !comments %document ;; <metaData>a</metaData> => !meta null
      </metaData> => !meta null ;; %root<metaData>a</metaData><metaData>b</metaData> => !meta %root meta=a
      %root<metaData>a</metaData><metaData/> => !meta %root meta=a
      %scene<section/><scene/>%pa%t%root<document/><Tag label='a'/></metaData> => !section %scene
      %scene%pa<section/>b%t<metaData>m</metaData> => !section @>'')")) {
    EXPECT_EQ(Parse(row[0]), Expected(row[1])) << row[0];
  }
}

TEST_F(StoryParserTest, TestsTheVersion) {
  for (const std::string version : {"1.0", "1.0.7", "1.0.", "1.0..", "1.0.x y"}) {
    EXPECT_EQ(Parse("<TavroStory version='" + version + "'/>"), "story version=" + version);
  }
  for (const std::string version :
       {"1", "1.", "1.00", "01.0", "2.0", "1.0a", " 1.0", ".1.0", "1..0"}) {
    const std::string tag = "<TavroStory documentType='d' version='" + version + "'/>";
    const std::string outcome = Expected("!version ") + version + " story version=" + version;
    EXPECT_EQ(Parse(tag + "<document/>"), outcome + " type=d");
    EXPECT_EQ(Parse("%document" + tag), outcome + " type=d");
  }
  EXPECT_EQ(Parse("<TavroStory/>"), Expected("!version  story"));
}

TEST_F(StoryParserTest, ServesDerivedHandlers) {
  struct : StoryParser {
    using StoryParser::GetElement;
    using StoryParser::SetParseError;
  } parser;
  for (const Row& row : Rows(R"(
      SceneHeading => 200 ;; Character => 201 ;; Dialog => 202 ;; Action => 203 ;; Shot => 204 ;; Parenthetical => 205
      Transition => 206 ;; dialog => 207 ;; \sDialog => 207 ;; Dialog\s => 207 ;; Dialogs => 207 ;; Dialo => 207 ;; => 207)")) {
    EXPECT_EQ(std::to_string(parser.GetElement({{u"element", Utf16(row[0])}})), row[1]) << row[0];
  }
  EXPECT_EQ(parser.GetElement({{u"Element", u"Shot"}}), 207);
  Play("^%scene", parser);
  parser.SetParseError(u"mine");
  Play("<paragraph/><document/>", parser);
  EXPECT_EQ(Outcome(parser), Expected("! mine %scene"));
  parser.SetParseError(u"");
  EXPECT_EQ(Outcome(parser), Expected("!  %scene"));
}

// Scripts for several parsers in turn; "b=a" is an assignment first.
TEST_F(StoryParserTest, ReadsOnAndCopiesBuildTheSameTree) {
  std::map<char, StoryParser> parsers;
  for (const Row& row : Rows(R"(
      a => ^<scene/>$ => !scene null ;; a => ^ => null ;; a => %scene%p => @>'' ;; b=a => => @>'' ;; a => $x^%scene => %scene
      a => <textRun>late%t$ => %scene ;; b => => @>'late' ;; a => ^</metaData>$^%root$</metaData> => %root
      a => x^%document$<stream name='body'/> => !streams %document ;; a => ^%scene%px => @>'' ;; b=a => y => @>''
      a => z%t => @>'xz' ;; b => %t<textRun>d%t%q%e</scene> => %scene{207{'xz' 'd'} 207}
      a => <textRun>e%t<paragraph element='Shot'/></scene></section> => %scene{207{'xz' 'd' 'e'} 207 204}
      a => <scene/> => !scene %scene{207{'xz' 'd' 'e'} 207 204} ;; c => ^%body => %body
      c=b => => %scene{207{'xz' 'd' 'e'} 207 204} ;; c=c => %e<scene>%e => %section{scene{207{'xz' 'd' 'e'} 207 204} scene>207}
      c=a => => !scene %section{scene{207{'xz' 'd' 'e'} 207 204} scene>207} ;; c=d => => null ;; c => ^%scene$ => %scene)")) {
    StoryParser& parser = parsers[row[0][0]];
    if (row[0][1] == '=') parser = parsers[row[0][2]];
    Play(row[1], parser);
    EXPECT_EQ(Outcome(parser), Expected(row[2])) << row[1];
  }
}

TEST_F(StoryParserTest, TextSplitAnywhereIsTheSame) {
  EXPECT_EQ(Parse("%root<metaData>|| |é|\n|𝄞 | x'||\t€| |</metaData>"),
            Expected("%root meta= é\n𝄞  x'\t€ "));
}

TEST_F(StoryParserTest, SurvivesFailedAllocations) {
  const std::string script = R"(^%scene<paragraph objID='an identifier of some length'>
      <textRun>a text of some length that is no short string</textRun></paragraph></scene></section>
      </stream><commentStream/><Tag label='a'/></document><metaData>meta</metaData></TavroStory>$)";
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
