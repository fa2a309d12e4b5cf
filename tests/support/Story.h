#pragma once

#include <regex>

#include <zelcore/xml/AbstractParseHandler.h>
#include <zelstoryparser/StoryTree.h>

#include "support/Table.h"

using ScenePtr = boost::intrusive_ptr<zelstoryparser::Scene>;
using StoryPtr = boost::intrusive_ptr<zelstoryparser::TavroStory>;

// A scene from "H:INT. HOUSE - NIGHT / A:Rain." Each paragraph begins with its kind's letter,
// perhaps with #id ("p" without, "#" for none); "|" separates two runs, and no text makes no run.
inline ScenePtr MakeScene(std::string_view paragraphs, std::string_view number = "",
                          std::string_view duration = "") {
  ScenePtr scene(new zelstoryparser::Scene);
  scene->mSceneNumber = Utf16(number);
  scene->mShotDuration = Utf16(duration);
  if (paragraphs.empty()) return scene;
  table::Split(paragraphs, " /", [&](std::string_view source) {
    auto& paragraph = scene->mParagraphs.emplace_back(new zelstoryparser::Paragraph);
    const std::size_t colon = source.find(':');
    paragraph->mElementType = 200 + static_cast<int>(std::string_view("HCDASPTU").find(source[0]));
    paragraph->mObjectID = Utf16(colon == 1 ? "p" : source.substr(2, colon - 2));
    if (colon + 1 == source.size()) return;
    table::Split(source.substr(colon + 1), "|", [&](std::string_view run) {
      paragraph->mTextRuns.emplace_back(new zelstoryparser::TextRun)->mText = Utf16(run);
    });
  });
  return scene;
}

// A story whose body has these scenes.
inline StoryPtr MakeStory(const std::vector<ScenePtr>& scenes) {
  using namespace zelstoryparser;
  StoryPtr story(new TavroStory);
  story->mDocument = new Document;
  story->mDocument->mBodyStream = new Stream;
  story->mDocument->mBodyStream->mSection = new Section;
  story->mDocument->mBodyStream->mSection->mScenes = scenes;
  return story;
}

// Drives a handler by a text: <name a='v'>, <name/> and </name>, balanced or not; ^ and $ for the
// start and the end of the document; "|" separates two pieces of character data.
inline void Drive(const std::string& script, zelcore::xml::AbstractParseHandler& handler) {
  static const std::regex event(R"([\^$|]|<(/?)([^ />]+)([^>]*?)(/?)>|[^<^$|]+)");
  static const std::regex attribute(" ([^=]+)='([^']*)'");
  for (std::sregex_iterator at(script.begin(), script.end(), event), end; at != end; ++at) {
    const std::string text = at->str(), inTag = at->str(3);
    if (text == "^") handler.StartDocument();
    if (text == "$") handler.EndDocument();
    if (text.find_first_of("^$|<") != 0) handler.Characters(Utf16(text));
    if (text[0] != '<') continue;
    std::map<zelcore::UTF16String, zelcore::UTF16String> attributes;
    for (std::sregex_iterator a(inTag.begin(), inTag.end(), attribute); a != end; ++a) {
      attributes[Utf16(a->str(1))] = Utf16(a->str(2));
    }
    if (at->length(1) == 0) handler.StartElement(Utf16(at->str(2)), attributes);
    if (at->length(1) + at->length(4) > 0) handler.EndElement(Utf16(at->str(2)));
  }
}

// Nodes as a text: name#id key=value>child, or {children}. What is empty or null is left out; a
// paragraph's name is its code, a run's name its text in quotes.
namespace zelstoryparser {

inline std::string Value(const char* key, const UTF16String& value) {
  return value.empty() ? "" : key + Utf8(value);
}

inline std::string Dump(const TextRun& run) {
  return "'" + Utf8(run.mText) + "'" + Value("#", run.mObjectID.AsString());
}

// A node whose children are in lists of pointers.
template <typename... Lists>
std::string Line(const std::string& nameAndValues, const Lists&... lists) {
  int count = 0;
  std::string children;
  const auto add = [&](const auto& child) {
    if (child) children += (count++ == 0 ? "" : " ") + Dump(*child);
  };
  (std::for_each(lists.begin(), lists.end(), add), ...);
  return nameAndValues + (count == 0 ? "" : count == 1 ? ">" + children : "{" + children + "}");
}

inline std::string Dump(const Paragraph& node) {
  const std::string code = std::to_string(node.mElementType);
  return Line(code + Value("#", node.mObjectID.AsString()), node.mTextRuns);
}
inline std::string Dump(const Scene& node) {
  return Line("scene" + Value("#", node.mObjectID.AsString()) +
                  Value(" number=", node.mSceneNumber) + Value(" duration=", node.mShotDuration),
              node.mParagraphs);
}
inline std::string Dump(const Section& node) {
  return Line("section" + Value("#", node.mObjectID.AsString()), node.mScenes);
}
inline std::string Dump(const Stream& node) {
  return Line(Utf8(node.mName) + Value("#", node.mObjectID.AsString()), std::array{node.mSection});
}
inline std::string Dump(const CommentStream& node) {
  return Line("comments" + Value("#", node.mObjectID.AsString()) + Value(" name=", node.mName) +
                  Value(" author=", node.mCommentAuthor) + Value(" dependent=", node.mDependent) +
                  Value(" authorID=", node.mCommentAuthorID),
              std::array{node.mSection});
}
inline std::string Dump(const Document& node) {
  return Line("document" + Value(" version=", node.mVersion),
              std::array{node.mHeaderStream, node.mBodyStream, node.mFooterStream},
              node.mCommentStreams);
}
inline std::string Dump(const TavroStory& node) {
  std::string name = "story" + Value(" version=", node.mVersion) +
                     Value(" type=", node.mDocumentType) + Value(" template=", node.mTemplate) +
                     Value(" meta=", node.mMetaData);
  for (const UTF16String& tag : node.mTags) name += " tag=" + Utf8(tag);
  return Line(name, std::array{node.mDocument});
}

}  // namespace zelstoryparser

template <typename Node>
std::string DumpTree(const boost::intrusive_ptr<Node>& node) {
  return node ? Dump(*node) : "null";
}
