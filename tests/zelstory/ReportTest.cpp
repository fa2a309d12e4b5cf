#include <regex>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "zelstory/Scratch.h"

namespace {

using testing::HasSubstr;
using testing::Not;

class ReportTest : public Scratch {
 protected:
  std::string Page(const std::string& story, const std::string& title = " ") const {
    const std::string options = " --html page.html --title '" + title + "'";
    EXPECT_EQ(Printed("zelstory report \"" + story + '"' + options), "");
    return Read("page.html");
  }
  std::string PageOf(const std::string& story) const {
    Write("a 'b' <i>.quor", story);
    return Page("a 'b' <i>.quor");
  }
  // What a browser prints for a page: its document, unless another option is given.
  std::string InBrowser(const std::string& page, const std::string& option = "--dump-dom") const {
    const Outcome outcome =
        // The path of its socket has to be short.
        Run("TMPDIR=/tmp chromium --headless --no-sandbox --disable-gpu --user-data-dir=profile "
            "--allow-file-access-from-files " +
            option + " file://$PWD/" + page);
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

void Has(const std::string& page, const std::vector<std::string>& texts) {
  for (const std::string& text : texts) EXPECT_THAT(page, HasSubstr(text));
}

TEST_F(ReportTest, ABrowserReadsIt) {
  if (const auto missing = Missing("chromium"); !missing.empty()) GTEST_SKIP() << missing;
  Page("$stories/the_long_tide.quor");
  const std::string page = InBrowser("page.html");
  Has(page, {"<h1 lang=\"\">THE LONG TIDE</h1><p class=\"file\">the_long_tide.quor</p>",
             "<dd id=\"scene-count\">72</dd>", "<title>scene 64A: 0:02:00</title>",
             "<desc>The longest: scene 21, 0:02:20.</desc>"});
  EXPECT_EQ(Matches(page, "scope=\"row\"><a href=\"#(scene-[0-9]+)\"").size(), 72u);
  EXPECT_EQ(Matches(page, "<rect class=\"(bar)\"").size(), 71u + 1u);  // and one in the legend
  Write("phone.html",
        "<iframe src='page.html' width='390' onload='const page = contentDocument."
        "documentElement; title = page.scrollWidth - page.clientWidth'></iframe>");
  EXPECT_THAT(InBrowser("phone.html"), HasSubstr("title=\"0\""));
}

// After a change that is meant, copy the new page to $data, and look at the difference.
TEST_F(ReportTest, PagesAreAsApproved) {
  for (const std::string story : {"every_element", "headings"}) {
    Page("$stories/" + story + ".quor");
    EXPECT_EQ(Run("diff $data/" + story + ".html page.html").mOutput, "");
  }
}

TEST_F(ReportTest, EveryLinkHasItsTarget) {
  for (const std::string& story : Lines(Run("ls $stories/*.quor $stories/encodings/*").mOutput)) {
    const std::string page = Page(story);
    const auto anchors = Matches(page, "id=\"([^\"]*)\"");
    EXPECT_EQ(std::set<std::string>(anchors.begin(), anchors.end()).size(), anchors.size())
        << story;
    for (const std::string& target : Matches(page, "href=\"#([^\"]*)\"")) {
      EXPECT_EQ(anchors.count(target), 1u) << story << ": " << target;
    }
    EXPECT_THAT(page, Not(testing::ContainsRegex("(src|href)=\"[^#]"))) << story;
    EXPECT_EQ(Run("if command -v xmllint >o; then xmllint --noout page.html; fi").mErrors, "");
  }
}

TEST_F(ReportTest, NoTextBecomesMarkup) {
  const std::string hostile =
      "&lt;/style>&lt;/p>&lt;script>alert(1)&lt;/script>&lt;img src=x onerror=&apos;x&apos;>"
      "&quot; onload=&quot;x&amp;lt;&#x85;&#xFFFD;]]&gt;";
  std::string scene = "<scene objID=\"" + hostile + "\" sceneNumber=\"" + hostile + "\">";
  for (const char* kind : {"SceneHeading", "Action", "Character", "Dialog", "Parenthetical", "Shot",
                           "Transition", "Other"}) {
    scene += Paragraph(kind, "INT. " + hostile + " - DAY");
  }
  const auto judge = [](const std::string& page) {
    for (const char* markup : {"<script", "<img", "<i>", "</style></p>"}) {
      EXPECT_THAT(page, Not(HasSubstr(markup)));
    }
    EXPECT_THAT(page, HasSubstr("&lt;script&gt;alert(1)"));
  };
  judge(PageOf(Story(scene + "</scene>", "<metaData>Title: " + hostile + "</metaData>")));
  if (const auto missing = Missing("chromium"); !missing.empty()) GTEST_SKIP() << missing;
  judge(InBrowser("page.html"));
}

TEST_F(ReportTest, ManyScenesAndPeopleStayReadable) {
  std::string body;
  for (int scene = 0; scene < 300; ++scene) {
    body += "<scene>" + Paragraph("Character", "P" + std::to_string(scene % 40)) +
            Paragraph("Dialog", scene % 40 == 7 ? "Word word" : "Word") + "</scene>";
  }
  const std::string page = PageOf(Story(body));
  EXPECT_EQ(Matches(page, "<rect class=\"(bar)\"").size(), 100u);
  EXPECT_EQ(Matches(page, "<text class=\"label\"[^>]*>(P[0-9]+)").size(), 30u);
  Has(page, {"The chart has the first 30 of <a href=\"#characters\">40 characters</a>.",
             "<title>P7, scenes #7 to #9: 1 speech, 2 words</title><rect class=\"cell s4\"",
             "<title>P6, scenes #7 to #9: 1 speech, 1 word</title><rect class=\"cell s3\"",
             "The longest: scenes #7 to #9, 7 words.", "scope=\"row\">P39</th>",
             "<title>scenes #298 to #300: 6 words</title>"});
}

TEST_F(ReportTest, EstimatesAreMarked) {
  const auto scene = [](const std::string& duration, int words) {
    std::string text = Paragraph("SceneHeading' shotDuration='" + duration, "");
    for (int i = 0; i < words; ++i) text += Paragraph("Action", "word");
    return "<scene sceneNumber=' '>" + text + "</scene>";
  };
  // The second and third: too few words to measure a pace by, and an impossible one.
  const std::string kCases[][4] = {
      {scene("0:00:40", 180) + scene("", 91), "0:01:01 (of which 0:00:21 estimated)",
       "0:00:21 (estimated)", "0:00:00 0:00:10 0:00:20 0:00:30 0:00:40 "},
      {scene("0:04:00", 179) + scene("", 90), "0:04:30 (of which 0:00:30 estimated)",
       "0:00:30 (estimated)", "0:00:00 0:01:00 0:02:00 0:03:00 0:04:00 "},
      {scene("0:00:01", 180) + scene("0:-1:00", 30), "0:00:11 (of which 0:00:10 estimated)",
       "0:00:10 (estimated)", "0:00:00 0:00:02 0:00:04 0:00:06 0:00:08 0:00:10 "},
      {scene("9:00:00", 0) + scene("0:-1:60", 3), "9:00:00", "0:00:00",
       "0:00:00 10:00:00 2:00:00 4:00:00 6:00:00 8:00:00 "},
      {scene("", 7) + scene("", 11), "0:00:07 (estimated)", "11 words",
       "0 words 10 words 15 words 5 words "}};
  for (const auto& [body, total, last, axis] : kCases) {
    const std::string page = PageOf(Story(body));
    Has(page, {"\"running-time\">" + total + "<", "<title>scene #2: " + last + "<"});
    std::string labels;
    for (const std::string& label : Matches(page, "\"label\"[^>]*>([^<]*)")) labels += label + ' ';
    EXPECT_EQ(labels, axis);
  }
}

TEST_F(ReportTest, EveryParagraphAppearsOnceInItsPlace) {
  const std::string page =
      PageOf(Story("<scene sceneNumber='5'>" + Paragraph("Action", "Hm.") +
                       Paragraph("SceneHeading", "ONE") + Paragraph("SceneHeading", "TWO") +
                       "</scene><scene>" + Paragraph("Shot", "X") + "</scene>",
                   Stream("header", "<scene>" + Paragraph("", "Top") + "</scene>") +
                       Stream("footer", "<scene>" + Paragraph("", "End") + "</scene>")));
  const std::string aside = "<aside><p class=\"label\" lang=\"en\">";
  Has(page, {aside +
                 "Header</p><p class=\"action\">Top</p></aside><article><p class=\"action\">Hm.</p>"
                 "<h3 id=\"scene-1\">"
                 "<span class=\"number\">5</span><span class=\"text\">ONE</span></h3>"
                 "<p class=\"heading\">TWO</p></article><article>"
                 "<h3 id=\"scene-2\"><span class=\"text\" lang=\"en\">(no heading)</span></h3>"
                 "<p class=\"shot\">X</p></article>" +
                 aside + "Footer</p><p class=\"action\">End</p></aside></div>",
             "<a href=\"#scene-2\">#2</a>", "guess\">≈ 0:00:01"});
  if (const auto missing = Missing("chromium pdftotext"); !missing.empty()) GTEST_SKIP() << missing;
  InBrowser("page.html", "--print-to-pdf=page.pdf");
  EXPECT_THAT(Run("pdftotext page.pdf -").mOutput,
              testing::ContainsRegex("Scene lengths\n[^\f]*1 ?/ ?3[^\f]*\f[^\f]*\nScenes\n[^\f]*"
                                     "2 ?/ ?3[^\f]*\f[^\f]*\nScreenplay\n[^\f]*3 ?/ ?3"));
}

TEST_F(ReportTest, TheTitleIsTheGivenOneOrTheStorysOrTheFiles) {
  const std::string kCases[][3] = {{"Title: A", "B", "B</h1><p class=\"file\">s.quor</p>"},
                                   {"Title page: x\n \ttitle:  A b &#13;\nTitle: C", " ",
                                    "A b</h1><p class=\"file\">s.quor</p>"},
                                   {"Subtitle: A\nTitle: ", " ", "s.quor</h1><dl"}};
  for (const auto& [metaData, given, heading] : kCases) {
    Write("s.quor",
          "<TavroStory version='1.0'><metaData>" + metaData +
              "</metaData>"
              "<document><stream name='header'><section/></stream></document></TavroStory>");
    EXPECT_THAT(Page("s.quor", given), HasSubstr("<h1 lang=\"\">" + heading));
  }
}

TEST_F(ReportTest, AnEmptyStoryHasAPageAndABadOneNone) {
  Write("empty.quor", "<TavroStory version='1.0'/>");
  const std::string page = Page("empty.quor");
  EXPECT_THAT(page, HasSubstr("(no text)"));
  EXPECT_EQ(Tool("report empty.quor --html -").mOutput, page);
  EXPECT_EQ(Printed("zelstory report - --html new.html <empty.quor"), "");
  EXPECT_THAT(Read("new.html"), HasSubstr("Screenplay</h1>"));
  Run("ln -s empty.quor link; mkfifo pipe");
  const std::pair<std::string, std::string> cases[] = {
      {"$stories/broken/second_section.quor --html page.html",
       "second_section.quor:13:7: error: We found"},
      {"empty.quor --html empty.quor", "empty.quor: error: is the story itself"},
      {"- --html ./empty.quor <empty.quor", "./empty.quor: error: is the story itself"},
      {"empty.quor --html link", "link: error: is the story itself"},
      {"- --html link <empty.quor", "link: error: is the story itself"},
      {"empty.quor --html pipe", "pipe: error: is not a regular file\n"}};
  for (const auto& [arguments, error] : cases) {
    const Outcome refused = Tool("report " + arguments);
    EXPECT_EQ(refused.mStatus, 1) << arguments;
    EXPECT_THAT(refused.mErrors, HasSubstr(error));
  }
  EXPECT_EQ(Read("page.html"), page);
  EXPECT_EQ(Read("empty.quor"), "<TavroStory version='1.0'/>");
  EXPECT_EQ(Run("test -p pipe && ls").mOutput, "empty.quor\nlink\nnew.html\npage.html\npipe\n");
}

}  // namespace
