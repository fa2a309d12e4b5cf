#pragma once

#include <cstdint>
#include <map>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelcore/String.h>
#include <zelcore/xml/AbstractParseHandler.h>
#include <zelstoryparser/Export.h>
#include <zelstoryparser/StoryTree.h>

namespace zelstoryparser {

// Builds the tree of a story from the events of its document, and validates the document's
// structure.
//
// Pass a parser to an XML reader, then check IsParseError and take the tree from GetStory. The
// first structural error is recorded. Nothing after it is built, linked or released, and the tree
// built before it stays reachable. Elements with unknown names build nothing and are not errors. A
// document without a root therefore ends with no error and a null GetStory: check both. A "Tag"
// element before any root is ignored.
//
// A parser may read several documents in turn. It holds the root until the next document, and the
// last text run until the next run starts, or until it is destroyed. Copies share the nodes of the
// document being built and go on building the same tree.
//
// Errors: structural errors are recorded, never thrown. std::bad_alloc passes through the
// callbacks; afterwards the parser may start another document. Threads: use a parser, and a tree
// while it is being built, on one thread at a time.
class ZELSTORYPARSER_API StoryParser : public zelcore::xml::AbstractParseHandler {
 public:
  using Attributes = std::map<UTF16String, UTF16String>;

  StoryParser();
  StoryParser(const StoryParser& other);
  StoryParser& operator=(const StoryParser& other);
  ~StoryParser() override;

  // Drops the tree, the open elements and the error flag of the previous document. Its error
  // message stays until a new one replaces it, and so does its last text run.
  void StartDocument() override;

  // Builds the node of a structural element and links it into its parent; StoryTree.h says what
  // fills each member. Drops the character data gathered so far.
  void StartElement(const UTF16String& name, const Attributes& attributes) override;

  // Closes the open element of this kind, whichever it is. The end of a "textRun" or "metaData"
  // stores the character data gathered so far and empties it, so that a text is what follows the
  // last start tag or the last end tag that stored one. If the last text run already has a text,
  // the end of a "textRun" does neither.
  void EndElement(const UTF16String& name) override;

  // Gathers character data, which may arrive in any number of pieces.
  void Characters(const UTF16String& text) override;

  // Closes all open elements, even after an error. The tree stays available from GetStory.
  void EndDocument() override;

  // Returns whether the document has a structural error.
  bool IsParseError() const;

  // Returns the message of the last structural error, in English; empty if there never was one. The
  // message stays when the next document starts.
  UTF16String GetErrorString();

  // Returns the root as built so far, even after an error; null until a root element has started.
  // The caller's reference keeps the tree alive without the parser.
  boost::intrusive_ptr<TavroStory> GetStory();

 protected:
  // Records an error: sets the flag and replaces the message. Nothing is built after that.
  void SetParseError(const UTF16String& message);

  // Returns the ParagraphElementType that a tag's "element" attribute names; kUnknownElement if the
  // attribute is absent or has another value.
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

  // Compares lengths first, which settles most lookups.
  struct ShorterFirst {
    bool operator()(const UTF16String& left, const UTF16String& right) const {
      return left.size() != right.size() ? left.size() < right.size() : left < right;
    }
  };
  using ElementMap = std::map<UTF16String, std::int32_t, ShorterFirst>;

  ElementMap mElementMap;        // element name to StoryElementCode
  std::int32_t mCurrentElement;  // code of the tag being handled
  UTF16String mCharacters;       // gathered since the last start tag, or end tag that stored a text
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
  boost::intrusive_ptr<TextRun> mCurrentTextRun;  // the last run started; no end tag closes it
};

}  // namespace zelstoryparser
