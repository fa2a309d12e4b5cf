#include <nlohmann/json.hpp>
#include <zelstoryhost/StoryJSON.h>
#include <zelstoryhost/Text.h>

namespace zelstoryhost {
namespace {

using namespace zelstoryparser;
using JSON = nlohmann::ordered_json;

constexpr int kIndent = 2;

JSON ToJSON(const TextRun& run);
JSON ToJSON(const Paragraph& paragraph);
JSON ToJSON(const Scene& scene);
JSON ToJSON(const Section& section);
JSON ToJSON(const Stream& stream);
JSON ToJSON(const CommentStream& stream);
JSON ToJSON(const Document& document);

JSON ToJSON(const UTF16String& text) {
  return ToUTF8(text);
}
JSON ToJSON(const ObjectID& id) {
  return ToUTF8(id.AsString());
}

template <typename Node>
JSON ToJSON(const boost::intrusive_ptr<Node>& node) {
  return node ? ToJSON(*node) : JSON();
}

template <typename Entry>
JSON ToJSON(const std::vector<Entry>& entries) {
  JSON array = JSON::array();
  for (const Entry& entry : entries) array.push_back(ToJSON(entry));
  return array;
}

JSON KindName(std::int32_t elementType) {
  for (const ParagraphKind& kind : kParagraphKinds) {
    if (kind.mType == elementType) return std::string(kind.mName);
  }
  return JSON();
}

JSON ToJSON(const TextRun& run) {
  return {{"objectID", ToJSON(run.mObjectID)}, {"text", ToJSON(run.mText)}};
}

JSON ToJSON(const Paragraph& paragraph) {
  return {{"objectID", ToJSON(paragraph.mObjectID)},
          {"elementType", paragraph.mElementType},
          {"element", KindName(paragraph.mElementType)},
          {"textRuns", ToJSON(paragraph.mTextRuns)}};
}

JSON ToJSON(const Scene& scene) {
  return {{"objectID", ToJSON(scene.mObjectID)},
          {"sceneNumber", ToJSON(scene.mSceneNumber)},
          {"shotDuration", ToJSON(scene.mShotDuration)},
          {"paragraphs", ToJSON(scene.mParagraphs)}};
}

JSON ToJSON(const Section& section) {
  return {{"objectID", ToJSON(section.mObjectID)}, {"scenes", ToJSON(section.mScenes)}};
}

JSON ToJSON(const Stream& stream) {
  return {{"objectID", ToJSON(stream.mObjectID)},
          {"name", ToJSON(stream.mName)},
          {"section", ToJSON(stream.mSection)}};
}

JSON ToJSON(const CommentStream& stream) {
  return {{"objectID", ToJSON(stream.mObjectID)},
          {"name", ToJSON(stream.mName)},
          {"commentAuthor", ToJSON(stream.mCommentAuthor)},
          {"dependent", ToJSON(stream.mDependent)},
          {"commentAuthorID", ToJSON(stream.mCommentAuthorID)},
          {"section", ToJSON(stream.mSection)}};
}

JSON ToJSON(const Document& document) {
  return {{"headerStream", ToJSON(document.mHeaderStream)},
          {"bodyStream", ToJSON(document.mBodyStream)},
          {"footerStream", ToJSON(document.mFooterStream)},
          {"version", ToJSON(document.mVersion)},
          {"commentStreams", ToJSON(document.mCommentStreams)}};
}

}  // namespace

std::string StoryAsJSON(const TavroStory& story) {
  const JSON json{
      {"document", ToJSON(story.mDocument)},         {"version", ToJSON(story.mVersion)},
      {"documentType", ToJSON(story.mDocumentType)}, {"template", ToJSON(story.mTemplate)},
      {"metaData", ToJSON(story.mMetaData)},         {"tags", ToJSON(story.mTags)}};
  return json.dump(kIndent);
}

std::string SceneAsJSON(const Scene& scene) {
  return ToJSON(scene).dump(kIndent);
}

}  // namespace zelstoryhost
