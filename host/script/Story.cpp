#include <algorithm>
#include <fstream>
#include <istream>
#include <utility>

#include <zelcore/xml/Reader.h>
#include <zelstoryhost/Story.h>
#include <zelstoryhost/Text.h>
#include <zelstoryparser/StoryParser.h>

#include "script/OpenScript.h"
#include "script/StoryPlace.h"

namespace zelstoryhost {
namespace {

namespace fs = std::filesystem;

using zelcore::xml::Position;
using zelstoryparser::Scene;
using zelstoryparser::TavroStory;
using zelstoryparser::UTF16String;

// A parser that notes where the first structural error was found.
class LocatingParser : public zelstoryparser::StoryParser {
 public:
  LocatingParser(const zelcore::xml::Reader& reader, std::string name)
      : mReader(reader), mName(std::move(name)) {}

  void StartElement(const UTF16String& name, const Attributes& attributes) override {
    const bool failedBefore = IsParseError();
    StoryParser::StartElement(name, attributes);
    if (!failedBefore && IsParseError()) NoteFault();
    if (IsParseError()) return;
    mPlace.Enter(name, attributes);
    if (mPlace.IsInBody()) NotePosition(name);
  }

  void EndElement(const UTF16String& name) override {
    const bool failedBefore = IsParseError();
    StoryParser::EndElement(name);
    if (!failedBefore && IsParseError()) NoteFault();
    if (!IsParseError()) mPlace.Leave(name);
  }

  // The tree, or the first fault. A structural error comes before whatever ended the reading later.
  StoryResult Result(bool wellFormed) {
    if (mFault) return {nullptr, mFault};
    if (!wellFormed) return {nullptr, ReadingError()};
    if (const auto story = GetStory()) return {story, std::nullopt, {}, PositionsIn(*story)};
    return {nullptr, Error(mName, Position{}, "the document has no TavroStory element")};
  }

 private:
  void NoteFault() {
    mFault.emplace(mName, mReader.CurrentPosition(), ToUTF8(GetErrorString()), mPlace.Describe());
  }

  void NotePosition(const UTF16String& element) {
    if (element == u"scene") mPositions.emplace_back();
    if (element != u"paragraph" || mPositions.empty()) return;
    mPositions.back().push_back(mReader.CurrentPosition());
  }

  // The places, unless tags in odd places made no nodes: then nobody knows whose places they are.
  BodyPositions PositionsIn(const TavroStory& story) {
    const bool isSame = std::ranges::equal(mPositions, BodyScenes(story),
                                           [](const auto& positions, const auto& scene) {
                                             return positions.size() == scene->mParagraphs.size();
                                           });
    return isSame ? std::move(mPositions) : BodyPositions();
  }

  Error ReadingError() const {
    const auto& error = mReader.Error();
    return Error(mName, error.mPosition, error.mReason, mPlace.Describe());
  }

  const zelcore::xml::Reader& mReader;
  const std::string mName;
  StoryPlace mPlace;
  BodyPositions mPositions;
  std::optional<Error> mFault;
};

}  // namespace

StoryResult ReadStory(const fs::path& file) {
  std::ifstream stream;
  const std::optional<std::string> reason = OpenScript(file, stream);
  if (reason) return {nullptr, Error(file.string(), *reason)};
  return ReadStory(stream, file.string());
}

StoryResult ReadStory(std::istream& stream, const std::string& name) {
  zelcore::xml::Reader reader;
  LocatingParser parser(reader, name);
  const bool wellFormed = reader.ParseStream(stream, name, parser);
  return parser.Result(wellFormed);
}

StoryResult ReadStory(std::string_view bytes, const std::string& name) {
  zelcore::xml::Reader reader;
  LocatingParser parser(reader, name);
  const bool wellFormed = reader.ParseBuffer(bytes, name, parser);
  return parser.Result(wellFormed);
}

boost::intrusive_ptr<TavroStory> LoadStory(const fs::path& file) {
  const StoryResult result = ReadStory(file);
  if (!result) throw *result.mFault;
  return result.mStory;
}

std::vector<boost::intrusive_ptr<Scene>> BodyScenes(const TavroStory& story) {
  const bool hasBody =
      story.mDocument && story.mDocument->mBodyStream && story.mDocument->mBodyStream->mSection;
  if (!hasBody) return {};
  return story.mDocument->mBodyStream->mSection->mScenes;
}

}  // namespace zelstoryhost
