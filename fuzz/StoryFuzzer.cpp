#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include <zelcore/xml/Reader.h>
#include <zelstoryhost/StoryJSON.h>
#include <zelstoryparser/SceneXMP.h>
#include <zelstoryparser/StoryParser.h>

#include "Packets.h"
#include "tools/zelstory/terminal/Screenplay.h"

// Takes a story document through every operation: it is read, printed as JSON and as a screenplay;
// each scene is made into a packet as in a dump, written into a clip's metadata and cleared again.
namespace {

using namespace zelstoryparser;
using fuzzing::Meta;
using fuzzing::Require;
using fuzzing::Serialize;

void TestClip(const boost::intrusive_ptr<Scene>& scene) {
  Meta xmp;
  std::vector<zelmetadata::Path> changed;
  Require(WriteSceneMetadataIntoXMP(scene, xmp, changed).empty(), "a read scene can be written");
  const std::string packet = Serialize(xmp);
  Require(WriteSceneMetadataIntoXMP(scene, xmp, changed).empty(), "a scene can be written again");
  Require(Serialize(xmp) == packet, "writing again changes nothing");
  const bool hasAny = packet != Serialize(Meta());
  Require(HasAnyStoryRelatedMetadata(xmp) == hasAny, "what was written is found");
  Require(ClearSceneMetadataFromXMP(xmp, changed).empty(), "a written scene can be cleared");
  Require(Serialize(xmp) == Serialize(Meta()), "clearing leaves nothing");
}

void TestSection(const boost::intrusive_ptr<TavroStory>& story,
                 const boost::intrusive_ptr<Section>& section) {
  if (!section) return;
  std::int32_t number = 0;
  for (const boost::intrusive_ptr<Scene>& scene : section->mScenes) {
    std::vector<ShotXMP> shots;
    Require(GetSceneXMP(story, scene, ++number, shots), "a scene's packets are made");
    Require(shots.size() <= 1, "a scene makes at most one shot");
    for (const ShotXMP& shot : shots) {
      Require(!shot.mShotID.empty(), "a shot has an identifier");
      const std::string again = Serialize(fuzzing::Parse(shot.mXMPPacket));
      Require(again == shot.mXMPPacket, "a shot's packet comes back");
    }
    if (number <= 16) TestClip(scene);
  }
}

std::string AsJSON(const zelstoryparser::TavroStory& story) {
  std::ostringstream json;
  zelstoryhost::WriteJSON(story, json);
  return json.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string document(reinterpret_cast<const char*>(bytes), size);
  zelcore::xml::Reader reader;
  StoryParser parser, other;
  const bool isWellFormed = reader.ParseBuffer(document, "document", parser);
  Require(isWellFormed || !reader.Error().mReason.empty(), "a refusal has a reason");
  std::istringstream stream(document);
  Require(reader.ParseStream(stream, "document", other) == isWellFormed, "a stream reads the same");
  Require(other.GetErrorString() == parser.GetErrorString(), "a stream's errors are the same");
  const auto story = parser.GetStory(), copy = other.GetStory();
  Require(!story == !copy, "a stream's root is the same");
  if (!story) return 0;

  // The tree built before an error is complete, too.
  const std::string json = AsJSON(*story);
  Require(AsJSON(*copy) == json, "a stream's tree is the same");
  Require(nlohmann::ordered_json::parse(json).dump(2) + '\n' == json, "the JSON is JSON");
  std::ostringstream screenplay;
  zelstory::PrintScreenplay(*story, true, screenplay);
  if (!story->mDocument) return 0;
  if (story->mDocument->mBodyStream) TestSection(story, story->mDocument->mBodyStream->mSection);
  for (const auto& comments : story->mDocument->mCommentStreams)
    TestSection(story, comments->mSection);
  return 0;
}
