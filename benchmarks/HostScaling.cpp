// Measures whether the cost per clip, row, scene and character stays the same however many there
// are.
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <zelstoryhost/zelstoryhost.h>

#include "report/ReportPage.h"
#include "terminal/TableColumns.h"

namespace {

namespace fs = std::filesystem;
using namespace zelstoryhost;
using StoryPointer = boost::intrusive_ptr<zelstoryparser::TavroStory>;

std::string Paragraph(const std::string& kind, const std::string& text) {
  return "<paragraph element='" + kind + "'><textRun>" + text + "</textRun></paragraph>";
}

// So many scenes, each with a speaker of its own; the first has this location.
StoryPointer StoryOf(std::int64_t scenes, const std::string& location = "HOUSE") {
  std::string text = "<TavroStory version='1.0'><document><stream name='body'><section>";
  for (std::int64_t i = 1; i <= scenes; ++i) {
    const std::string number = std::to_string(i);
    text += "<scene objID='s" + number + "' sceneNumber='" + number + "A'>" +
            Paragraph("SceneHeading", "INT. " + (i == 1 ? location : "HOUSE") + " - NIGHT") +
            Paragraph("Character", "GUEST " + number) + Paragraph("Dialog", "Good evening.") +
            "</scene>";
  }
  std::istringstream stream(text + "</section></stream></document></TavroStory>");
  return ReadStory(stream, "story").mStory;
}

// A folder with so many clips, each with a stem sidecar, and a table of them.
class Clips {
 public:
  explicit Clips(std::int64_t count)
      : mFolder(fs::temp_directory_path() /
                ("zelstory-clips-" + std::to_string(getpid()) + '-' + std::to_string(count))) {
    fs::create_directories(mFolder);
    const std::string packet =
        "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description "
        "xmlns:dc='http://purl.org/dc/elements/1.1/' dc:format='video/quicktime'/></rdf:RDF>";
    for (std::int64_t i = 1; i <= count; ++i) {
      const std::string stem = "clip" + std::to_string(i);
      mNames.push_back((mFolder / (stem + ".mov")).string());
      std::ofstream(mNames.back()) << "";
      std::ofstream(mFolder / (stem + ".xmp")) << packet;
      mTable += stem + ".mov," + std::to_string(i) + "A\n";
    }
  }
  ~Clips() { fs::remove_all(mFolder); }
  Clips(const Clips&) = delete;
  Clips& operator=(const Clips&) = delete;

  const std::vector<std::string>& Names() const { return mNames; }
  const std::string& Table() const { return mTable; }
  ClipTableSource Source() const { return {"table", mFolder.string(), std::nullopt}; }

 private:
  const fs::path mFolder;
  std::vector<std::string> mNames;
  std::string mTable = "clip,scene\n";
};

// Made once for each count, because making them takes longer than the measurements.
const Clips& ClipsOf(std::int64_t count) {
  static std::map<std::int64_t, Clips> clips;
  return clips.try_emplace(count, count).first->second;
}
const zelstoryparser::TavroStory& PlainStory(std::int64_t scenes) {
  static std::map<std::int64_t, StoryPointer> stories;
  StoryPointer& story = stories[scenes];
  if (!story) story = StoryOf(scenes);
  return *story;
}

void FindSidecars(benchmark::State& state) {
  const Clips& clips = ClipsOf(state.range(0));
  for (auto _ : state) {
    SidecarFinder finder;
    for (const std::string& clip : clips.Names()) {
      benchmark::DoNotOptimize(finder.Find(clip, std::nullopt, WhenAbsent::kRefuse));
    }
  }
}

// All of a change but the replacing of the file.
void ChangeClips(benchmark::State& state) {
  const Clips& clips = ClipsOf(state.range(0));
  const auto scene = BodyScenes(PlainStory(1)).front();
  for (auto _ : state) {
    EditSettings settings;
    settings.mIsDryRun = true;
    settings.mFinder = std::make_shared<SidecarFinder>();
    for (const std::string& clip : clips.Names()) {
      benchmark::DoNotOptimize(WriteSceneToClip(clip, scene, OldScene::kClear, settings));
    }
  }
}

void ReadRows(benchmark::State& state) {
  const Clips& clips = ClipsOf(state.range(0));
  const SceneFinder scenes(PlainStory(state.range(0)), "story");
  for (auto _ : state) {
    benchmark::DoNotOptimize(ReadClipTable(clips.Table(), clips.Source(), scenes));
  }
}

// Every row names one sidecar, and a scene that several scenes could be.
void ReadFaultyRows(benchmark::State& state) {
  const Clips& clips = ClipsOf(1);
  const SceneFinder scenes(PlainStory(state.range(0)), "story");
  std::string table = "clip,scene\n";
  for (std::int64_t i = 1; i <= state.range(0); ++i) {
    table += "clip1.mov," + std::to_string(i) + '\n';
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(ReadClipTable(table, clips.Source(), scenes));
  }
}

template <typename Work>
void OverStory(benchmark::State& state, Work work) {
  const zelstoryparser::TavroStory& story = PlainStory(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(work(story));
}
void LoadScenes(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(StoryOf(state.range(0)));
}
void FindScenes(benchmark::State& state) {
  OverStory(state, [&state](const auto& story) {
    const SceneFinder scenes(story, "story");
    for (std::int64_t i = 1; i <= state.range(0); ++i) {
      benchmark::DoNotOptimize(scenes.Find(SceneKey::kID, "s" + std::to_string(i)));
    }
    return scenes.HasNumbers();
  });
}
void ScenesList(benchmark::State& state) {
  OverStory(state, [](const auto& story) { return ListScenes(story); });
}
void CharactersList(benchmark::State& state) {
  OverStory(state, ListCharacters);
}
void ReportPage(benchmark::State& state) {
  OverStory(state, [](const auto& story) { return zelstory::MakeReportPage(story, {"", ""}, {}); });
}

// The longer the story, the longer its longest cell.
void AlignedList(benchmark::State& state) {
  const auto length = static_cast<std::size_t>(state.range(0));
  const Table table = ListScenes(*StoryOf(state.range(0), std::string(10 * length, 'X')));
  for (auto _ : state) {
    std::ostringstream output;
    zelstory::PrintColumns(table, output);
    benchmark::DoNotOptimize(output.str());
  }
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  for (std::int64_t size = 1'000; size <= 16'000; size *= 2) benchmark->Arg(size);
  benchmark->Unit(benchmark::kMillisecond);
}
BENCHMARK(FindSidecars)->Apply(Sizes);
BENCHMARK(ChangeClips)->Apply(Sizes);
BENCHMARK(ReadRows)->Apply(Sizes);
BENCHMARK(ReadFaultyRows)->Apply(Sizes);
BENCHMARK(LoadScenes)->Apply(Sizes);
BENCHMARK(FindScenes)->Apply(Sizes);
BENCHMARK(ScenesList)->Apply(Sizes);
BENCHMARK(CharactersList)->Apply(Sizes);
BENCHMARK(ReportPage)->Apply(Sizes);
BENCHMARK(AlignedList)->Apply(Sizes);

}  // namespace
