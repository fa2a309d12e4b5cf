#include "StoryFile.h"

#include <iostream>

#include <zelstoryparser/StoryParser.h>

#include "Console.h"
#include "FileReplacement.h"
#include "ToolError.h"

namespace zelstory {
namespace {

using zelstoryparser::Scene;
using zelstoryparser::TavroStory;
using zelstoryparser::UTF16String;

// Follows a document beside the parser, so that a fault can be told by its place in the story.
class StoryPlace {
 public:
  void Enter(const UTF16String& element,
             const zelstoryparser::StoryParser::Attributes& attributes) {
    if (element == u"stream") {
      const auto name = attributes.find(u"name");
      EnterStream(name == attributes.end() || name->second.empty() ? "unnamed stream"
                                                                   : ToUTF8(name->second));
    } else if (element == u"commentStream") {
      EnterStream("comment stream " + std::to_string(++mCommentStreams));
    } else if (element == u"scene") {
      ++mScene;
      mInScene = true;
      mParagraph = 0;
    } else if (element == u"paragraph") {
      ++mParagraph;
      mInParagraph = true;
    }
  }

  void Leave(const UTF16String& element) {
    if (element == u"stream" || element == u"commentStream") mStream.clear();
    if (element == u"scene") mInScene = false;
    if (element == u"paragraph") mInParagraph = false;
  }

  std::string Describe() const {
    std::string where = mStream;
    if (!where.empty() && mInScene) where += ", scene " + std::to_string(mScene);
    if (!where.empty() && mInScene && mInParagraph) {
      where += ", paragraph " + std::to_string(mParagraph);
    }
    return where;
  }

 private:
  void EnterStream(std::string stream) {
    mStream = std::move(stream);
    mScene = 0;
    mInScene = mInParagraph = false;
  }

  std::string mStream;
  int mCommentStreams = 0;
  int mScene = 0;
  int mParagraph = 0;
  bool mInScene = false;
  bool mInParagraph = false;
};

// A parser that notes where the first structural error stood.
class LocatingParser : public zelstoryparser::StoryParser {
 public:
  explicit LocatingParser(const zelcore::xml::Reader& reader) : mReader(reader) {}

  void StartElement(const UTF16String& name, const Attributes& attributes) override {
    const bool failedBefore = IsParseError();
    StoryParser::StartElement(name, attributes);
    if (!failedBefore && IsParseError()) NoteFault();
    if (!IsParseError()) mPlace.Enter(name, attributes);
  }

  void EndElement(const UTF16String& name) override {
    const bool failedBefore = IsParseError();
    StoryParser::EndElement(name);
    if (!failedBefore && IsParseError()) NoteFault();
    if (!IsParseError()) mPlace.Leave(name);
  }

  const std::optional<StoryFault>& Fault() const { return mFault; }
  std::string Where() const { return mPlace.Describe(); }

 private:
  void NoteFault() {
    mFault = {mReader.CurrentPosition(), ToUTF8(GetErrorString()), mPlace.Describe()};
  }

  const zelcore::xml::Reader& mReader;
  StoryPlace mPlace;
  std::optional<StoryFault> mFault;
};

bool Read(const std::string& file, zelcore::xml::Reader& reader, LocatingParser& parser) {
  if (file == kStandardStream) return reader.ParseStream(std::cin, "standard input", parser);
  return reader.ParseFile(std::filesystem::path(file), parser);
}

}  // namespace

std::string StoryFault::Describe(const std::string& file) const {
  const std::string place = file + ':' + std::to_string(mPosition.mLine) + ':' +
                            std::to_string(mPosition.mColumn) + ": error: " + mMessage;
  return mWhere.empty() ? place : place + " (" + mWhere + ')';
}

std::optional<StoryFault> ReadStory(const std::string& file,
                                    boost::intrusive_ptr<TavroStory>& story) {
  zelcore::xml::Reader reader;
  LocatingParser parser(reader);
  const bool wellFormed = Read(file, reader, parser);
  // A structural error comes before whatever ended the reading later.
  if (parser.Fault()) return parser.Fault();
  if (!wellFormed) {
    return StoryFault{reader.Error().mPosition, reader.Error().mReason, parser.Where()};
  }
  story = parser.GetStory();
  if (!story) return StoryFault{{}, "the document has no TavroStory element", ""};
  return std::nullopt;
}

boost::intrusive_ptr<TavroStory> LoadStory(const std::string& file) {
  boost::intrusive_ptr<TavroStory> story;
  const std::optional<StoryFault> fault = ReadStory(file, story);
  if (fault) throw ToolError(fault->Describe(file));
  return story;
}

bool IsStoryItself(const std::string& story, const std::filesystem::path& file) {
  if (story == kStandardStream) return IsStandardInput(file);
  std::error_code error;  // a file that is not there yet is no story
  return std::filesystem::equivalent(story, file, error);
}

std::vector<boost::intrusive_ptr<Scene>> BodyScenes(const TavroStory& story) {
  const bool hasBody =
      story.mDocument && story.mDocument->mBodyStream && story.mDocument->mBodyStream->mSection;
  if (!hasBody) return {};
  return story.mDocument->mBodyStream->mSection->mScenes;
}

}  // namespace zelstory
