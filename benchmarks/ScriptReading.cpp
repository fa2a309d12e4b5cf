// Measures reading one script into a tree, from each of its formats. The argument is the size of
// the script in Fountain, in kilobytes: 180 is a feature of about 120 pages.
#include <map>
#include <string>

#include <benchmark/benchmark.h>
#include <libxml/parser.h>

#include <zelstoryhost/ScriptFormats.h>

#include "StoryGenerator.h"

namespace {

using namespace zelstoryhost;

// A script of the size, in each format.
std::map<std::string, std::string> MakeScripts(std::int64_t kilobytes) {
  const auto bytes = static_cast<std::size_t>(kilobytes) * 1000;
  std::map<std::string, std::string> scripts;
  const auto write = [&scripts](const zelstoryparser::TavroStory& story) {
    for (const ScriptFormat& format : ScriptFormats()) {
      scripts[std::string(format.mName)] = format.mWrite(story, "script").mBytes;
    }
  };
  // Markup makes a story document larger than its Fountain twin, by a factor that it shows itself.
  write(*ReadStory(GenerateStory(bytes), "story").mStory);
  const std::size_t documentBytes = bytes * bytes / scripts["fountain"].size();
  write(*ReadStory(GenerateStory(documentBytes), "story").mStory);
  return scripts;
}

const std::string& Script(const char* format, std::int64_t kilobytes) {
  static std::map<std::int64_t, std::map<std::string, std::string>> scripts;
  auto& ofSize = scripts[kilobytes];
  if (ofSize.empty()) ofSize = MakeScripts(kilobytes);
  return ofSize[format];
}

void Read(benchmark::State& state, const char* format) {
  const std::string& script = Script(format, state.range(0));
  const ScriptFormat& reader = *FindFormat(format);
  for (auto _ : state) {
    if (!reader.mRead(script, "script")) state.SkipWithError("not read");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(script.size()));
}

void ReadStoryDocument(benchmark::State& state) {
  Read(state, "story");
}
void ReadFountain(benchmark::State& state) {
  Read(state, "fountain");
}
void ReadFDX(benchmark::State& state) {
  Read(state, "fdx");
}

void FDXLibxml2DOM(benchmark::State& state) {
  const std::string& script = Script("fdx", state.range(0));
  for (auto _ : state) {
    xmlDoc* const document = xmlReadMemory(script.data(), static_cast<int>(script.size()), nullptr,
                                           nullptr, XML_PARSE_NONET | XML_PARSE_HUGE);
    if (document == nullptr) state.SkipWithError("not read");
    xmlFreeDoc(document);
  }
}

#define SIZES ->Arg(180)->Arg(1000)->Arg(20000)->Unit(benchmark::kMillisecond)
BENCHMARK(ReadStoryDocument) SIZES;
BENCHMARK(ReadFountain) SIZES;
BENCHMARK(ReadFDX) SIZES;
BENCHMARK(FDXLibxml2DOM) SIZES;

}  // namespace
