#pragma once

#include <cstdint>
#include <map>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelcore/String.h>
#include <zelcore/xml/AbstractParseHandler.h>
#include <zelstoryparser/Export.h>
#include <zelstoryparser/StoryTree.h>

namespace zelstoryparser {

// Builds the tree of a story from the events of its document, and tests the document's structure.
//
// Hand a parser to an XML reader, then ask IsParseError, and take the tree with GetStory. The first
// structural error is recorded and ends the building: nothing after it is built, linked or
// released, and what was built before it stays reachable. Elements of unknown names build nothing
// and are no error, so a document without any root ends with no error and a null GetStory: test
// both. A "Tag" element before any root is ignored.
//
// A parser may read several documents in turn. It holds the root, and the text run started last,
// until the next document or its own end. Copies share the nodes of the document being built and go
// on building into the same tree.
//
// Errors: structural ones are recorded, never thrown; std::bad_alloc leaves the callbacks, after
// which the parser may start another document. Threads: one at a time per parser and per tree being
// built.
class ZELSTORYPARSER_API StoryParser : public zelcore::xml::AbstractParseHandler {
 public:
  using Attributes = std::map<UTF16String, UTF16String>;

  StoryParser();
  StoryParser(const StoryParser& other);
  StoryParser& operator=(const StoryParser& other);
  ~StoryParser() override;

  // Forgets the tree, the open elements and the error flag of the document before. Not forgotten:
  // its error message, until a new one replaces it, and its last text run.
  void StartDocument() override;

  // Builds the node of a structural element and links it into its parent; see StoryTree.h for what
  // fills each member. Character data gathered before the tag is dropped.
  void StartElement(const UTF16String& name, const Attributes& attributes) override;

  // Closes the open element of this kind, whichever it is. The end of a "textRun" or "metaData"
  // stores the character data since the last start tag.
  void EndElement(const UTF16String& name) override;

  // Gathers character data; a run of text may come in any number of pieces.
  void Characters(const UTF16String& text) override;

  // Closes all open elements, also after an error. The tree stays for GetStory.
  void EndDocument() override;

  // Whether the document had a structural error.
  bool IsParseError() const;

  // The message of the latest structural error, in English; it outlives the document it speaks of.
  // Empty when there never was one.
  UTF16String GetErrorString();

  // The root as built so far, also after an error: null until a root element has started. The
  // caller's reference keeps the tree when the parser goes.
  boost::intrusive_ptr<TavroStory> GetStory();

 protected:
  // Records an error: sets the flag and replaces the message. Nothing more is built.
  void SetParseError(const UTF16String& message);

  // The ParagraphElementType that a tag's "element" attribute names; kUnknownElement when the
  // attribute is absent or has any other value.
  std::int32_t GetElement(const Attributes& attributes);

 private:
  void LookUpElement(const UTF16String& name);
  void StartStory(const Attributes& attributes);
  void StartDocumentElement(const Attributes& attributes);
  void StartStream(const Attributes& attributes);
  void LinkStream(boost::intrusive_ptr<Stream>& slot, const char* occupiedMessage);
  void StartSection(const Attributes& attributes);
  void OpenSection(const Attributes& attributes, boost::intrusive_ptr<Section>& slot);
  void StartScene(const Attributes& attributes);
  void StartParagraph(const Attributes& attributes);
  void StartTextRun(const Attributes& attributes);
  void StartCommentStream(const Attributes& attributes);
  void EndTextRun();
  void EndMetaData();
  void CloseAll();

  // Any order finds a name; this one rarely has to look at the text.
  struct ShorterFirst {
    bool operator()(const UTF16String& left, const UTF16String& right) const {
      return left.size() != right.size() ? left.size() < right.size() : left < right;
    }
  };
  using ElementMap = std::map<UTF16String, std::int32_t, ShorterFirst>;

  ElementMap mElementMap;        // element name to StoryElementCode
  std::int32_t mCurrentElement;  // code of the tag being handled
  UTF16String mCharacters;       // character data since the last start tag
  bool mParseError;
  UTF16String mErrorString;
  boost::intrusive_ptr<TavroStory> mStory;
  // The open element of each kind; null while none is open.
  boost::intrusive_ptr<Document> mCurrentDocument;
  boost::intrusive_ptr<CommentStream> mCurrentCommentStream;
  boost::intrusive_ptr<Stream> mCurrentStream;
  boost::intrusive_ptr<Section> mCurrentSection;
  boost::intrusive_ptr<Scene> mCurrentScene;
  boost::intrusive_ptr<Paragraph> mCurrentParagraph;
  boost::intrusive_ptr<TextRun> mCurrentTextRun;  // the run started last; no end tag closes it
};

}  // namespace zelstoryparser
