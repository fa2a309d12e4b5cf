#include "StoryFile.h"

#include <cerrno>
#include <fstream>
#include <iostream>
#include <system_error>

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
      const auto number = attributes.find(u"sceneNumber");
      ++mPosition;
      mScene = number == attributes.end() || number->second.empty()
                   ? "scene at position " + std::to_string(mPosition)
                   : "scene " + ToUTF8(number->second);
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
    if (!where.empty() && mInScene) where += ", " + mScene;
    if (!where.empty() && mInScene && mInParagraph) {
      where += ", paragraph " + std::to_string(mParagraph);
    }
    return where;
  }

 private:
  void EnterStream(std::string stream) {
    mStream = std::move(stream);
    mPosition = 0;
    mInScene = mInParagraph = false;
  }

  std::string mStream;
  int mCommentStreams = 0;
  std::string mScene;  // as the script or else its position names it
  int mPosition = 0;
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

// Returns why a file cannot be opened, which is at no place of a document.
std::optional<std::string> Open(const std::filesystem::path& file, std::ifstream& stream) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(file, error);
  if (error) return error.message();
  if (std::filesystem::is_directory(status)) return "is a directory";
  stream.open(file, std::ios::binary);
  if (!stream) return std::generic_category().message(errno);
  return std::nullopt;
}

}  // namespace

std::string StoryFault::Describe(const std::string& file) const {
  std::string line = file;
  if (mPosition) {
    line += ':' + std::to_string(mPosition->mLine) + ':' + std::to_string(mPosition->mColumn);
  }
  line += ": error: " + mMessage;
  return mWhere.empty() ? line : line + " (" + mWhere + ')';
}

std::optional<StoryFault> ReadStory(const std::string& file,
                                    boost::intrusive_ptr<TavroStory>& story) {
  const bool isStandardInput = file == kStandardStream;
  std::ifstream stream;
  if (!isStandardInput) {
    if (const auto reason = Open(file, stream)) return StoryFault{std::nullopt, *reason, ""};
  }
  zelcore::xml::Reader reader;
  LocatingParser parser(reader);
  const bool wellFormed = reader.ParseStream(isStandardInput ? std::cin : stream, file, parser);
  // A structural error comes before whatever ended the reading later.
  if (parser.Fault()) return parser.Fault();
  if (!wellFormed) {
    return StoryFault{reader.Error().mPosition, reader.Error().mReason, parser.Where()};
  }
  story = parser.GetStory();
  if (!story)
    return StoryFault{zelcore::xml::Position{}, "the document has no TavroStory element", ""};
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
