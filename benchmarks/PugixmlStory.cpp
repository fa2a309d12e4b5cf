#include "PugixmlStory.h"

#include <string_view>

namespace {

using namespace zelstoryparser;

UTF16String Wide(const char* text) {
  return zelcore::utility::UTF8to16(text);
}

UTF16String Attribute(pugi::xml_node element, const char* name) {
  return Wide(element.attribute(name).value());
}

std::int32_t KindOf(std::string_view name) {
  for (const ParagraphKind& kind : kParagraphKinds) {
    if (name == kind.mName) return kind.mType;
  }
  return kUnknownElement;
}

boost::intrusive_ptr<Paragraph> WalkParagraph(pugi::xml_node element) {
  boost::intrusive_ptr<Paragraph> paragraph(new Paragraph);
  paragraph->mObjectID = Attribute(element, "objID");
  paragraph->mElementType = KindOf(element.attribute("element").value());
  for (const pugi::xml_node child : element.children("textRun")) {
    boost::intrusive_ptr<TextRun> run(new TextRun);
    run->mObjectID = Attribute(child, "objID");
    run->mText = Wide(child.child_value());
    paragraph->mTextRuns.push_back(std::move(run));
  }
  return paragraph;
}

boost::intrusive_ptr<Scene> WalkScene(pugi::xml_node element) {
  boost::intrusive_ptr<Scene> scene(new Scene);
  scene->mObjectID = Attribute(element, "objID");
  scene->mSceneNumber = Attribute(element, "sceneNumber");
  for (const pugi::xml_node child : element.children("paragraph")) {
    boost::intrusive_ptr<Paragraph> paragraph = WalkParagraph(child);
    if (paragraph->mElementType == kSceneHeading) {
      scene->mShotDuration = Attribute(child, "shotDuration");
    }
    scene->mParagraphs.push_back(std::move(paragraph));
  }
  return scene;
}

boost::intrusive_ptr<Section> WalkSection(pugi::xml_node element) {
  boost::intrusive_ptr<Section> section(new Section);
  section->mObjectID = Attribute(element, "objID");
  for (const pugi::xml_node scene : element.children("scene")) {
    section->mScenes.push_back(WalkScene(scene));
  }
  return section;
}

boost::intrusive_ptr<Stream> WalkStream(pugi::xml_node element) {
  boost::intrusive_ptr<Stream> stream(new Stream);
  stream->mObjectID = Attribute(element, "objID");
  stream->mName = Attribute(element, "name");
  stream->mSection = WalkSection(element.child("section"));
  return stream;
}

}  // namespace

boost::intrusive_ptr<TavroStory> WalkStory(const pugi::xml_document& document) {
  const pugi::xml_node root = document.child("TavroStory");
  boost::intrusive_ptr<TavroStory> story(new TavroStory);
  story->mVersion = Attribute(root, "version");
  story->mDocumentType = Attribute(root, "documentType");
  story->mTemplate = Attribute(root, "template");
  story->mDocument = new Document;
  story->mDocument->mVersion = Attribute(root.child("document"), "version");
  for (const pugi::xml_node stream : root.child("document").children("stream")) {
    story->mDocument->mBodyStream = WalkStream(stream);
  }
  return story;
}
