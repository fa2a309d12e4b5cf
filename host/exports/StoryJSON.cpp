#include <ostream>

#include <zelstoryhost/JSONWriter.h>
#include <zelstoryhost/StoryJSON.h>

namespace zelstoryhost {
namespace {

using namespace zelstoryparser;

void Write(JSONWriter& json, const TextRun& run);
void Write(JSONWriter& json, const Paragraph& paragraph);
void Write(JSONWriter& json, const Scene& scene);
void Write(JSONWriter& json, const Section& section);
void Write(JSONWriter& json, const Stream& stream);
void Write(JSONWriter& json, const CommentStream& stream);
void Write(JSONWriter& json, const Document& document);

void Write(JSONWriter& json, const UTF16String& text) {
  json.Text(text);
}
void Write(JSONWriter& json, const ObjectID& id) {
  json.Text(id.AsString());
}

template <typename Node>
void Write(JSONWriter& json, const boost::intrusive_ptr<Node>& node) {
  node ? Write(json, *node) : json.Null();
}

template <typename Entry>
void Write(JSONWriter& json, const std::vector<Entry>& entries) {
  json.BeginArray();
  for (const Entry& entry : entries) Write(json, entry);
  json.EndArray();
}

template <typename Value>
void Member(JSONWriter& json, std::string_view name, const Value& value) {
  Write(json.Name(name), value);
}

void WriteKindName(JSONWriter& json, std::int32_t elementType) {
  for (const ParagraphKind& kind : kParagraphKinds) {
    if (kind.mType == elementType) return json.Text(kind.mName);
  }
  json.Null();
}

void Write(JSONWriter& json, const TextRun& run) {
  json.BeginObject();
  Member(json, "objectID", run.mObjectID);
  Member(json, "text", run.mText);
  json.EndObject();
}

void Write(JSONWriter& json, const Paragraph& paragraph) {
  json.BeginObject();
  Member(json, "objectID", paragraph.mObjectID);
  json.Name("elementType").Number(paragraph.mElementType);
  WriteKindName(json.Name("element"), paragraph.mElementType);
  Member(json, "textRuns", paragraph.mTextRuns);
  json.EndObject();
}

void Write(JSONWriter& json, const Scene& scene) {
  json.BeginObject();
  Member(json, "objectID", scene.mObjectID);
  Member(json, "sceneNumber", scene.mSceneNumber);
  Member(json, "shotDuration", scene.mShotDuration);
  Member(json, "paragraphs", scene.mParagraphs);
  json.EndObject();
}

void Write(JSONWriter& json, const Section& section) {
  json.BeginObject();
  Member(json, "objectID", section.mObjectID);
  Member(json, "scenes", section.mScenes);
  json.EndObject();
}

void Write(JSONWriter& json, const Stream& stream) {
  json.BeginObject();
  Member(json, "objectID", stream.mObjectID);
  Member(json, "name", stream.mName);
  Member(json, "section", stream.mSection);
  json.EndObject();
}

void Write(JSONWriter& json, const CommentStream& stream) {
  json.BeginObject();
  Member(json, "objectID", stream.mObjectID);
  Member(json, "name", stream.mName);
  Member(json, "commentAuthor", stream.mCommentAuthor);
  Member(json, "dependent", stream.mDependent);
  Member(json, "commentAuthorID", stream.mCommentAuthorID);
  Member(json, "section", stream.mSection);
  json.EndObject();
}

void Write(JSONWriter& json, const Document& document) {
  json.BeginObject();
  Member(json, "headerStream", document.mHeaderStream);
  Member(json, "bodyStream", document.mBodyStream);
  Member(json, "footerStream", document.mFooterStream);
  Member(json, "version", document.mVersion);
  Member(json, "commentStreams", document.mCommentStreams);
  json.EndObject();
}

void Write(JSONWriter& json, const TavroStory& story) {
  json.BeginObject();
  Member(json, "document", story.mDocument);
  Member(json, "version", story.mVersion);
  Member(json, "documentType", story.mDocumentType);
  Member(json, "template", story.mTemplate);
  Member(json, "metaData", story.mMetaData);
  Member(json, "tags", story.mTags);
  json.EndObject();
}

template <typename Node>
void WriteDocument(const Node& node, std::ostream& output) {
  JSONWriter json(output, JSONWriter::Layout::kIndented);
  Write(json, node);
  output << '\n';
}

}  // namespace

void WriteJSON(const TavroStory& story, std::ostream& output) {
  WriteDocument(story, output);
}

void WriteJSON(const Scene& scene, std::ostream& output) {
  WriteDocument(scene, output);
}

}  // namespace zelstoryhost
