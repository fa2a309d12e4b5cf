#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelcore/RefCountedObject.h>
#include <zelcore/String.h>
#include <zelstoryparser/Export.h>
#include <zelstoryparser/ObjectID.h>

// The tree of a parsed story: TavroStory, Document, Stream and CommentStream, Section, Scene,
// Paragraph, TextRun. Nodes are plain data with public members. Links go downward only, so a tree
// has no cycles. A node lives as long as something holds it, and keeps everything below it alive.
//
// Create nodes with `new` and put them into a boost::intrusive_ptr at once: the last release
// deletes them. Copying a node is shallow: the copy starts without holders and shares the source's
// children. After construction pointers are null, and texts and lists are empty. The only error is
// std::bad_alloc, which leaks nothing.
//
// Threads: pointers to one node may be copied and dropped on several threads at once. The members
// have no lock.

namespace zelcore::utility {

// The protocol of boost::intrusive_ptr. Nothing else adds or drops references.
inline void intrusive_ptr_add_ref(RefCountedObject* object) {
  object->mRefCount.fetch_add(1, std::memory_order_relaxed);
}

// Deletes the object when the last holder releases it, unless it is already being deleted or is
// marked mNoAutoDelete. The release makes this holder's writes visible to the thread that deletes.
inline void intrusive_ptr_release(RefCountedObject* object) {
  if (object->mRefCount.fetch_sub(1, std::memory_order_acq_rel) - 1 != 0) return;
  if (object->mDeleting || object->mNoAutoDelete) return;
  object->mDeleting = true;
  delete object;
}

}  // namespace zelcore::utility

namespace zelstoryparser {

using zelcore::utility::RefCountedObject;

// The kinds of paragraphs: the values of Paragraph::mElementType.
enum ParagraphElementType : std::int32_t {
  kSceneHeading = 200,
  kCharacter = 201,
  kDialog = 202,
  kAction = 203,
  kShot = 204,
  kParenthetical = 205,
  kTransition = 206,
  kUnknownElement = 207,  // no "element" attribute, or a value that is not in kParagraphKinds
};

// A value of a paragraph's "element" attribute, with its code. Case and spacing must match exactly.
struct ParagraphKind {
  ParagraphElementType mType;
  std::string_view mName;  // ASCII
};

// All kinds that have a name, in the order of their codes.
inline constexpr std::array<ParagraphKind, 7> kParagraphKinds{{
    {kSceneHeading, "SceneHeading"},
    {kCharacter, "Character"},
    {kDialog, "Dialog"},
    {kAction, "Action"},
    {kShot, "Shot"},
    {kParenthetical, "Parenthetical"},
    {kTransition, "Transition"},
}};

// Element "textRun".
class ZELSTORYPARSER_API TextRun : public RefCountedObject {
 public:
  TextRun();
  TextRun(const TextRun& other);
  ~TextRun() override;

  ObjectID mObjectID;  // attribute "objID"
  UTF16String mText;   // the element's character data, untrimmed
};

// Element "paragraph": one script element.
class ZELSTORYPARSER_API Paragraph : public RefCountedObject {
 public:
  Paragraph();
  Paragraph(const Paragraph& other);
  ~Paragraph() override;

  ObjectID mObjectID;             // attribute "objID"
  std::int32_t mElementType = 0;  // a ParagraphElementType, from attribute "element"; 0 until set
  std::vector<boost::intrusive_ptr<TextRun>> mTextRuns;  // elements "textRun", in document order
};

// Element "scene".
class ZELSTORYPARSER_API Scene : public RefCountedObject {
 public:
  Scene();
  Scene(const Scene& other);
  ~Scene() override;

  ObjectID mObjectID;         // attribute "objID"
  UTF16String mSceneNumber;   // attribute "sceneNumber"
  UTF16String mShotDuration;  // attribute "shotDuration" of the last scene-heading paragraph; empty
                              // if there is no such paragraph or no such attribute
  std::vector<boost::intrusive_ptr<Paragraph>> mParagraphs;  // elements "paragraph"
};

// Element "section".
class ZELSTORYPARSER_API Section : public RefCountedObject {
 public:
  Section();
  Section(const Section& other);
  ~Section() override;

  ObjectID mObjectID;                                // attribute "objID"
  std::vector<boost::intrusive_ptr<Scene>> mScenes;  // elements "scene", in document order
};

// Element "commentStream".
class ZELSTORYPARSER_API CommentStream : public RefCountedObject {
 public:
  CommentStream();
  CommentStream(const CommentStream& other);
  ~CommentStream() override;

  ObjectID mObjectID;                      // attribute "objID"
  UTF16String mName;                       // attribute "name"
  UTF16String mCommentAuthor;              // attribute "commentAuthor"
  UTF16String mDependent;                  // attribute "dependent"
  UTF16String mCommentAuthorID;            // attribute "commentAuthorID"
  boost::intrusive_ptr<Section> mSection;  // element "section"
};

// Element "stream".
class ZELSTORYPARSER_API Stream : public RefCountedObject {
 public:
  Stream();
  Stream(const Stream& other);
  ~Stream() override;

  ObjectID mObjectID;  // attribute "objID"
  UTF16String
      mName;  // attribute "name"; only "body", "header" and "footer" are linked into a document
  boost::intrusive_ptr<Section> mSection;  // element "section"
};

// Element "document".
class ZELSTORYPARSER_API Document : public RefCountedObject {
 public:
  Document();
  Document(const Document& other);
  ~Document() override;

  boost::intrusive_ptr<Stream> mHeaderStream;  // element "stream" named "header"
  boost::intrusive_ptr<Stream> mBodyStream;    // element "stream" named "body"
  boost::intrusive_ptr<Stream> mFooterStream;  // element "stream" named "footer"
  UTF16String mVersion;                        // attribute "version"; not validated
  std::vector<boost::intrusive_ptr<CommentStream>> mCommentStreams;  // elements "commentStream"
};

// Element "TavroStory": the root.
class ZELSTORYPARSER_API TavroStory : public RefCountedObject {
 public:
  TavroStory();
  TavroStory(const TavroStory& other);
  ~TavroStory() override;

  boost::intrusive_ptr<Document> mDocument;  // element "document"
  UTF16String mVersion;                      // attribute "version": the story format's version
  UTF16String mDocumentType;                 // attribute "documentType"
  UTF16String mTemplate;                     // attribute "template"
  UTF16String mMetaData;                     // character data of element "metaData"
  std::vector<UTF16String> mTags;            // attribute "label" of each element "Tag", in order
};

}  // namespace zelstoryparser
