#include <ostream>
#include <string_view>

#include <zelstoryhost/JSONWriter.h>
#include <zelstoryhost/StoryJSON.h>

namespace zelstoryhost {
namespace {

using namespace zelstoryparser;

template <typename Value>
struct Member {
  Member(std::string_view name, const Value& value) : mName(name), mValue(value) {}
  std::string_view mName;
  const Value& mValue;
};

// The name of a paragraph's element type.
struct KindName {
  std::int32_t mType;
};

class NodeWriter {
 public:
  explicit NodeWriter(JSONWriter& json) : mJSON(json) {}

  void Write(const TextRun& run) {
    WriteObject(Member("objectID", run.mObjectID), Member("text", run.mText));
  }
  void Write(const Paragraph& paragraph) {
    WriteObject(Member("objectID", paragraph.mObjectID),
                Member("elementType", paragraph.mElementType),
                Member("element", KindName{paragraph.mElementType}),
                Member("textRuns", paragraph.mTextRuns));
  }
  void Write(const Scene& scene) {
    WriteObject(Member("objectID", scene.mObjectID), Member("sceneNumber", scene.mSceneNumber),
                Member("shotDuration", scene.mShotDuration),
                Member("paragraphs", scene.mParagraphs));
  }
  void Write(const Section& section) {
    WriteObject(Member("objectID", section.mObjectID), Member("scenes", section.mScenes));
  }
  void Write(const Stream& stream) {
    WriteObject(Member("objectID", stream.mObjectID), Member("name", stream.mName),
                Member("section", stream.mSection));
  }
  void Write(const CommentStream& stream) {
    WriteObject(
        Member("objectID", stream.mObjectID), Member("name", stream.mName),
        Member("commentAuthor", stream.mCommentAuthor), Member("dependent", stream.mDependent),
        Member("commentAuthorID", stream.mCommentAuthorID), Member("section", stream.mSection));
  }
  void Write(const Document& document) {
    WriteObject(
        Member("headerStream", document.mHeaderStream), Member("bodyStream", document.mBodyStream),
        Member("footerStream", document.mFooterStream), Member("version", document.mVersion),
        Member("commentStreams", document.mCommentStreams));
  }
  void Write(const TavroStory& story) {
    WriteObject(Member("document", story.mDocument), Member("version", story.mVersion),
                Member("documentType", story.mDocumentType), Member("template", story.mTemplate),
                Member("metaData", story.mMetaData), Member("tags", story.mTags));
  }

 private:
  void Write(const UTF16String& text) { mJSON.Text(text); }
  void Write(const ObjectID& id) { mJSON.Text(id.AsString()); }
  void Write(std::int32_t number) { mJSON.Number(number); }
  void Write(KindName name) {
    for (const ParagraphKind& kind : kParagraphKinds) {
      if (kind.mType == name.mType) return mJSON.Text(kind.mName);
    }
    mJSON.Null();
  }

  template <typename Node>
  void Write(const boost::intrusive_ptr<Node>& node) {
    node ? Write(*node) : mJSON.Null();
  }

  template <typename Entry>
  void Write(const std::vector<Entry>& entries) {
    mJSON.BeginArray();
    for (const Entry& entry : entries) Write(entry);
    mJSON.EndArray();
  }

  template <typename... Values>
  void WriteObject(const Member<Values>&... members) {
    mJSON.BeginObject();
    ((mJSON.Name(members.mName), Write(members.mValue)), ...);
    mJSON.EndObject();
  }

  JSONWriter& mJSON;
};

template <typename Node>
void WriteDocument(const Node& node, std::ostream& output) {
  JSONWriter json(output, JSONWriter::Layout::kIndented);
  NodeWriter(json).Write(node);
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
