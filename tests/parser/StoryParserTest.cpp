#include <gtest/gtest.h>

#include <zelstoryparser/StoryParser.h>

#include "support/Story.h"

namespace zelstoryparser {
namespace {

// What a script may abbreviate: "..scene" opens everything from the root down to a scene, and some
// elements have short names. The third field is what the abbreviation stands for in an outcome.
const std::vector<Row>& Abbreviations() {
  static const std::vector<Row> table = Rows(R"(
      ..scene => ..section<scene> => ..section>scene
      ..section => ..body<section> => ..body>section
      ..body => ..document<stream name='body'> => ..document>body
      ..document => ..story<document> => ..story>document
      ..story => <TavroStory version='1.0'> => story version=1.0
      <p => <paragraph ;; </p> => </paragraph> ;; <run => <textRun ;; </run> => </textRun>
      <comments => <commentStream ;; </comments> => </commentStream>
      !document => => ! We found a Document, but we already had one, are there two?
      !streams => => ! We found a Stream, but we already found one.  Are there two?
      !body => => ! We found a Stream, but it's not part of a BodyStream?
      !header => => ! We found a Header, but it's not part of a HeaderStream?
      !footer => => ! We found a Footer, but it's not part of a FooterStream?
      !section => => ! We found a Section, but it's not part of a Stream or CommentStream?
      !scene => => ! We founda a Scene, but it's not part of a Section?
      !comments => => ! We found a CommentStream, but it's not part of Document?
      !metadata => => ! Metadata already exists.  Are there two?
      !version => => ! Wrong Version.  The parser doesn't support version:\s)");
  return table;
}

void Play(const std::string& script, StoryParser& parser) {
  Drive(Replaced(script, Abbreviations()), parser);
}

std::string Expected(const std::string& outcome) {
  return Replaced(outcome, Abbreviations(), 2);
}

// The tree that was built, after "! message" when there was an error.
std::string Outcome(StoryParser& parser) {
  const std::string error = parser.IsParseError() ? "! " + Utf8(parser.GetErrorString()) + " " : "";
  return error + DumpTree(parser.GetStory());
}

std::string Parse(const std::string& script) {
  StoryParser parser;
  Play("^" + script + "$", parser);
  return Outcome(parser);
}

void ExpectOutcomes(std::string_view table) {  // of a script => the tree, after the error if any
  for (const Row& row : Rows(table)) EXPECT_EQ(Parse(row[0]), Expected(row[1])) << row[0];
}

TEST(StoryParserTest, KeepsAttributes) {
  ExpectOutcomes(R"(
      <TavroStory template='t' x='?' version='1.0' documentType='d' objID='i'/> \
          => ..story type=d template=t
      ..story<document version='zwei' objID='i'> => ..story>document version=zwei
      ..document<stream objID='f' name='footer'/> => ..document>footer#f
      ..body<section objID='s'><scene objID='n' sceneNumber=' 12A'/> \
          => ..body>section#s>scene#n number= 12A
      ..scene<p objID='p' element='Shot'><run objID=' r'>t => ..scene>204#p>''# r
      ..document<comments objID='i' name='n' commentAuthor='a' dependent='d' commentAuthorID='ai'/> \
          => ..document>comments#i name=n author=a dependent=d authorID=ai
      ..story<Tag label='a'/><Tag/><document><Tag label=' b'/></document> \
          => ..story tag=a tag= tag= b>document
      ..scene<p element='SceneHeading' shotDuration='1'/><p element='SceneHeading' shotDuration='2'/> \
          => ..scene duration=2{200 200}
      ..scene<p element='SceneHeading' shotDuration='1'/><p element='SceneHeading'/> \
          => ..scene{200 200}
      ..scene<p element='Shot' shotDuration='3'/> => ..scene>204)");
}

TEST(StoryParserTest, GathersTextBetweenTags) {
  ExpectOutcomes(R"(
      ..scene<p>a<run/>b<run>c</run>d</p> => ..scene>207{'' 'c'}
      ..scene<p><run> a\n\t b\s</run> => ..scene>207>' a\n\t b\s'
      ..scene<p><run>a<b>c</b>d</run> => ..scene>207>'cd'
      ..scene<p><run>a<b/></run> => ..scene>207>''
      ..scene<p><run>a</run></p><run>b</run> => ..scene>207>'a'
      ..scene<p><run></run></p><run>b</run> => ..scene>207>'b'
      ..scene<p><run>a<run>b</run>c</run> => ..scene>207{'' 'b'}
      ..scene<p><run><run/>c</run>d</run> => ..scene>207{'' 'c'}
      ..scene<p><run>a</run>b</run> => ..scene>207>'a'
      ..scene<p><run></p>a</run> => ..scene>207>'a'
      ..section<p><run>a</run></p> => ..section ;; ..scene<run>a</run> => ..scene
      ..scene<p><p></p><run>a</run> => ..scene{207 207}
      ..story<metaData>a|b<x/>c|d</metaData> => ..story meta=cd
      ..storytext</metaData> => ..story meta=text
      ..story<metaData></metaData><metaData>m</metaData> => ..story meta=m
      ..story<metaData>a</metaData>..story<metaData>b</metaData> => ..story meta=b
      ..story<metaData>|| |é|\n|𝄞 | x'||\t€| |</metaData> => ..story meta= é\n𝄞  x'\t€\s
      ..scene<p><run>a</run>b</metaData> => ..story meta=b>document>body>section>scene>207>'a'
      ..scene<p><run><metaData>m</metaData>b</run> \
          => ..story meta=m>document>body>section>scene>207>'b')");
}

TEST(StoryParserTest, BuildsTreesOfWhatIsOpen) {
  ExpectOutcomes(R"(
      => null ;; <x><y/>text</x> => null ;; <tavrostory version='1.0'/><Document/> => null
      <Tag label='early'/>..story => ..story
      ..body</stream><stream name='header'/><stream name='footer'/> \
          => ..document{header body footer}
      ..document<stream name='margin'><section><scene/></section></stream><stream name='Body'/> \
          => ..document
      ..scene<p/></scene><scene/> => ..section{scene>207 scene}
      ..document<comments><section objID='s'><scene/></section></comments><comments/> \
          => ..document{comments>section#s>scene comments}
      ..scene<scene objID='i'></scene><p/></scene> => ..section{scene scene#i}
      </x></document></stream></scene></run></Tag></TavroStory>..story => ..story
      ..body</stream></stream></section><stream name='header'/> => ..document{header body}
      ..scene</TavroStory></Tag></x><p/> => ..scene>207 ;; ..scene</section><p/> => ..scene>207
      ..scene</stream></document><p/> => ..scene>207
      ..document<comments><stream name='body'><section><scene/></section> \
          => ..document{body>section>scene comments}
      ..body<comments><section></section><section><scene/> \
          => ..document{body>section comments>section>scene}
      ..document<comments><section><stream name='body'><section><scene/> \
          => ..document{body>section>scene comments>section}
      ..document<comments name='a'><comments name='b'><section/> \
          => ..document{comments name=a comments name=b>section}
      ..document..story<stream name='body'/><comments/></document><document version='2'> \
          => ..story>document version=2)");
}

TEST(StoryParserTest, RecordsTheFirstError) {
  ExpectOutcomes(R"(
      <document/> => !document null ;; ..document<document/> => !document ..document
      ..document</document><document version='2'/> => !document ..document
      ..document..story<document/> => !document ..story
      <stream/> => !streams null ;; ..story<stream name='body'/> => !streams ..story
      ..body<stream name='header'/> => !streams ..body
      ..document<stream><stream/> => !streams ..document
      ..scene..story<stream/> => !streams ..story
      ..body</stream><stream name='body' objID='2'><section/></stream> => !body ..body
      ..document<stream name='header'/><stream name='header' objID='2'/> \
          => !header ..document>header
      ..document<stream name='footer'/><stream name='footer' objID='2'/> \
          => !footer ..document>footer
      <section/> => !section null ;; ..document<section/> => !section ..document
      ..body<section/><section/> => !section ..section ;; ..section<section/> => !section ..section
      ..document<comments><section/><section/> => !section ..document>comments>section
      ..section<comments><section/> => !section ..document{body>section comments}
      ..section</stream><comments><section/> => !section ..document{body>section comments}
      <scene/> => !scene null ;; ..body<scene/> => !scene ..body
      ..body<section/><scene/> => !scene ..section
      ..story<comments/> => !comments ..story
      ..document</document><comments/> => !comments ..document
      <metaData>a</metaData> => !metadata null ;; </metaData> => !metadata null
      ..story<metaData>a</metaData><metaData>b</metaData> => !metadata ..story meta=a
      ..story<metaData>a</metaData><metaData/> => !metadata ..story meta=a
      ..scene<section/><scene/><p><run>a</run>..story<document/><Tag label='a'/></metaData> \
          => !section ..scene
      ..scene<p><run>a<section/>b</run><metaData>m</metaData> => !section ..scene>207>'')");
}

TEST(StoryParserTest, TestsTheVersion) {
  for (const std::string version : {"1.0", "1.0.7", "1.0.", "1.0..", "1.0.x y"}) {
    EXPECT_EQ(Parse("<TavroStory version='" + version + "'/>"), "story version=" + version);
  }
  for (const std::string version :
       {"1", "1.", "1.00", "01.0", "2.0", "1.0a", " 1.0", ".1.0", "1..0"}) {
    const std::string tag = "<TavroStory version='" + version + "'/>";
    const std::string outcome = Expected("!version ") + version + " story version=" + version;
    EXPECT_EQ(Parse(tag + "<document/>"), outcome);
    EXPECT_EQ(Parse("..document" + tag), outcome);
  }
  EXPECT_EQ(Parse("<TavroStory/>"), Expected("!version  story"));
}

TEST(StoryParserTest, ServesDerivedHandlers) {
  struct : StoryParser {
    using StoryParser::GetElement;
    using StoryParser::SetParseError;
  } parser;
  for (const Row& row : Rows(R"(
      SceneHeading => 200 ;; Character => 201 ;; Dialog => 202 ;; Action => 203 ;; Shot => 204
      Parenthetical => 205
      Transition => 206 ;; dialog => 207 ;; \sDialog => 207 ;; Dialog\s => 207 ;; Dialogs => 207
      Dialo => 207 ;; œhot => 207 ;; => 207)")) {
    EXPECT_EQ(std::to_string(parser.GetElement({{u"element", Utf16(row[0])}})), row[1]) << row[0];
  }
  EXPECT_EQ(parser.GetElement({{u"Element", u"Shot"}}), 207);
  Play("^..scene", parser);
  parser.SetParseError(u"mine");
  Play("<p/><document/>", parser);
  EXPECT_EQ(Outcome(parser), Expected("! mine ..scene"));
  parser.SetParseError(u"");
  EXPECT_EQ(Outcome(parser), Expected("!  ..scene"));
}

// Scripts for several parsers in turn; "b=a" first assigns parser a to parser b.
TEST(StoryParserTest, ReadsOnAndCopiesBuildTheSameTree) {
  std::map<char, StoryParser> parsers;
  for (const Row& row : Rows(R"(
      a => ^<scene/>$ => !scene null ;; a => ^ => null ;; a => ..scene<p><run> => ..scene>207>''
      b=a => => ..scene>207>'' ;; a => $x^..scene => ..scene ;; a => <run>late</run>$ => ..scene
      b => => ..scene>207>'late' ;; a => ^</metaData>$^..story$</metaData> => ..story
      a => x^..document$<stream name='body'/> => !streams ..document
      a => ^..scene<p><run>x => ..scene>207>'' ;; b=a => y => ..scene>207>''
      a => z</run> => ..scene>207>'xz'
      b => </run><run>d</run></p><p/></scene> => ..scene{207{'xz' 'd'} 207}
      a => <run>e</run><p element='Shot'/></scene></section> => ..scene{207{'xz' 'd' 'e'} 207 204}
      a => <scene/> => !scene ..scene{207{'xz' 'd' 'e'} 207 204} ;; c => ^..body => ..body
      c=b => => ..scene{207{'xz' 'd' 'e'} 207 204}
      c=c => <p/><scene><p/> => ..section{scene{207{'xz' 'd' 'e'} 207 204} scene>207}
      c=a => => !scene ..section{scene{207{'xz' 'd' 'e'} 207 204} scene>207} 
      c=d => => null ;; c => ^..scene$ => ..scene
      a => ^..document<comments>$<section/> => !section ..document>comments ;; a => ^..scene$<p/> => ..scene
      a => ^..scene<p><run><document/>lost => !document ..scene>207>''
      b=a => => !document ..scene>207>''
      a => ^</run> => null ;; b => => !document ..scene>207>'')")) {
    StoryParser& parser = parsers[row[0][0]];
    if (row[0][1] == '=') parser = parsers[row[0][2]];
    Play(row[1], parser);
    EXPECT_EQ(Outcome(parser), Expected(row[2])) << row[1];
  }
}

}  // namespace
}  // namespace zelstoryparser
