// Measures loading a story from bytes in memory into a tree and releasing the tree, against other
// ways to read it. The argument is the document's size in megabytes.
#include <algorithm>
#include <map>
#include <span>

#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <pugixml.hpp>

#include <zelcore/xml/Reader.h>
#include <zelcore/xml/SAXDriver.h>
#include <zelstoryparser/zelstoryparser.h>

#include "PugixmlStory.h"
#include "StoryGenerator.h"

namespace {

const std::string& Story(const benchmark::State& state) {
  static std::map<std::int64_t, std::string> stories;
  std::string& story = stories[state.range(0)];
  if (story.empty()) story = GenerateStory(static_cast<std::size_t>(state.range(0)) * 1'000'000);
  return story;
}

template <class Load>
void Measure(benchmark::State& state, Load load) {
  const std::string& story = Story(state);
  for (auto _ : state) {
    if (!load(story)) state.SkipWithError("not loaded");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(story.size()));
}

void Load(benchmark::State& state) {
  Measure(state, [](const std::string& story) {
    zelcore::xml::Reader reader;
    zelstoryparser::StoryParser parser;
    return reader.ParseBuffer(story, "story", parser) && parser.GetStory() != nullptr;
  });
}

// Everything except StoryParser's callbacks and the tree.
void ReaderAlone(benchmark::State& state) {
  Measure(state, [](const std::string& story) {
    zelcore::xml::Reader reader;
    zelcore::xml::AbstractParseHandler nothing;
    return reader.ParseBuffer(story, "story", nothing);
  });
}

// The library's layer from bytes to events, before names and texts are converted.
void DriverAlone(benchmark::State& state) {
  using namespace zelcore::xml;
  struct Nothing : SAXEvents {
    void StartElement(const NameView&, std::span<const NamespaceView>,
                      std::span<const AttributeView>) override {}
    void EndElement() override {}
    void Characters(std::string_view) override {}
  };
  Measure(state, [](const std::string& story) {
    Nothing nothing;
    SAXDriver driver(nothing);
    return !driver.ParseBuffer(story);
  });
}

void PugixmlWalk(benchmark::State& state) {
  Measure(state, [](const std::string& story) {
    pugi::xml_document document;
    return document.load_buffer(story.data(), story.size()) && WalkStory(document) != nullptr;
  });
}

void Libxml2DOM(benchmark::State& state) {
  Measure(state, [](const std::string& story) {
    xmlDoc* document = xmlReadMemory(story.data(), static_cast<int>(story.size()), nullptr, nullptr,
                                     XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_HUGE);
    xmlFreeDoc(document);
    return document != nullptr;
  });
}

void BareReader(benchmark::State& state) {
  xmlSAXHandler handler{};
  handler.initialized = XML_SAX2_MAGIC;
  handler.startElementNs = [](void*, const xmlChar*, const xmlChar*, const xmlChar*, int,
                              const xmlChar**, int, int, const xmlChar**) {};
  handler.endElementNs = [](void*, const xmlChar*, const xmlChar*, const xmlChar*) {};
  handler.characters = [](void*, const xmlChar*, int) {};
  Measure(state, [&handler](const std::string& story) {
    constexpr std::size_t kChunk = 64 * 1024;
    xmlParserCtxt* context = xmlCreatePushParserCtxt(&handler, nullptr, nullptr, 0, nullptr);
    for (std::size_t at = 0; at < story.size(); at += kChunk) {
      const std::size_t count = std::min(kChunk, story.size() - at);
      xmlParseChunk(context, story.data() + at, static_cast<int>(count),
                    at + count == story.size() ? 1 : 0);
    }
    const bool isGood = context->wellFormed == 1;
    xmlFreeParserCtxt(context);
    return isGood;
  });
}

#define SIZES ->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond)
BENCHMARK(Load) SIZES;
BENCHMARK(ReaderAlone) SIZES;
BENCHMARK(DriverAlone) SIZES;
BENCHMARK(PugixmlWalk) SIZES;
BENCHMARK(Libxml2DOM) SIZES;
BENCHMARK(BareReader) SIZES;

}  // namespace
