// Measures whether the cost per item and per property stays the same however many there are.
#include <string>

#include <benchmark/benchmark.h>

#include <xmptoolkit/XMP.h>
#include <zelstoryparser/zelstoryparser.h>

namespace {

constexpr const char* kSchema = "http://ns.bench.example/";

TXMPMeta<std::string> ManyItems(std::int64_t count) {
  TXMPMeta<std::string> xmp;
  for (std::int64_t i = 0; i < count; ++i) {
    xmp.AppendArrayItem(kSchema, "list", kXMP_PropArrayIsOrdered, "an item's text");
  }
  return xmp;
}

TXMPMeta<std::string> ManyProperties(std::int64_t count) {
  TXMPMeta<std::string> xmp;
  for (std::int64_t i = 0; i < count; ++i) {
    xmp.SetProperty(kSchema, ("p" + std::to_string(i)).c_str(), "a property's text");
  }
  return xmp;
}

// Properties whose names recur: ten per item.
TXMPMeta<std::string> ManyFields(std::int64_t count) {
  TXMPMeta<std::string> xmp;
  for (std::int64_t i = 0; i < count / 10; ++i) {
    xmp.AppendArrayItem(kSchema, "list", kXMP_PropArrayIsOrdered, nullptr, kXMP_PropValueIsStruct);
    for (int field = 0; field < 10; ++field) {
      const std::string path = "list[last()]/bench:f" + std::to_string(field);
      xmp.SetProperty(kSchema, path.c_str(), "a property's text");
    }
  }
  return xmp;
}

template <TXMPMeta<std::string> Make(std::int64_t)>
void Set(benchmark::State& state) {
  TXMPMeta<std::string>::RegisterNamespace(kSchema, "bench", nullptr);
  for (auto _ : state) benchmark::DoNotOptimize(Make(state.range(0)));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <TXMPMeta<std::string> Make(std::int64_t)>
void Serialise(benchmark::State& state) {
  TXMPMeta<std::string>::RegisterNamespace(kSchema, "bench", nullptr);
  const TXMPMeta<std::string> xmp = Make(state.range(0));
  std::string packet;
  for (auto _ : state) xmp.SerializeToBuffer(&packet);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <TXMPMeta<std::string> Make(std::int64_t)>
void Parse(benchmark::State& state) {
  TXMPMeta<std::string>::RegisterNamespace(kSchema, "bench", nullptr);
  std::string packet;
  Make(state.range(0)).SerializeToBuffer(&packet);
  TXMPMeta<std::string> xmp;
  for (auto _ : state) {
    xmp.ParseFromBuffer(packet.data(), static_cast<XMP_StringLen>(packet.size()));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  for (const std::int64_t size : {1'000, 2'000, 4'000, 8'000, 16'000, 100'000})
    benchmark->Arg(size);
  benchmark->Unit(benchmark::kMillisecond);
}
BENCHMARK(Set<ManyItems>)->Apply(Sizes);
BENCHMARK(Set<ManyFields>)->Apply(Sizes);
BENCHMARK(Set<ManyProperties>)->Apply(Sizes);
BENCHMARK(Serialise<ManyItems>)->Apply(Sizes);
BENCHMARK(Serialise<ManyFields>)->Apply(Sizes);
BENCHMARK(Serialise<ManyProperties>)->Apply(Sizes);
BENCHMARK(Parse<ManyItems>)->Apply(Sizes);
BENCHMARK(Parse<ManyFields>)->Apply(Sizes);
BENCHMARK(Parse<ManyProperties>)->Apply(Sizes);

boost::intrusive_ptr<zelstoryparser::Scene> SceneWithSpeeches(std::int64_t count) {
  using namespace zelstoryparser;
  boost::intrusive_ptr<Scene> scene(new Scene);
  for (std::int64_t i = 0; i < count; ++i) {
    for (const ParagraphElementType kind : {kCharacter, kDialog}) {
      boost::intrusive_ptr<Paragraph> paragraph(new Paragraph);
      paragraph->mElementType = kind;
      boost::intrusive_ptr<TextRun> run(new TextRun);
      run->mText = kind == kCharacter ? u"ANNA" : u"The harbour at night.";
      paragraph->mTextRuns.push_back(run);
      scene->mParagraphs.push_back(paragraph);
    }
  }
  return scene;
}

void WriteSpeeches(benchmark::State& state) {
  const auto scene = SceneWithSpeeches(state.range(0));
  for (auto _ : state) {
    TXMPMeta<std::string> xmp;
    std::vector<zelmetadata::Path> changedPaths;
    benchmark::DoNotOptimize(zelstoryparser::WriteSceneMetadataIntoXMP(scene, xmp, changedPaths));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(WriteSpeeches)->Arg(100)->Apply(Sizes);

}  // namespace
