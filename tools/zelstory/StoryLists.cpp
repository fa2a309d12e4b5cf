#include "StoryLists.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <sstream>

#include <xmptoolkit/XMP.h>
#include <zelmetadata/Path.h>
#include <zelstoryparser/SceneXMP.h>

#include "Console.h"
#include "StoryFile.h"

namespace zelstory {
namespace {

using zelstoryparser::Paragraph;
using zelstoryparser::Scene;
using zelstoryparser::TavroStory;

constexpr const char* kScript = zelmetadata::kScriptSchemaURI;
constexpr const char* kMedia = zelmetadata::kDynamicMediaSchemaURI;

struct Speech {
  std::string mName;
  std::string mDialogue;
};

// What a clip of the scene would be told, so that lists and metadata never disagree.
struct SceneFacts {
  std::string mSetting;
  std::string mLocation;
  std::string mTimeOfDay;
  Cell mDuration;
  std::vector<Speech> mSpeeches;
};

std::string Value(const TXMPMeta<std::string>& xmp, const char* schema, const std::string& path) {
  std::string value;
  xmp.GetProperty(schema, path.c_str(), &value, nullptr);
  return value;
}

Cell Duration(const std::string& seconds) {
  if (seconds.empty()) return {};
  const std::int64_t total = std::stoll(seconds);
  char text[40];
  std::snprintf(text, sizeof text, "%s%lld:%02lld:%02lld", total < 0 ? "-" : "",
                std::llabs(total / 3600), std::llabs(total / 60 % 60), std::llabs(total % 60));
  return text;
}

// A packet is only made of a scene that says something and whose first paragraph has an identifier.
boost::intrusive_ptr<Scene> WithPacket(const Scene& scene) {
  boost::intrusive_ptr<Scene> copy(new Scene(scene));
  boost::intrusive_ptr<Paragraph> action(new Paragraph);
  action->mObjectID = zelstoryparser::ObjectID(u"any");
  action->mElementType = zelstoryparser::kAction;
  action->mTextRuns.emplace_back(new zelstoryparser::TextRun)->mText = u"any";
  copy->mParagraphs.insert(copy->mParagraphs.begin(), action);
  return copy;
}

SceneFacts FactsOf(const Scene& scene) {
  std::vector<zelstoryparser::ShotXMP> shots;
  zelstoryparser::GetSceneXMP(nullptr, WithPacket(scene), 1, shots);
  const std::string& packet = shots.at(0).mXMPPacket;
  const TXMPMeta<std::string> xmp(packet.data(), static_cast<XMP_StringLen>(packet.size()));
  SceneFacts facts;
  facts.mSetting = Value(xmp, kScript, "sceneSetting");
  facts.mLocation = Value(xmp, kMedia, "shotLocation");
  facts.mTimeOfDay = Value(xmp, kScript, "sceneTimeOfDay");
  facts.mDuration = Duration(Value(xmp, kMedia, "duration/xmpDM:value"));
  const XMP_Index count = xmp.CountArrayItems(kScript, "dialogSequence");
  for (XMP_Index i = 1; i <= count; ++i) {
    const std::string item = "dialogSequence[" + std::to_string(i) + "]/xmpScript:";
    facts.mSpeeches.push_back(
        {Value(xmp, kScript, item + "character"), Value(xmp, kScript, item + "dialog")});
  }
  return facts;
}

// The name without what stands in brackets behind it: "(O.S.)", "(V.O.) (CONT'D)".
std::string PersonOf(std::string name) {
  const auto trim = [&name] { name.resize(name.find_last_not_of(" \t\r\n") + 1); };
  for (trim(); name.ends_with(')'); trim()) {
    const std::size_t open = name.rfind('(');
    if (open == std::string::npos || open == 0) break;
    name.resize(open);
  }
  return name;
}

std::int64_t CountWords(const std::string& text) {
  std::istringstream words(text);
  std::int64_t count = 0;
  for (std::string word; words >> word;) ++count;
  return count;
}

std::string TextOf(const Paragraph& paragraph) {
  std::string text;
  for (const auto& run : paragraph.mTextRuns) text += ToUTF8(run->mText);
  return text;
}

}  // namespace

Table ListScenes(const TavroStory& story) {
  Table table{
      {"position", "number", "setting", "location", "time", "duration", "speeches", "characters"},
      {}};
  for (const auto& scene : BodyScenes(story)) {
    const SceneFacts facts = FactsOf(*scene);
    std::vector<std::string> people;
    for (const Speech& speech : facts.mSpeeches) people.push_back(PersonOf(speech.mName));
    std::sort(people.begin(), people.end());
    const auto end = std::unique(people.begin(), people.end());
    table.mRows.push_back({static_cast<std::int64_t>(table.mRows.size() + 1),
                           ToUTF8(scene->mSceneNumber), facts.mSetting, facts.mLocation,
                           facts.mTimeOfDay, facts.mDuration,
                           static_cast<std::int64_t>(facts.mSpeeches.size()),
                           static_cast<std::int64_t>(end - people.begin())});
  }
  return table;
}

Table ListCharacters(const TavroStory& story) {
  struct Part {
    std::int64_t mSpeeches = 0;
    std::int64_t mWords = 0;
    std::vector<std::int64_t> mScenes;
  };
  std::map<std::string, Part> parts;
  std::vector<std::string> names;  // in order of appearance
  std::int64_t position = 0;
  for (const auto& scene : BodyScenes(story)) {
    ++position;
    for (const Speech& speech : FactsOf(*scene).mSpeeches) {
      const std::string name = PersonOf(speech.mName);
      const auto [part, isNew] = parts.try_emplace(name);
      if (isNew) names.push_back(name);
      ++part->second.mSpeeches;
      part->second.mWords += CountWords(speech.mDialogue);
      std::vector<std::int64_t>& scenes = part->second.mScenes;
      if (scenes.empty() || scenes.back() != position) scenes.push_back(position);
    }
  }
  Table table{{"character", "speeches", "words", "first", "last", "scenes"}, {}};
  for (const std::string& name : names) {
    const Part& part = parts.at(name);
    table.mRows.push_back({name, part.mSpeeches, part.mWords, part.mScenes.front(),
                           part.mScenes.back(), part.mScenes});
  }
  return table;
}

Table ListCounts(const TavroStory& story) {
  struct Count {
    std::int64_t mParagraphs = 0;
    std::int64_t mWords = 0;
  };
  std::map<std::int32_t, Count> counts;
  Count total;
  const auto scenes = BodyScenes(story);
  for (const auto& scene : scenes) {
    for (const auto& paragraph : scene->mParagraphs) {
      const std::int64_t words = CountWords(TextOf(*paragraph));
      for (Count* count : {&counts[paragraph->mElementType], &total}) {
        ++count->mParagraphs;
        count->mWords += words;
      }
    }
  }
  Table table{{"what", "count", "words"}, {}};
  table.mRows.push_back({"scenes", static_cast<std::int64_t>(scenes.size()), {}});
  for (const zelstoryparser::ParagraphKind& kind : zelstoryparser::kParagraphKinds) {
    const Count& count = counts[kind.mType];
    table.mRows.push_back({std::string(kind.mName), count.mParagraphs, count.mWords});
  }
  const Count& unknown = counts[zelstoryparser::kUnknownElement];
  table.mRows.push_back({"unknown", unknown.mParagraphs, unknown.mWords});
  table.mRows.push_back({"paragraphs", total.mParagraphs, total.mWords});
  return table;
}

}  // namespace zelstory
