#include <random>
#include <set>

#include <gtest/gtest.h>

#include <zelstoryhost/Fountain.h>

#include "support/TreeGenerator.h"

namespace {

using namespace zelstoryhost;

// A script's scenes, "12A H:INT. HOUSE A:Rain.", joined by " / ", with the letters of MakeScene.
std::string Brief(const StoryResult& result) {
  if (!result) return result.mFault->what();
  std::string brief;
  for (const auto& scene : BodyScenes(*result.mStory)) {
    if (!brief.empty()) brief += " / ";
    brief += Utf8(scene->mSceneNumber);
    for (const auto& paragraph : scene->mParagraphs) {
      const char letter = "HCDASPTU"[paragraph->mElementType - 200];
      brief += (brief.empty() || brief.ends_with(' ') ? "" : " ") + std::string(1, letter) + ":" +
               OutlineField(TextOf(*paragraph));
    }
  }
  return brief;
}

std::string FindingsOf(const std::vector<Finding>& findings) {
  std::string text;
  for (const Finding& finding : findings) {
    if (!text.empty()) text += "; ";
    if (finding.mPosition) text += std::to_string(finding.mPosition->mLine) + ": ";
    text += finding.mText;
  }
  return text;
}

struct Case {
  const char* mScript;
  const char* mScenes;
  const char* mFindings = "";
};

void Check(const std::vector<Case>& cases) {
  for (const auto& [script, scenes, findings] : cases) {
    const StoryResult result = ReadFountain(script, "s");
    EXPECT_EQ(Brief(result), scenes) << script;
    EXPECT_EQ(FindingsOf(result.mFindings), findings) << script;
  }
}

constexpr const char* kEmphasis = "emphasis (italics, bold, underlining) is left out";

TEST(FountainTest, HeadingsBeginScenes) {
  constexpr const char* kTight =
      "a scene heading without an empty line after it is taken for one all the same";
  Check({
      {"INT. A - DAY\n\nRain.\n\next b\n\nEst. C\n\nint./ext. D\n\nINT/EXT E\n\nI/E. F\n\nInt.",
       "H:INT. A - DAY A:Rain. / H:ext b / H:Est. C / H:int./ext. D / H:INT/EXT E / H:I/E. F / "
       "H:Int."},
      {"INTERIOR\n\nEXTRA\n\nESTABLISHING\n\nINT", "A:INTERIOR A:EXTRA A:ESTABLISHING A:INT"},
      {"  INT. A  \n\n.snow\n\n..no\n\n. no\n\n.\u00C4\n\n.\xE2\x80\x9Cno",
       "H:INT. A / H:snow A:..no A:. no / H:\u00C4 A:.\xE2\x80\x9Cno"},
      {"Before.\n\nINT. A #1#\n\n.B #1-2.A#  \n\nINT. C #no no#\n\nINT. D ##\n\nINT. E \\#5#",
       "A:Before. / 1 H:INT. A / 1-2.A H:B / H:INT. C #no no# / H:INT. D ## / H:INT. E #5#"},
      {"INT. A\nRain.\n\nRain.\nINT. B\n\nINT. C", "H:INT. A A:Rain. A:Rain.\\nINT. B / H:INT. C",
       "1: a scene heading without an empty line after it is taken for one all the same"},
      {"# Act\nINT. A\n= s\n\n**INT. B**\n\n_EXT._ C", "H:INT. A / H:INT. B / H:EXT. C", kEmphasis},
      {"!INT. A\n\nA INT. B", "A:INT. A A:A INT. B"},
  });
  EXPECT_EQ(FindingsOf(ReadFountain("INT. A\nB.\n\nINT. C\nD.", "s").mFindings),
            std::string("1: ") + kTight + " (2 times)");
}

TEST(FountainTest, SpeechesFollowTheirCues) {
  Check({
      {"ANNA\nHi.\n\nOLE (on the phone) (CONT'D)\n(beat)\nYes,\n  all.\n(then)\nNo.",
       "C:ANNA D:Hi. C:OLE (on the phone) (CONT'D) P:(beat) D:Yes,\\nall. P:(then) D:No."},
      {"ANNA\n\nHi.\n\n23\nNo.\n\nR2D2\nBeep.\n\n\xE4\xBB\x96\nNo.\n\nMcANNA\nNo.",
       "A:ANNA A:Hi. A:23\\nNo. C:R2D2 D:Beep. A:\xE4\xBB\x96\\nNo. A:McANNA\\nNo."},
      {"@McANNA (o.s.)\nHi.\n\n@Ole\n\n!ANNA\nHi.\n\n(V.O.)\nNo.",
       "C:McANNA (o.s.) D:Hi. C:Ole A:ANNA\\nHi. A:(V.O.)\\nNo."},
      {"ANNA\nOne.\n  \nTwo.\n \nThree.", "C:ANNA D:One.\\n\\nTwo. A:Three."},
      {"Rain.\nANNA\nHi.\n\nANNA\n.B\n@C\n> D\n!E\n\n(beat)",
       "A:Rain.\\nANNA\\nHi. C:ANNA "
       "D:.B\\n@C\\n> D\\n!E A:(beat)"},
      {"ANNA\nHi.\n\nOLE ^\nHo.\n\n@Ole ^\nHa.", "C:ANNA D:Hi. C:OLE D:Ho. C:Ole D:Ha.",
       "4: dual dialogue is read as one speech after the other (2 times)"},
      {"ANNA \\^\nHi.\n\n@\x01 \\\\^", "C:ANNA ^ D:Hi. C:\x01 \\\\",
       "4: dual dialogue is read as one speech after the other"},
      {"ANNA\n~la la\n\n~lo\n~lo", "C:ANNA D:la la A:lo\\nlo",
       "2: lyrics are read as dialogue or action (3 times)"},
      {"ANNA\nOne [[note\n  \nmore]] two.\n[[alone]]\nThree.\n\n[[x]]\nOLE\n[[y]]\nHi. [[z]]",
       "C:ANNA D:One two.\\nThree. C:OLE D:Hi."},
  });
}

TEST(FountainTest, WhatElseThereIsIsActionOrTransition) {
  Check({
      {"  Rain.  \n\tStorm.\n\n\n\nSun.", "A:  Rain.\\n    Storm. A:Sun."},
      {"CUT TO:\n\n> Fade out.\n\nCUT TO: \n\nSMASH CUT TO:\nNo.\n\nCut to:\n\n>\n\n>!CUT TO:",
       "T:CUT TO: T:Fade out. A:CUT TO: C:SMASH CUT TO: D:No. A:Cut to: A:> T:!CUT TO:"},
      {"Rain.\nCUT TO:\n\nCUT TO: [[x]]", "A:Rain.\\nCUT TO: T:CUT TO:"},
      {">THE END<\n  > OR < \n\n> a \\<", "A:THE END\\nOR T:a <"},
      {"!@Ole\n!!\n\n!  x", "A:@Ole\\n! A:  x"},
      {"A *b* **c** ***d*** _e_ _**f**_ *g _h* i_.", "A:A b c d e f g _h i_.", kEmphasis},
      {"He dialed *69 and *23.\n5 * 3 * 2\na_b_c __ ____ **** *x\ny*\n\\*a\\* \\_ \\\\ \\a "
       "\\[[a]]",
       "A:He dialed *69 and *23.\\n5 * 3 * 2\\na_b_c __ ____ **** *x\\ny*\\n*a* _ \\\\ \\\\a "
       "[[a]]"},
      {"Rain.\n===\nSun.\n\n# A\n\n= b\n\n== c\n\n====", "A:Rain. A:Sun.",
       "2: page breaks are left out (2 times)"},
  });
}

TEST(FountainTest, RemarksGoToTheirScenes) {
  struct {
    const char *mScript, *mScenes, *mComments;
  } const cases[] = {
      {"[[a]]\n\nINT. A [[b]]\n\n= c\n\nRain. [[d [[e]] f]]\n\n[[g]]\n\n# Act\n\n## Part\n\n= h\n\n"
       "[[i]]\n\nINT. B\n\n# End",
       "H:INT. A A:Rain. f]] / H:INT. B",
       "notes||1|a\nnotes||1|b\nnotes||1|d [[e\nnotes||1|g\nnotes||2|i\nsections||2|# Act\n"
       "sections||2|## Part\nsections||2|# End\nsynopses||1|c\nsynopses||2|h\n"},
      {"A /* b\n\nINT. C\n\n*/ d.\n/*/ e */\n[[f\n\ng]]\n\n[[\n  h\n  \n  i\n]]\n\n/* j",
       "A:A d.\\n[[f A:g]] A:/* j",
       "boneyard||1|b\\n\\nINT. C\nboneyard||1|/ e\n"
       "notes||1|h\\n\\n  i\n"},
  };
  for (const auto& [script, scenes, comments] : cases) {
    const StoryResult result = ReadFountain(script, "s");
    EXPECT_EQ(Brief(result), scenes) << script;
    EXPECT_EQ(CommentOutline(*result.mStory), comments) << script;
  }
  EXPECT_EQ(FindingsOf(ReadFountain("a\n\xC3\xA4 [[\n\n/*", "s").mFindings),
            "2: a note ([[) has no end and is kept as text; 4: a boneyard (/*) has no end and is "
            "kept as text");
}

TEST(FountainTest, TheTitlePageIsTheMetadata) {
  const std::pair<const char*, const char*> cases[] = {
      {"Title: _**A**_ & B\nAuthor:Ida\nContact:\n\tBay 1\n    Sea\nDraft date:  1/2\n\nINT. A",
       "Title: A & B\nAuthor: Ida\nContact:\n    Bay 1\n    Sea\nDraft date: 1/2"},
      {"\n\nTITLE:\n\nRain.", "TITLE:"},
      {"Format: Short\nbeach\n\nRain.", "Format: Short\n    beach"},
      {"FADE IN:\n\nINT. A", ""},
      {"INT. A: B\n\nRain.", ""},
      {"!Title: A\n\nRain.", ""},
      {"Rain.\n\nTitle: A", ""},
  };
  for (const auto& [script, metadata] : cases) {
    EXPECT_EQ(Utf8(ReadFountain(script, "s").mStory->mMetaData), metadata) << script;
  }
  EXPECT_EQ(FindingsOf(ReadFountain("Title: *A*", "s").mFindings), kEmphasis);
  EXPECT_EQ(FindingsOf(ReadFountain("Anna: Hi.", "s").mFindings),
            "1: the text up to the first empty line is taken for a title page");
}

TEST(FountainTest, EncodingsAndFaults) {
  using namespace std::string_literals;
  const std::pair<std::string, const char*> cases[] = {
      {"\xEF\xBB\xBFINT. \xC3\x84\r\n\r\na\rb\r\n", "H:INT. \u00C4 A:a\\nb"},
      {"\xFF\xFEI\0N\0T\0 \0\xC4\0\n\0\n\0=\xD8\x00\xDE"s, "H:INT \u00C4 A:\U0001F600"},
      {"\0I\0N\0T\0 \0A"s, "H:INT A"},
      {"", ""},
      {"a\n\u00E4\xE4", "s:2:2: error: is not UTF-8 text"},
      {"a\r\nb\0"s, "s:2:2: error: is not text: it has a NUL character"},
      {"\xFF\xFE"
       "a\0\n\0b"s,
       "s:2:1: error: is not UTF-16 text"},
      {"\xFE\xFF\xD8\0\0a"s, "s:1:1: error: is not UTF-16 text"},
  };
  for (const auto& [script, expected] : cases)
    EXPECT_EQ(Brief(ReadFountain(script, "s")), expected);
}

// Each would take hours if it took time by the square of its length.
TEST(FountainTest, LongScriptsOfOneMarkAreReadSoon) {
  for (const char* const piece :
       {"*",    "*a",    "_a ",   "**a*_",  "[[",       "[[a]]",      "[[a\n\n",
        "/*",   "/*a*/", "# a\n", "= a\n",  "A\na\n\n", "INT. A\n\n", "(a)\n",
        "  \n", "\\",    "\\[",   "a: b\n", "#1#",      " ",          "\n"}) {
    std::string script;
    while (script.size() < 200'000) script += piece;
    for (const std::string& start : {std::string(), "A\n" + script, "INT. " + script}) {
      const StoryResult result = ReadFountain(start.empty() ? script : start, "s");
      EXPECT_TRUE(WriteFountain(*result.mStory, "s").mFindings.empty()) << piece;
    }
  }
}

// What an edit in one scene may change is that scene's own identifier, without a number.
TEST(FountainTest, IdentifiersAreStable) {
  const std::string a = "INT. A\n\nRain.\n\n", b = "INT. A\n\nSun.\n\n", c = "INT. C #7#\n\nx\n\n";
  const auto ids = [](const std::string& script) {
    std::vector<std::string> all;
    for (const auto& scene : BodyScenes(*ReadFountain(script, "s").mStory)) {
      all.push_back(Utf8(scene->mObjectID.AsString()));
    }
    return all;
  };
  const auto before = ids(a + b + c + a + c);
  const auto after = ids("x\n\nINT. A\n\n" + b + c + "INT. A\n\n" + c);
  EXPECT_EQ(std::set(before.begin(), before.end()).size(), 5U);
  EXPECT_EQ(before[1], after[2]);
  EXPECT_EQ(before[2], "scene-7");
  EXPECT_EQ(after[3], "scene-7");
  EXPECT_EQ(before[4], after[5]);
}

TEST(FountainTest, WhatHasNoPlaceIsFound) {
  const StoryPtr story = ReadFountain("INT. A\n\nRain.", "s").mStory;
  zelstoryparser::Scene& scene = *BodyScenes(*story)[0];
  scene.mObjectID = zelcore::UTF16String(u"mine");
  scene.mParagraphs[0]->mTextRuns[0]->mText = u"\x01 A";
  scene.mParagraphs[1]->mTextRuns[0]->mText = u"\xD83D";
  scene.mParagraphs[1]->mTextRuns.emplace_back(new zelstoryparser::TextRun)->mText =
      u"\xDE00\xD83D";
  const WrittenScript script = WriteFountain(*story, "s");
  EXPECT_EQ(script.mBytes, ".\\\x01 A\n\n\U0001F600\uFFFD\n");
  EXPECT_EQ(FindingsOf(script.mFindings),
            "identifiers have no place in Fountain; reading makes new ones; half of a surrogate "
            "pair becomes U+FFFD");
}

// Whatever a tree says, what is read of the script that was written can be written again without
// loss; and it is the same as the tree if nothing was found.
TEST(FountainTest, WrittenTreesAreReadAgain) {
  int trees = 0;
  int exact = 0;
  TreeOptions odd, plain;
  for (const char* const lost : {" ", "\t", "\n", "\n\n", "  ", "Title: ", "Author: "}) {
    std::erase(plain.mPieces, lost);
  }
  plain.mKinds = {200, 201, 203, 206};
  plain.mIsPlain = true;
  plain.mHasMetadata = false;
  odd.mCommentStreams =
      plain.mCommentStreams = {{"notes", ""}, {"synopses", ""}, {"sections", ""}, {"boneyard", ""}};
  ForRandomTrees(500, [&](std::mt19937_64& random, std::uint64_t seed) {
    ++trees;
    const StoryPtr tree = MakeTree(random, seed % 2 == 0 ? plain : odd);
    const WrittenScript first = WriteFountain(*tree, "s");
    const StoryResult again = ReadFountain(first.mBytes, "s");
    const WrittenScript second = WriteFountain(*again.mStory, "s");
    const StoryResult last = ReadFountain(second.mBytes, "s");
    EXPECT_EQ(FindingsOf(second.mFindings), "") << first.mBytes;
    EXPECT_EQ(Outline(*last.mStory), Outline(*again.mStory)) << second.mBytes;
    EXPECT_EQ(CommentOutline(*last.mStory), CommentOutline(*again.mStory)) << second.mBytes;
    EXPECT_EQ(last.mStory->mMetaData, again.mStory->mMetaData) << second.mBytes;
    if (!first.mFindings.empty()) return;
    ++exact;
    EXPECT_EQ(Outline(*again.mStory), Outline(*tree)) << first.mBytes;
  });
  EXPECT_GT(exact, trees / 3);
}

}  // namespace
