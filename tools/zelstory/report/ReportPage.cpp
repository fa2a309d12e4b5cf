#include "report/ReportPage.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>
#include <sstream>
#include <vector>

#include <zelstoryhost/RunningTime.h>
#include <zelstoryhost/SceneFacts.h>
#include <zelstoryhost/Story.h>
#include <zelstoryhost/Text.h>

#include "report/ReportCharts.h"
#include "report/ReportMarkup.h"
#include "report/ReportStyle.h"
#include "report/ReportTables.h"
#include "terminal/Console.h"
#include "terminal/Memory.h"
#include "terminal/TextLayout.h"

namespace zelstory {

using zelstoryhost::BodyScenes;
using zelstoryhost::CharacterFacts;
using zelstoryhost::CountWords;
using zelstoryhost::IsNumber;
using zelstoryhost::ReadCharacterFacts;
using zelstoryhost::ReadRunningTimes;
using zelstoryhost::ReadSceneFacts;
using zelstoryhost::RunningTimes;
using zelstoryhost::SceneFacts;
using zelstoryhost::TextOf;
using zelstoryhost::ToUTF8;

namespace {

using namespace zelstoryparser;

constexpr const char* kPageStart =
    "<!DOCTYPE html>\n"
    "<html lang=\"en\" xmlns=\"http://www.w3.org/1999/xhtml\">\n"
    "<head>\n"
    "<meta charset=\"utf-8\"/>\n"
    "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n";

const char* ClassOf(std::int32_t kind) {
  switch (kind) {
    case kSceneHeading:
      return "heading";
    case kCharacter:
      return "character";
    case kDialog:
      return "dialog";
    case kShot:
      return "shot";
    case kParenthetical:
      return "parenthetical";
    case kTransition:
      return "transition";
    default:
      return "action";
  }
}

void AddParagraph(pugi::xml_node page, const Paragraph& paragraph) {
  AddElement(page, "p", ClassOf(paragraph.mElementType), TextOf(paragraph));
}

void AddHeading(pugi::xml_node article, const SceneFacts& scene, const Paragraph* heading) {
  pugi::xml_node title = AddElement(article, "h3");
  SetAttribute(title, "id", SceneAnchor(scene.mPosition));
  if (IsNumber(scene.mNumber)) AddElement(title, "span", "number", scene.mNumber);
  pugi::xml_node text =
      AddElement(title, "span", "text", heading ? TextOf(*heading) : "(no heading)");
  if (!heading) text.append_attribute("lang") = "en";
}

// The first heading gets the number and is the target of links; paragraphs above it stay there.
void AddScene(pugi::xml_node page, const Scene& scene, const SceneFacts& facts) {
  pugi::xml_node article = AddElement(page, "article");
  const auto isHeading = [](const auto& paragraph) {
    return paragraph->mElementType == kSceneHeading;
  };
  const auto heading = std::find_if(scene.mParagraphs.begin(), scene.mParagraphs.end(), isHeading);
  if (heading == scene.mParagraphs.end()) AddHeading(article, facts, nullptr);
  for (auto i = scene.mParagraphs.begin(); i != scene.mParagraphs.end(); ++i) {
    if (i == heading) {
      AddHeading(article, facts, i->get());
    } else {
      AddParagraph(article, **i);
    }
  }
}

// Headers and footers of the sheet are not part of the script's text, so they get a box.
void AddEdgeStream(pugi::xml_node page, const boost::intrusive_ptr<Stream>& stream,
                   const char* label) {
  if (!stream || !stream->mSection) return;
  pugi::xml_node box = AddElement(page, "aside");
  AddElement(box, "p", "label", label).append_attribute("lang") = "en";
  for (const auto& scene : stream->mSection->mScenes) {
    for (const auto& paragraph : scene->mParagraphs) AddParagraph(box, *paragraph);
  }
  if (!box.first_child().next_sibling()) page.remove_child(box);
}

void AddScreenplay(pugi::xml_node section, const TavroStory& story,
                   const std::vector<SceneFacts>& facts) {
  pugi::xml_node page = AddElement(section, "div");
  page.append_attribute("id") = "page";
  page.append_attribute("lang") = kUnknownLanguage;
  if (story.mDocument) AddEdgeStream(page, story.mDocument->mHeaderStream, "Header");
  std::size_t position = 0;
  for (const auto& scene : BodyScenes(story)) AddScene(page, *scene, facts[position++]);
  if (story.mDocument) AddEdgeStream(page, story.mDocument->mFooterStream, "Footer");
  if (!page.first_child()) AddElement(page, "p", "action", "(no text)");
}

pugi::xml_node AddSection(pugi::xml_node main, const char* id, const char* title) {
  pugi::xml_node section = AddElement(main, "section");
  section.append_attribute("id") = id;
  AddElement(section, "h2", "", title);
  return section;
}

void AddFact(pugi::xml_node summary, const char* id, const char* name, const std::string& value) {
  pugi::xml_node fact = AddElement(summary, "div");
  AddElement(fact, "dt", "", name);
  AddElement(fact, "dd", "", value).append_attribute("id") = id;
}

std::string DescribeEstimate(const RunningTimes& times) {
  const std::string rate =
      " at " + std::to_string(std::llround(times.mWordsPerMinute)) + " words a minute";
  if (times.mIsRateMeasured) {
    return "Scenes without a duration are estimated" + rate +
           ", the pace of the scenes that have one.";
  }
  return (times.mTotal.mHasKnown ? "Scenes without a duration are estimated"
                                 : "No scene has a duration. The running time is estimated") +
         rate + ", about a page of script.";
}

void AddSummary(pugi::xml_node header, const std::vector<SceneFacts>& scenes,
                std::size_t characters, const RunningTimes& times) {
  pugi::xml_node summary = AddElement(header, "dl");
  summary.append_attribute("id") = "summary";
  AddFact(summary, "scene-count", "Scenes", std::to_string(scenes.size()));
  AddFact(summary, "speaker-count", "Speaking characters", std::to_string(characters));
  AddFact(summary, "word-count", "Words", std::to_string(CountWords(scenes)));
  if (scenes.empty()) return;
  AddFact(summary, "running-time", "Running time", times.mTotal.Describe());
  const std::string note =
      (times.mTotal.mHasEstimated ? DescribeEstimate(times) : "") + PositionNote(scenes);
  if (!note.empty()) AddElement(header, "p", "note", note);
}

void AddNavigation(pugi::xml_node header, pugi::xml_node main) {
  pugi::xml_node navigation = AddElement(header, "nav");
  navigation.append_attribute("aria-label") = "Parts of this page";
  for (const pugi::xml_node section : main.children("section")) {
    pugi::xml_node link = AddElement(navigation, "a", "", section.child("h2").text().get());
    SetAttribute(link, "href", std::string("#") + section.attribute("id").value());
  }
}

std::vector<CharacterFacts> SortedByWords(std::vector<CharacterFacts> characters) {
  std::stable_sort(
      characters.begin(), characters.end(),
      [](const CharacterFacts& a, const CharacterFacts& b) { return a.mWords > b.mWords; });
  return characters;
}

void AddBody(pugi::xml_node body, const TavroStory& story, const PageNames& names,
             const HeadingRules& rules) {
  const std::vector<SceneFacts> scenes = ReadSceneFacts(story, rules);
  const std::vector<CharacterFacts> characters = SortedByWords(ReadCharacterFacts(scenes));
  const RunningTimes times = ReadRunningTimes(scenes);
  pugi::xml_node header = AddElement(body, "header");
  AddElement(header, "h1", "", names.mTitle).append_attribute("lang") = kUnknownLanguage;
  if (!names.mFile.empty()) AddElement(header, "p", "file", names.mFile);
  AddSummary(header, scenes, characters.size(), times);
  pugi::xml_node main = AddElement(body, "main");
  if (!characters.empty()) {
    AddCharactersChart(AddSection(main, "speakers", "Who speaks"), scenes, characters);
  }
  if (!scenes.empty()) {
    AddLengthsChart(AddSection(main, "lengths", "Scene lengths"), scenes, times);
    AddSceneTable(AddSection(main, "scenes", "Scenes"), scenes, times);
  }
  if (!characters.empty()) {
    AddCharacterTable(AddSection(main, "characters", "Characters"), scenes, characters);
  }
  AddScreenplay(AddSection(main, "screenplay", "Screenplay"), story, scenes);
  AddNavigation(header, main);
}

std::string WithoutBlanksAround(const std::string& text) {
  constexpr const char* kBlanks = " \t\r";
  const std::size_t from = std::min(text.find_first_not_of(kBlanks), text.size());
  return text.substr(from, text.find_last_not_of(kBlanks) + 1 - from);
}

// What follows "Title:", in any letter case; none for any other line.
std::optional<std::string> TitleInLine(const std::string& line) {
  const std::size_t colon = line.find(':');
  if (colon == std::string::npos) return std::nullopt;
  std::istringstream name(InCapitals(line.substr(0, colon)));
  std::string word;
  if (!(name >> word) || word != "TITLE" || name >> word) return std::nullopt;
  return WithoutBlanksAround(line.substr(colon + 1));
}

// pugixml leaves out what it has no memory for. From operator new, it is at least noted.
void* Allocate(std::size_t size) {
  return ::operator new(size, std::nothrow);
}
void Free(void* block) {
  ::operator delete(block);
}

}  // namespace

std::string TitleIn(const TavroStory& story) {
  std::istringstream lines(ToUTF8(story.mMetaData));
  std::string title;
  bool isInTitle = false;  // which may go on in lines that are indented
  for (std::string line; std::getline(lines, line);) {
    if (isInTitle && line.starts_with(' ')) {
      title += (title.empty() ? "" : " ") + WithoutBlanksAround(line);
      continue;
    }
    if (!title.empty()) break;
    const std::optional<std::string> found = TitleInLine(line);
    isInTitle = found.has_value();
    title = found.value_or("");
  }
  return title;
}

std::string MakeReportPage(const TavroStory& story, const PageNames& names,
                           const HeadingRules& rules) {
  // HTML reads <p/> as the start of a paragraph, and blanks between tags as text.
  constexpr unsigned kFormat = pugi::format_raw | pugi::format_no_empty_element_tags;
  pugi::set_memory_management_functions(Allocate, Free);
  pugi::xml_document document;
  AddElement(document, "title", "", names.mTitle);
  AddBody(AddElement(document, "body"), story, names, rules);
  std::ostringstream page;
  page << kPageStart;
  document.child("title").print(page, "", kFormat);
  page << "\n<style>" << kReportStyle << "</style>\n</head>\n";
  document.child("body").print(page, "", kFormat);
  page << "\n</html>\n";
  RefuseIfMemoryRanOut();  // then the page is not whole
  return page.str();
}

}  // namespace zelstory
