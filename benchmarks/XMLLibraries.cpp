// Compares how fast XML libraries read a story, with handlers that do nothing.
#include <algorithm>
#include <functional>
#include <memory>

#include <benchmark/benchmark.h>
#include <expat.h>
#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "StoryGenerator.h"

namespace {

const std::string& Document() {
  static const std::string document = GenerateStory(20u << 20);
  return document;
}

xmlSAXHandler NothingToDo() {
  xmlSAXHandler handler{};
  handler.initialized = XML_SAX2_MAGIC;
  handler.startElementNs = [](void*, const xmlChar*, const xmlChar*, const xmlChar*, int,
                              const xmlChar**, int, int, const xmlChar**) {};
  handler.endElementNs = [](void*, const xmlChar*, const xmlChar*, const xmlChar*) {};
  handler.characters = [](void*, const xmlChar*, int) {};
  return handler;
}

void InChunks(std::size_t chunkBytes, const std::function<void(const char*, int, bool)>& feed) {
  const std::string& document = Document();
  for (std::size_t at = 0; at < document.size(); at += chunkBytes) {
    const std::size_t count = std::min(chunkBytes, document.size() - at);
    feed(document.data() + at, static_cast<int>(count), at + count == document.size());
  }
}

void Libxml2Push(benchmark::State& state) {
  xmlSAXHandler handler = NothingToDo();
  for (auto _ : state) {
    int nothing = 0;
    xmlParserCtxtPtr context = xmlCreatePushParserCtxt(&handler, &nothing, nullptr, 0, nullptr);
    InChunks(static_cast<std::size_t>(state.range(0)),
             [&](const char* bytes, int count, bool last) {
               xmlParseChunk(context, bytes, count, last ? 1 : 0);
             });
    if (context->wellFormed != 1) state.SkipWithError("not well-formed");
    xmlFreeParserCtxt(context);
  }
}
BENCHMARK(Libxml2Push)->Arg(4 << 10)->Arg(16 << 10)->Arg(64 << 10)->Arg(1 << 20);

void Libxml2Pull(benchmark::State& state) {
  xmlSAXHandler handler = NothingToDo();
  for (auto _ : state) {
    int nothing = 0;
    const int status = xmlSAXUserParseMemory(&handler, &nothing, Document().data(),
                                             static_cast<int>(Document().size()));
    if (status != 0) state.SkipWithError("not well-formed");
  }
}
BENCHMARK(Libxml2Pull);

void ExpatPush(benchmark::State& state) {
  for (auto _ : state) {
    XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetElementHandler(
        parser, [](void*, const char*, const char**) {}, [](void*, const char*) {});
    XML_SetCharacterDataHandler(parser, [](void*, const char*, int) {});
    InChunks(64 << 10, [&](const char* bytes, int count, bool last) {
      if (XML_Parse(parser, bytes, count, last ? 1 : 0) != XML_STATUS_OK) {
        state.SkipWithError("not well-formed");
      }
    });
    XML_ParserFree(parser);
  }
}
BENCHMARK(ExpatPush);

// Uses its fastest scanner, which supports neither DTD nor schema. It delivers UTF-16, so its time
// includes the conversion that the others' events still need.
void XercesWellFormedness(benchmark::State& state) {
  using namespace xercesc;
  XMLPlatformUtils::Initialize();
  {
    DefaultHandler nothing;
    const std::unique_ptr<SAX2XMLReader> reader(XMLReaderFactory::createXMLReader());
    reader->setContentHandler(&nothing);
    reader->setErrorHandler(&nothing);
    XMLCh* const scanner = const_cast<XMLCh*>(XMLUni::fgWFXMLScanner);
    reader->setProperty(XMLUni::fgXercesScannerName, scanner);
    MemBufInputSource source(reinterpret_cast<const XMLByte*>(Document().data()), Document().size(),
                             "story");
    source.setCopyBufToStream(false);
    for (auto _ : state) reader->parse(source);  // throws if it is not well-formed
  }
  XMLPlatformUtils::Terminate();
}
BENCHMARK(XercesWellFormedness);

}  // namespace
