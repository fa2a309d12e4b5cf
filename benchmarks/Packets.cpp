// Measures building a scene's packet, and parsing a packet, against plain XML with pugixml.
#include <stdexcept>
#include <string>

#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include <xmptoolkit/PacketPatch.h>
#include <xmptoolkit/XMPTree.h>
#include <zelcore/xml/Reader.h>
#include <zelmetadata/Path.h>
#include <zelstoryparser/zelstoryparser.h>

#include "StoryGenerator.h"

namespace {

using namespace zelstoryparser;

const std::vector<boost::intrusive_ptr<Scene>>& Scenes() {
  static const boost::intrusive_ptr<TavroStory> story = [] {
    zelcore::xml::Reader reader;
    StoryParser parser;
    if (!reader.ParseBuffer(GenerateStory(1'000'000), "story", parser)) {
      throw std::runtime_error("the story was not read");
    }
    return parser.GetStory();
  }();
  return story->mDocument->mBodyStream->mSection->mScenes;
}

void OurPacket(benchmark::State& state) {
  for (auto _ : state) {
    std::int32_t ordinal = 0;
    std::vector<ShotXMP> shots;
    for (const auto& scene : Scenes()) GetSceneXMP({}, scene, ++ordinal, shots);
    benchmark::DoNotOptimize(shots);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(Scenes().size()));
}

// What both must do: gather and convert a scene's texts.
void PacketTexts(benchmark::State& state) {
  for (auto _ : state) {
    for (const auto& scene : Scenes()) {
      const SceneText text = CollectSceneText(*scene);
      for (const UTF16String* value :
           {&text.mSetting, &text.mLocation, &text.mTimeOfDay, &text.mAction}) {
        benchmark::DoNotOptimize(zelcore::utility::UTF16to8(*value));
      }
      for (const auto& [character, dialog] : text.mPairs) {
        benchmark::DoNotOptimize(zelcore::utility::UTF16to8(character));
        benchmark::DoNotOptimize(zelcore::utility::UTF16to8(dialog));
      }
    }
  }
}

void Append(pugi::xml_node parent, const char* name, const UTF16String& text) {
  if (!text.empty()) parent.append_child(name).text().set(zelcore::utility::UTF16to8(text).c_str());
}

// Writes the same metadata as GetSceneXMP, and the same padding after it.
std::string PugixmlPacket(const Scene& scene) {
  const SceneText text = CollectSceneText(scene);
  pugi::xml_document document;
  pugi::xml_node meta = document.append_child("x:xmpmeta");
  meta.append_attribute("xmlns:x") = "adobe:ns:meta/";
  pugi::xml_node rdf = meta.append_child("rdf:RDF");
  rdf.append_attribute("xmlns:rdf") = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
  pugi::xml_node properties = rdf.append_child("rdf:Description");
  properties.append_attribute("rdf:about") = "";
  properties.append_attribute("xmlns:xmpScript") = zelmetadata::kScriptSchemaURI;
  properties.append_attribute("xmlns:xmpDM") = zelmetadata::kDynamicMediaSchemaURI;
  Append(properties, "xmpScript:sceneSetting", text.mSetting);
  Append(properties, "xmpDM:shotLocation", text.mLocation);
  Append(properties, "xmpScript:sceneTimeOfDay", text.mTimeOfDay);
  UTF16String name;
  for (const UTF16String& part :
       {text.mSetting, text.mLocation, text.mTimeOfDay, scene.mSceneNumber}) {
    if (!part.empty() && !name.empty()) name += u" - ";
    name += part;
  }
  Append(properties, "xmpDM:shotName", name);
  Append(properties, "xmpDM:scene", scene.mSceneNumber);
  pugi::xml_node duration = properties.append_child("xmpDM:duration");
  duration.append_attribute("rdf:parseType") = "Resource";
  Append(duration, "xmpDM:scale", u"1/1");
  Append(duration, "xmpDM:value", u"90");
  Append(properties, "xmpScript:action", text.mAction);
  pugi::xml_node dialogue =
      properties.append_child("xmpScript:dialogSequence").append_child("rdf:Seq");
  for (const auto& [character, dialog] : text.mPairs) {
    pugi::xml_node item = dialogue.append_child("rdf:li");
    item.append_attribute("rdf:parseType") = "Resource";
    Append(item, "xmpScript:character", character);
    Append(item, "xmpScript:dialog", dialog);
  }
  struct Writer : pugi::xml_writer {
    std::string mText = "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n";
    void write(const void* data, std::size_t size) override {
      mText.append(static_cast<const char*>(data), size);
    }
  } writer;
  document.save(writer, " ", pugi::format_indent | pugi::format_no_declaration);
  for (int line = 0; line < 20; ++line) writer.mText.append(100, ' ') += '\n';
  return std::move(writer.mText) + "<?xpacket end=\"w\"?>";
}

void PugixmlPackets(benchmark::State& state) {
  std::vector<ShotXMP> ours;
  GetSceneXMP({}, Scenes()[1], 1, ours);
  const std::string theirs = PugixmlPacket(*Scenes()[1]);
  TXMPMeta<std::string> left;
  TXMPMeta<std::string> right;
  left.ParseFromBuffer(ours[0].mXMPPacket.data(),
                       static_cast<XMP_StringLen>(ours[0].mXMPPacket.size()));
  right.ParseFromBuffer(theirs.data(), static_cast<XMP_StringLen>(theirs.size()));
  if (!xmptoolkit::AreEqual(left, right, xmptoolkit::Equality::kMetadata))
    state.SkipWithError("another packet");
  for (auto _ : state) {
    std::vector<std::string> packets;
    for (const auto& scene : Scenes()) packets.push_back(PugixmlPacket(*scene));
    benchmark::DoNotOptimize(packets);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(Scenes().size()));
}
BENCHMARK(OurPacket)->Unit(benchmark::kMillisecond);
BENCHMARK(PacketTexts)->Unit(benchmark::kMillisecond);
BENCHMARK(PugixmlPackets)->Unit(benchmark::kMillisecond);

// Returns a packet of about 100 kB, that of a long scene.
std::string LongPacket() {
  boost::intrusive_ptr<Scene> scene(new Scene(*Scenes()[1]));
  for (const auto& other : Scenes()) {
    if (scene->mParagraphs.size() >= 720) break;
    scene->mParagraphs.insert(scene->mParagraphs.end(), other->mParagraphs.begin(),
                              other->mParagraphs.end());
  }
  std::vector<ShotXMP> shots;
  GetSceneXMP({}, scene, 1, shots);
  return shots.at(0).mXMPPacket;
}

void ParsePacket(benchmark::State& state) {
  const std::string packet = LongPacket();
  for (auto _ : state) {
    TXMPMeta<std::string> xmp;
    xmp.ParseFromBuffer(packet.data(), static_cast<XMP_StringLen>(packet.size()));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(packet.size()));
  state.counters["packet_bytes"] = static_cast<double>(packet.size());
}

void PugixmlParsePacket(benchmark::State& state) {
  const std::string packet = LongPacket();
  for (auto _ : state) {
    pugi::xml_document document;
    benchmark::DoNotOptimize(document.load_buffer(packet.data(), packet.size()));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(packet.size()));
}
using Metadata = TXMPMeta<std::string>;

// The metadata of a packet, and the same with another action and one speech changed.
struct Edit {
  explicit Edit(const std::string& packet)
      : mBefore(packet.data(), static_cast<XMP_StringLen>(packet.size())), mAfter(mBefore) {
    constexpr const char* kScript = zelmetadata::kScriptSchemaURI;
    mAfter.SetProperty(kScript, "action", "Nothing moves.");
    mAfter.SetStructField(kScript, "dialogSequence[20]", kScript, "dialog", "Another line.");
  }
  Metadata mBefore;
  Metadata mAfter;
};

void PatchPacket(benchmark::State& state) {
  const std::string packet = LongPacket();
  const Edit edit(packet);
  for (auto _ : state) {
    const auto patch = xmptoolkit::PatchPacket(
        packet.data(), static_cast<XMP_StringLen>(packet.size()), edit.mBefore, edit.mAfter);
    if (!patch.mWhyRewritten.empty()) state.SkipWithError("the packet was written anew");
  }
}

// What a host does that writes the whole packet: it is read again, as PatchPacket does.
void RewritePacket(benchmark::State& state) {
  const std::string packet = LongPacket();
  const Edit edit(packet);
  for (auto _ : state) {
    std::string file;
    TXMPUtils::ReplacePacket(packet.data(), static_cast<XMP_StringLen>(packet.size()), edit.mAfter,
                             &file);
    const Metadata again(file.data(), static_cast<XMP_StringLen>(file.size()));
    benchmark::DoNotOptimize(AreEqual(again, edit.mAfter, xmptoolkit::Equality::kMetadata));
  }
}
BENCHMARK(PatchPacket)->Unit(benchmark::kMillisecond);
BENCHMARK(RewritePacket)->Unit(benchmark::kMillisecond);

BENCHMARK(ParsePacket)->Unit(benchmark::kMillisecond);
BENCHMARK(PugixmlParsePacket)->Unit(benchmark::kMillisecond);

}  // namespace
