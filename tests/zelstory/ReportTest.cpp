#include <filesystem>
#include <regex>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Scratch.h"

namespace {

using testing::HasSubstr;
using testing::Not;

class ReportTest : public Scratch {
 protected:
  std::string Page(const std::string& story) {
    const Outcome outcome = Tool({"report", story, "--html", "page.html"});
    EXPECT_EQ(outcome.mStatus, 0) << outcome.mErrors;
    EXPECT_EQ(outcome.mOutput, "");
    return Read("page.html");
  }
  // The page's document as a browser has it.
  std::string InBrowser() {
    const Outcome outcome = Process(
        "chromium", {"--headless", "--no-sandbox", "--disable-gpu", "--user-data-dir=profile",
                     "--dump-dom", "file://" + File("page.html")});
    EXPECT_EQ(outcome.mStatus, 0) << outcome.mErrors;
    return outcome.mOutput;
  }
};

std::multiset<std::string> Matches(const std::string& text, const char* pattern) {
  const std::regex regex(pattern);
  std::multiset<std::string> found;
  for (std::sregex_iterator i(text.begin(), text.end(), regex), end; i != end; ++i) {
    found.insert((*i)[1]);
  }
  return found;
}

TEST_F(ReportTest, ABrowserReadsIt) {
  if (!IsInstalled("chromium")) GTEST_SKIP() << "chromium is not installed";
  Page(Example("the_long_tide.quor"));
  const std::string page = InBrowser();
  EXPECT_THAT(page, HasSubstr("<span id=\"scene-count\">72</span>"));
  EXPECT_EQ(Matches(page, "<th class=\"count\" scope=\"row\"><a href=\"#(scene-[0-9]+)\"").size(),
            72u);
  EXPECT_EQ(Matches(page, "<rect class=\"(bar)\"").size(), 72u);
  // Told to who cannot see it; by their own numbers, as the table has them.
  EXPECT_THAT(page, HasSubstr("<desc>The longest: scene 6, 196 words.</desc>"));
  EXPECT_THAT(page, HasSubstr("<title>scene 64A: 139 words</title>"));
}

TEST_F(ReportTest, EveryLinkLeadsSomewhereOnThePage) {
  for (const std::string& story : GoodExamples()) {
    const std::string page = Page(story);
    const auto anchors = Matches(page, "id=\"([^\"]*)\"");
    EXPECT_EQ(std::set<std::string>(anchors.begin(), anchors.end()).size(), anchors.size())
        << story;
    for (const std::string& target : Matches(page, "href=\"#([^\"]*)\"")) {
      EXPECT_EQ(anchors.count(target), 1u) << story << ": " << target;
    }
    EXPECT_THAT(page, Not(testing::ContainsRegex("(src|href)=\"[^#]"))) << story;
    if (IsInstalled("xmllint")) {
      EXPECT_EQ(Process("xmllint", {"--noout", "page.html"}).mErrors, "") << story;
    }
  }
}

TEST_F(ReportTest, NoTextBecomesMarkup) {
  const std::string hostile =
      "&lt;/style>&lt;/p>&lt;script>alert(1)&lt;/script>&lt;img src=x onerror=&apos;x&apos;>"
      "&quot; onload=&quot;x&amp;lt;&#x85;&#xFFFD;]]&gt;";
  std::string story =
      "<TavroStory version='1.0'><document><stream name='body'><section>"
      "<scene objID=\"" +
      hostile + "\" sceneNumber=\"" + hostile + "\">";
  for (const char* kind : {"SceneHeading", "Action", "Character", "Dialog", "Parenthetical", "Shot",
                           "Transition", "Other"}) {
    story += std::string("<paragraph element='") + kind + "'><textRun>INT. " + hostile +
             " - DAY</textRun></paragraph>";
  }
  Write("a \"b\" <i>.quor", story + "</scene></section></stream></document></TavroStory>");
  const auto judge = [](const std::string& page) {
    for (const char* markup : {"<script", "<img", "<i>", "</style></p>"}) {
      EXPECT_THAT(page, Not(HasSubstr(markup)));
    }
    EXPECT_THAT(page, HasSubstr("&lt;script&gt;alert(1)"));
  };
  judge(Page("a \"b\" <i>.quor"));
  if (!IsInstalled("chromium")) GTEST_SKIP() << "chromium is not installed";
  judge(InBrowser());
}

TEST_F(ReportTest, ManyScenesAndPeopleStayReadable) {
  std::string story = "<TavroStory version='1.0'><document><stream name='body'><section>";
  for (int scene = 0; scene < 300; ++scene) {
    story += "<scene><paragraph element='Character'><textRun>P" + std::to_string(scene % 40) +
             "</textRun></paragraph><paragraph element='Dialog'><textRun>Word" +
             (scene % 40 == 7 ? " word" : "") + "</textRun></paragraph></scene>";
  }
  Write("big.quor", story + "</section></stream></document></TavroStory>");
  const std::string page = Page("big.quor");
  EXPECT_THAT(page, HasSubstr("Another 10 who say less are left out."));
  EXPECT_EQ(Matches(page, "<rect class=\"(bar)\"").size(), 100u);
  EXPECT_THAT(page, HasSubstr("<title>P7, scenes #7 to #9: 1 speech, 2 words</title>"));
  EXPECT_THAT(page, HasSubstr("<title>scenes #298 to #300: 6 words</title>"));
}

TEST_F(ReportTest, AnEmptyStoryHasAPageAndABadOneNone) {
  Write("empty.quor", "<TavroStory version='1.0'/>");
  const std::string page = Page("empty.quor");
  EXPECT_THAT(page, HasSubstr("(no text)"));
  EXPECT_EQ(Tool({"report", "empty.quor", "--html", "-"}).mOutput, page);
  const Outcome refused =
      Tool({"report", Example("broken/second_section.quor"), "--html", "page.html"});
  EXPECT_EQ(refused.mStatus, 1);
  EXPECT_THAT(refused.mErrors, HasSubstr("second_section.quor:13:7: error: We found"));
  EXPECT_EQ(Read("page.html"), page);
  EXPECT_EQ(Tool({"report", "empty.quor"}).mStatus, 2);
  const std::string story = Read("empty.quor");
  std::filesystem::create_symlink("empty.quor", File("link"));
  for (const char* same : {"empty.quor", "./empty.quor", "link"}) {
    EXPECT_THAT(Tool({"report", "empty.quor", "--html", same}).mErrors,
                HasSubstr(std::string(same) + ": error: is the story itself"));
    const std::string piped =
        std::string("\"$0\" report - --html ") + same + " <empty.quor; test $? = 1";
    EXPECT_THAT(Process("sh", {"-c", piped, ZELSTORY_TOOL}).mErrors,
                HasSubstr(std::string(same) + ": error: is the story itself"));
    EXPECT_EQ(Read("empty.quor"), story);
  }
  ASSERT_EQ(Process("mkfifo", {"pipe"}).mStatus, 0);
  EXPECT_EQ(Tool({"report", "empty.quor", "--html", "pipe"}).mErrors,
            "pipe: error: is not a regular file\n");
  EXPECT_TRUE(std::filesystem::is_fifo(File("pipe")));
  EXPECT_EQ(FilesHere(), (std::vector<std::string>{"empty.quor", "link", "page.html", "pipe"}));
}

}  // namespace
