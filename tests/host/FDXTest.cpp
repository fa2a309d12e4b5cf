#include <cstdlib>

#include <gtest/gtest.h>

#include <zelstoryhost/FDX.h>

#include "support/TreeGenerator.h"

namespace zelstoryhost {
namespace {

// An FDX script from the elements below its root: <p>, <h> and <a> are paragraphs, headings and
// actions, <t> is a text.
std::string Script(const std::string& elements, const std::string& version = " Version='5'") {
  return "<FinalDraft" + version + ">" +
         Replaced(elements, {{"<p", "<Paragraph"},
                             {"</p>", "</Paragraph>"},
                             {"<h", "<Paragraph Type='Scene Heading'"},
                             {"<a", "<Paragraph Type='Action'"},
                             {"<t", "<Text"},
                             {"</t>", "</Text>"}}) +
         "</FinalDraft>";
}

std::string Findings(const std::vector<Finding>& findings) {
  std::string text;
  for (const Finding& finding : findings) {
    text += (finding.mSeverity == Severity::kNote ? "; note: " : "; warning: ") + finding.mText;
  }
  return text.substr(std::min<std::size_t>(text.size(), 2));
}

// All that a story holds, without its identifiers.
std::string Everything(const zelstoryparser::TavroStory& story) {
  std::string text = Outline(story) + CommentOutline(story);
  if (!story.mMetaData.empty()) text += "meta=" + OutlineField(Utf8(story.mMetaData)) + "\n";
  for (const auto& tag : story.mTags) text += "tag=" + OutlineField(Utf8(tag)) + "\n";
  return text;
}

TEST(FDX, ReadsWhatAScriptSays) {
  for (const Row& row : Rows(R"(
<Content><h Number='12A'><t>INT. HOUSE</t></p><a><t>Rain.</t></p><p Type='Character'><t>ANNA</t></p>\
<p Type='Parenthetical'><t>(low)</t></p><p Type='Dialogue'><t>No.</t></p><p Type='Shot'><t>S</t></p>\
<p Type='Transition'><t>CUT TO:</t></p><p Type='Unknown'><t>?</t></p><p><t>G</t></p></Content> => \
12A|SceneHeading:INT. HOUSE|Action:Rain.|Character:ANNA|Parenthetical:(low)|Dialog:No.|Shot:S|\
Transition:CUT TO:|:?|Action:G
<Content><a><t>FADE IN:</t></p><h/><h Number=''><t>EXT.</t></p></Content> => |Action:FADE IN: / |SceneHeading: / |SceneHeading:EXT.
<Content><a><t> a</t><t Style='Bold+Italic'>b\n</t> <t><![CDATA[c]]><br/>d<x>e</x></t><t Style='Bold'/></p><a/></Content> => \
|Action: ab\x5Cnc\x5Cnde|Action: => note: text styles, such as bold and italic, have no place in a story (2 times)
<Content><p Type='Lyrics'><t>la</t></p><p Type='Character'/><p Type='Lyrics'/><p Type='Parenthetical'/>\
<p Type='Singing'/><a/><p Type='Singing'/></Content> => \
|Action:la|Character:|Dialog:|Parenthetical:|Dialog:|Action:|Action: => \
note: paragraphs of the type 'Lyrics' are read as dialogue or action (2 times); \
note: paragraphs of the type 'Singing' are read as dialogue or action (2 times)
<Content><p Type='General'/><p Type='Cast List'/><p Type='End of Act'/><p Type='action'/></Content> => |Action:|Action:|Action:|: => \
note: paragraphs of the type 'Cast List' are read as action; \
note: paragraphs of the type 'End of Act' are read as action; \
warning: paragraphs of the unknown type 'action' are kept without a kind
<Content><p Type='a&#10;b'/><p><ScriptNote/><h/></p></Content> => |: / |SceneHeading: => \
warning: paragraphs of the unknown type 'a b' are kept without a kind
<Content><p><ScriptNote><t>x</t></ScriptNote><h/></p></Content> => \s/ |SceneHeading: / notes||1|x
<Content><p Type='Shot' Number='4'/></Content> => |Shot: => warning: numbers of paragraphs of the type 'Shot' have no place in a story
<Content><p><DualDialogue><p Type='Character'><t>A</t></p><p Type='Dialogue'/><p Type='Character'/></DualDialogue></p></Content> => \
|Character:A|Dialog:|Character: => warning: dual dialogue is read as one speech after the other
<Content><p><t>out</t><h><t>in</t></p></p><p><p><t/></p></p></Content> => |Action:out / |SceneHeading:in|Action:
<Content><p><h><t>first</t></p></p></Content> => |SceneHeading:first
<Content><h><OmittedScene><h Number='4'><SceneProperties Title='s'/><t>INT.</t></p><a><t>Gone.</t><ScriptNote><t>n</t></ScriptNote></p></OmittedScene></p><a/>\
<h Number='5'><OmittedScene><h Number='9'/></OmittedScene><t>CUT</t></p>\
<OmittedScene Number='6'/><p><OmittedScene><h Number='7'/></OmittedScene></p></Content> => \
4|SceneHeading:OMITTED|Action: / 5|SceneHeading:CUT / 6|SceneHeading:OMITTED / 7|SceneHeading:OMITTED / \
boneyard||1|INT. / boneyard||1|Gone. / notes||1|n / synopses||1|s => \
note: omitted scenes are kept as a heading; their paragraphs become comments (4 times)
<Content><h><SceneProperties Title='Low' Length='2 3/8'><Summary><p><t>One.</t></p><p><t/></p><t>Two.</t></Summary>\
</SceneProperties><t>EXT.</t></p></Content> => |SceneHeading:EXT. / synopses||1|Low / synopses||1|One. / synopses||1|Two. => \
note: the lengths of scenes in pages have no place in a story
<ScriptNotes><ScriptNote Range='3,1' WriterName='Ida'><p><t>a</t></p><p><t>b</t></p></ScriptNote><ScriptNote Range='7,0' Name='N'><t>b</t></ScriptNote>\
<ScriptNote Range='99,1'><t>c</t></ScriptNote><ScriptNote Range='4,1' Author='Bo'><p><t>d</t></p></ScriptNote><ScriptNote><p/></ScriptNote></ScriptNotes>\
<Content><h><t>😀X</t></p><h><t/></p><a><t>!</t></p><h/></Content> => \
|SceneHeading:😀X / |SceneHeading:|Action:! / |SceneHeading: / notes||3|N\x5Cnb / notes||3|c / notes|Bo|2|d / notes|Ida|1|a\x5Cnb
<Content><h/><h><ScriptNote Range='0,1'><p><t>x</t></p></ScriptNote><t>EXT.</t></p></Content><ScriptNotes>\
<ScriptNote Type='Plot'><t>y</t></ScriptNote></ScriptNotes> => |SceneHeading: / |SceneHeading:EXT. / notes||1|y / notes||2|x => \
note: notes without a place in the text are kept in the first scene
<TitlePage><Content><p/><p><t> HARBOUR </t></p><p><t>Written by</t></p><p/><p><t>Ida</t></p><p><t>by</t></p><p><t>Bo</t></p></Content>\
<HeaderAndFooter><p><t>1.</t></p></HeaderAndFooter></TitlePage> => meta=Title: HARBOUR\x5CnWritten by\x5CnAuthor: Ida\x5Cnby\x5CnBo
<TitlePage><Content><p><t>title: X</t></p><p><t>BY</t><t>\nBo</t></p></Content></TitlePage> => meta=title: X\x5CnBY\x5CnAuthor: Bo
<TagData><TagCategories><TagCategory Name='Story'/><TagCategory Name='Props'/></TagCategories><TagDefinitions><TagDefinition Label='lamp'/></TagDefinitions></TagData> => \
tag=lamp => note: tags are kept without their categories and places in the text
<Content>a<h>b<t>c</t></p></Content><SmartType><t>d</t></SmartType><Beats><p><t>e</t></p></Beats> => |SceneHeading:c => \
warning: text in the element 'Content' was left out; warning: text in the element 'Paragraph' was left out; \
warning: text in the element 'Beats' was left out)")) {
    const StoryResult result = ReadFDX(Script(row[0]), "a.fdx");
    ASSERT_TRUE(result) << row[0] << result.mFault->what();
    EXPECT_EQ(Everything(*result.mStory),
              row[1].empty() ? "" : Replaced(row[1], {{" / ", "\n"}}) + "\n")
        << row[0];
    EXPECT_EQ(Findings(result.mFindings), row[2]) << row[0];
  }
}

TEST(FDX, NamesThePlaceOfFaultsAndFindings) {
  for (const Row& row : Rows(R"(
<FinalDraft Version='5'>\n<Content> => a.fdx:2:10: error: the document ends before its root element does
<!-- -->\n<Final/> => a.fdx:2:1: error: is XML, but no FDX script: the root is 'Final'
=> a.fdx:1:1: error: the document is empty
<FinalDraft/> => 1:1 note: the script does not say its FDX version
<FinalDraft Version='0'/> => 1:1 note: the FDX version '0' is not known: 1 to 6 are
<FinalDraft Version='7'/> => 1:1 note: the FDX version '7' is not known: 1 to 6 are
<FinalDraft Version='6'>\n <DualDialogue/><Content>\n <DualDialogue/></Content></FinalDraft> => \
3:2 warning: dual dialogue is read as one speech after the other)")) {
    const StoryResult result = ReadFDX(row[0], "a.fdx");
    if (!result) {
      EXPECT_EQ(result.mFault->what(), row[1]);
      continue;
    }
    ASSERT_EQ(result.mFindings.size(), 1U) << row[0];
    const auto place = result.mFindings[0].mPosition.value();
    EXPECT_EQ(std::to_string(place.mLine) + ":" + std::to_string(place.mColumn) + " " +
                  Findings(result.mFindings),
              row[1]);
  }
}

// A story whose scenes are given as for MakeScene, a number before the first "=".
StoryPtr MakeStory(std::string_view scenes) {
  StoryPtr story(new zelstoryparser::TavroStory);
  story->mDocument = new zelstoryparser::Document;
  story->mDocument->mBodyStream = new zelstoryparser::Stream;
  auto& section = story->mDocument->mBodyStream->mSection = new zelstoryparser::Section;
  if (scenes.empty()) return story;
  table::Split(scenes, "//", [&](std::string_view scene) {
    const std::size_t end = scene.find('=');
    section->mScenes.push_back(MakeScene(scene.substr(end + 1), scene.substr(0, end)));
  });
  return story;
}

TEST(FDX, WritesScriptsForOtherPrograms) {
  for (const Row& row : Rows(R"(
=A:Rain. // 2=H:INT.\nX|\s=Y => <Paragraph Type="Action">\n      <Text>Rain.</Text>\n    </Paragraph>\n    \
<Paragraph Number="2" Type="Scene Heading">\n      <Text>INT.\nX=Y</Text>
=H:A // 7=A:B => <Paragraph Number="7" Type="Scene Heading" StoryScene="Begins">\n      <Text/> => note: scenes without a heading begin with an empty one
=H:A / H:B => <Paragraph Type="Scene Heading" StoryScene="Continues">\n      <Text>B => note: scenes with several headings are several scenes to other programs
=U:A => <Paragraph Type="Unknown"> => note: paragraphs without a kind have a type that other programs do not know
=H:A\x01 => a.fdx: error: XML cannot hold the character U+0001 (body, scene at position 1, paragraph 1))")) {
    std::string written;
    std::string findings;
    try {
      const WrittenScript script = WriteFDX(*MakeStory(row[0]), "a.fdx");
      written = script.mBytes;
      findings = Findings(script.mFindings);
    } catch (const Error& error) {
      written = error.what();
    }
    EXPECT_NE(written.find(row[1]), std::string::npos) << written;
    EXPECT_EQ(findings, row[2]) << row[0];
  }
}

TEST(FDX, FindsWhatAStoryLoses) {
  using namespace zelstoryparser;
  const StoryPtr story = MakeStory("=H:A // 1=H:INT.");
  Document& document = *story->mDocument;
  Scene& scene = *document.mBodyStream->mSection->mScenes[1];
  story->mTemplate = u"Film";
  document.mHeaderStream = document.mFooterStream = MakeStory("=A:x")->mDocument->mBodyStream;
  for (const char* const name : {"synopses", "plot"}) {
    auto& stream = document.mCommentStreams.emplace_back(new CommentStream);
    stream->mName = Utf16(name);
    stream->mCommentAuthor = u"Ida";
    stream->mSection = new Section;
    stream->mSection->mScenes.push_back(MakeScene("U:x", name[0] == 'p' ? "9" : "1"));
  }
  scene.mObjectID = Utf16("s7");
  scene.mShotDuration = u"0:00:10";
  scene.mParagraphs.emplace_back();
  const WrittenScript script = WriteFDX(*story, "a.fdx");
  EXPECT_EQ(Findings(script.mFindings),
            "note: the story's document type and template have no place in FDX; "
            "warning: the header has no place in FDX; warning: the footer has no place in FDX; "
            "note: identifiers have no place in FDX; reading makes new ones; "
            "warning: the authors of synopses have no place in FDX; "
            "warning: comments of no scene are kept at the first one; "
            "warning: the durations of scenes have no place in FDX; "
            "warning: comments of the stream 'plot' are read again as notes");
  EXPECT_EQ(script.mFindings[6].mWhere, "body, scene 1");
  EXPECT_EQ(CommentOutline(*ReadFDX(script.mBytes, "").mStory), "notes|Ida|1|x\nsynopses||2|x\n");
  document.mBodyStream = document.mHeaderStream = document.mFooterStream = new Stream;
  story->mTemplate.clear();
  EXPECT_EQ(Findings(WriteFDX(*story, "a.fdx").mFindings),
            "warning: comments without a scene are left out (2 times)");
}

TEST(FDX, ReadsWhatItWrote) {
  TreeOptions options;
  options.mPieces.emplace_back("\r");
  ForRandomTrees(300, [&](std::mt19937_64& random, std::uint64_t seed) {
    options.mHasAllMembers = seed % 2 == 1;
    const StoryPtr story = MakeTree(random, options);
    const std::string bytes = WriteFDX(*story, "a.fdx").mBytes;
    const StoryResult result = ReadFDX(bytes, "a.fdx");
    ASSERT_TRUE(result) << result.mFault->what();
    EXPECT_EQ(Everything(*result.mStory), Everything(*story)) << bytes;
  });
}

}  // namespace
}  // namespace zelstoryhost
