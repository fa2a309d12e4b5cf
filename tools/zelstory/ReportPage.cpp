#include "ReportPage.h"

#include <sstream>
#include <unordered_set>
#include <utility>

#include "Console.h"
#include "ReportCharts.h"
#include "ReportMarkup.h"
#include "ReportStyle.h"
#include "SceneFacts.h"

namespace zelstory {
namespace {

using namespace zelstoryparser;

constexpr const char* kPageStart =
    "<!DOCTYPE html>\n"
    "<html lang=\"en\" xmlns=\"http://www.w3.org/1999/xhtml\">\n"
    "<head>\n"
    "<meta charset=\"utf-8\"/>\n"
    "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n";

// The page's own words are English; a story does not tell which language it is in.
constexpr const char* kUnknownLanguage = "";

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

const Paragraph* HeadingOf(const Scene& scene) {
  for (const auto& paragraph : scene.mParagraphs) {
    if (paragraph && paragraph->mElementType == kSceneHeading) return paragraph.get();
  }
  return nullptr;
}

void AddScene(pugi::xml_node page, const Scene& scene, std::size_t position) {
  const Paragraph* const heading = HeadingOf(scene);
  pugi::xml_node article = AddElement(page, "article");
  pugi::xml_node title = AddElement(article, "h3");
  SetAttribute(title, "id", SceneAnchor(position));
  AddElement(title, "span", "number", SceneName(ToUTF8(scene.mSceneNumber), position));
  AddElement(title, "span", "text", heading ? TextOf(*heading) : "(no heading)");
  for (const auto& paragraph : scene.mParagraphs) {
    if (paragraph && paragraph.get() != heading) AddParagraph(article, *paragraph);
  }
}

void AddStream(pugi::xml_node page, const boost::intrusive_ptr<Stream>& stream, bool areScenes) {
  if (!stream || !stream->mSection) return;
  std::size_t position = 0;
  for (const auto& scene : stream->mSection->mScenes) {
    if (!scene) continue;
    if (areScenes) {
      AddScene(page, *scene, ++position);
      continue;
    }
    for (const auto& paragraph : scene->mParagraphs) {
      if (paragraph) AddParagraph(page, *paragraph);
    }
  }
}

// The first few by appearance, and how many more.
std::string SpeakersOf(const SceneFacts& scene) {
  constexpr std::size_t kNamed = 6;
  std::unordered_set<std::string> people;
  std::string names;
  for (const Speech& speech : scene.mSpeeches) {
    const bool isNew = people.insert(speech.mPerson).second;
    if (!isNew || people.size() > kNamed) continue;
    names += (people.size() == 1 ? "" : ", ") + speech.mPerson;
  }
  if (people.size() > kNamed) names += " and " + std::to_string(people.size() - kNamed) + " more";
  return names;
}

void AddSceneRow(pugi::xml_node rows, const SceneFacts& scene) {
  pugi::xml_node row = AddElement(rows, "tr");
  pugi::xml_node name = AddElement(row, "th", "count");
  name.append_attribute("scope") = "row";
  AddSceneLink(name, scene.mPosition, SceneName(scene.mNumber, scene.mPosition));
  for (const std::string* text : {&scene.mSetting, &scene.mLocation, &scene.mTimeOfDay}) {
    AddElement(row, "td", "", *text);
  }
  AddElement(row, "td", "count", scene.mSeconds ? DescribeDuration(*scene.mSeconds) : "");
  AddElement(row, "td", "count", std::to_string(scene.mWords));
  AddElement(row, "td", "count", std::to_string(scene.mSpeeches.size()));
  AddElement(row, "td", "", SpeakersOf(scene));
}

void AddSceneTable(pugi::xml_node parent, const std::vector<SceneFacts>& scenes) {
  constexpr std::pair<const char*, const char*> kColumns[] = {
      {"Scene", "count"},    {"Setting", ""},    {"Location", ""},      {"Time", ""},
      {"Duration", "count"}, {"Words", "count"}, {"Speeches", "count"}, {"Who speaks", ""}};
  pugi::xml_node table = AddElement(AddScrollingBox(parent, "Scenes"), "table");
  AddElement(table, "caption", "note", "Each number leads to its scene.");
  pugi::xml_node names = AddElement(AddElement(table, "thead"), "tr");
  for (const auto& [name, className] : kColumns) {
    AddElement(names, "th", className, name).append_attribute("scope") = "col";
  }
  pugi::xml_node rows = AddElement(table, "tbody");
  rows.append_attribute("lang") = kUnknownLanguage;
  for (const SceneFacts& scene : scenes) AddSceneRow(rows, scene);
}

pugi::xml_node AddSection(pugi::xml_node main, const char* id, const char* title) {
  pugi::xml_node section = AddElement(main, "section");
  section.append_attribute("id") = id;
  AddElement(section, "h2", "", title);
  return section;
}

void AddCount(pugi::xml_node line, const char* id, std::int64_t count, const char* what) {
  AddElement(line, "span", "", std::to_string(count)).append_attribute("id") = id;
  line.append_child(pugi::node_pcdata).set_value(what);
}

void AddHeader(pugi::xml_node body, const std::string& name, const std::vector<SceneFacts>& scenes,
               const std::vector<PersonFacts>& people) {
  std::int64_t words = 0;
  for (const SceneFacts& scene : scenes) words += scene.mWords;
  pugi::xml_node header = AddElement(body, "header");
  AddElement(header, "h1", "", name);
  pugi::xml_node summary = AddElement(header, "p");
  summary.append_attribute("id") = "summary";
  AddCount(summary, "scene-count", static_cast<std::int64_t>(scenes.size()),
           scenes.size() == 1 ? " scene, " : " scenes, ");
  AddCount(summary, "speaker-count", static_cast<std::int64_t>(people.size()),
           people.size() == 1 ? " person who speaks, " : " people who speak, ");
  AddCount(summary, "word-count", words, " words");
}

void AddNavigation(pugi::xml_node header, pugi::xml_node main) {
  pugi::xml_node navigation = AddElement(header, "nav");
  navigation.append_attribute("aria-label") = "Parts of this page";
  for (const pugi::xml_node section : main.children("section")) {
    pugi::xml_node link = AddElement(navigation, "a", "", section.child("h2").text().get());
    SetAttribute(link, "href", std::string("#") + section.attribute("id").value());
  }
}

void AddBody(pugi::xml_node body, const TavroStory& story, const std::string& name) {
  const std::vector<SceneFacts> scenes = ReadSceneFacts(story);
  const std::vector<PersonFacts> people = ReadPersonFacts(scenes);
  AddHeader(body, name, scenes, people);
  pugi::xml_node main = AddElement(body, "main");
  if (!scenes.empty()) AddSceneTable(AddSection(main, "scenes", "Scenes"), scenes);
  if (!people.empty()) {
    AddSpeakersChart(AddSection(main, "speakers", "Who speaks"), scenes, people);
  }
  if (!scenes.empty()) AddLengthsChart(AddSection(main, "lengths", "Lengths"), scenes);
  pugi::xml_node page = AddElement(AddSection(main, "screenplay", "Screenplay"), "div");
  page.append_attribute("id") = "page";
  page.append_attribute("lang") = kUnknownLanguage;
  if (story.mDocument) {
    AddStream(page, story.mDocument->mHeaderStream, false);
    AddStream(page, story.mDocument->mBodyStream, true);
    AddStream(page, story.mDocument->mFooterStream, false);
  }
  if (!page.first_child()) AddElement(page, "p", "action", "(no text)");
  AddNavigation(body.child("header"), main);
}

}  // namespace

std::string MakeReportPage(const TavroStory& story, const std::string& name) {
  // HTML takes <p/> for the beginning of a paragraph, and blanks between tags for text.
  constexpr unsigned kFormat = pugi::format_raw | pugi::format_no_empty_element_tags;
  pugi::xml_document document;
  AddElement(document, "title", "", name);
  AddBody(AddElement(document, "body"), story, name);
  std::ostringstream page;
  page << kPageStart;
  document.child("title").print(page, "", kFormat);
  page << "\n<style>" << kReportStyle << "</style>\n</head>\n";
  document.child("body").print(page, "", kFormat);
  page << "\n</html>\n";
  return page.str();
}

}  // namespace zelstory
