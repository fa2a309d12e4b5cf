#include <algorithm>
#include <cstddef>
#include <mutex>
#include <new>
#include <string>
#include <utility>

#include <libxml/parserInternals.h>

#include <zelcore/xml/EncodingCheck.h>
#include <zelcore/xml/libxml/Callbacks.h>
#include <zelcore/xml/libxml/ParseState.h>
#include <zelcore/xml/libxml/Views.h>

namespace zelcore::xml {
namespace {

constexpr int kOptions = XML_PARSE_NOENT | XML_PARSE_NONET;

std::string Encode(std::string_view ascii, UnicodeForm form) {
  std::string bytes;
  for (const char c : ascii) {
    const std::size_t begin = bytes.size();
    bytes.append(UnitSize(form), '\0');
    bytes[IsBigEndian(form) ? bytes.size() - 1 : begin] = c;
  }
  return bytes;
}

}  // namespace

// libxml2 requires this before its first use by several threads. What it has no memory for then, it
// would lack from then on.
void ParseState::InitialiseLibrary() {
  static std::mutex mutex;
  static bool isInitialised = false;
  const std::lock_guard lock(mutex);  // std::call_once needs memory to pass an exception on
  if (isInitialised) return;
  const ErrorTrap trap(mErrors);
  xmlInitParser();
  isInitialised = !mOutcome.HasNoMemory();
  if (isInitialised) return;
  xmlCleanupParser();  // the next document initialises it again
  throw std::bad_alloc();
}

ParseState::ParseState(SAXEvents& events) : mDelivery(events, mContexts, mInput, mLimits) {
  InitialiseLibrary();
  const ErrorTrap trap(mErrors);
  xmlSAXHandler handler = MakeHandler();
  mContexts.Own(xmlCreatePushParserCtxt(&handler, nullptr, nullptr, 0, nullptr));
  if (mContexts.Document() == nullptr) throw std::bad_alloc();
  mContexts.Document()->_private = this;
  xmlCtxtUseOptions(mContexts.Document(), kOptions);
}

// Tells libxml2 how to decode the document's first bytes, and returns those to be fed.
std::string_view ParseState::Begin(std::string_view bytes, bool isWhole) {
  const DetectedForm detected = DetectForm(bytes);
  const std::string_view text = bytes.substr(detected.mMarkBytes);
  if (auto fault = CheckEncoding(detected, text, isWhole)) throw Refusal{*std::move(fault)};
  mForm = detected.mForm;
  if (mForm == UnicodeForm::kUTF8) return bytes;  // libxml2 knows the mark
  Decode();
  return text;
}

// For a form that has been compared with the declaration, which libxml2 would otherwise believe in
// the middle of the document, whatever the order of the bytes.
void ParseState::Decode() {
  xmlCharEncodingHandlerPtr decoder = xmlFindCharEncodingHandler(NameOf(mForm));
  if (decoder == nullptr) mInput.Refuse(std::string("this system cannot decode ") + NameOf(mForm));
  xmlSwitchToEncoding(mContexts.Document(), decoder);
  xmlCtxtUseOptions(mContexts.Document(), kOptions | XML_PARSE_IGNORE_ENC);
}

void ParseState::Parse(std::string_view bytes) {
  xmlParseChunk(mContexts.Document(), bytes.data(), static_cast<int>(bytes.size()), 0);
}

// libxml2 parses an internal subset only when it has seen its end, which one quotation mark too few
// hides. At the end of a document, it is therefore shown an end, after each delimiter that may be
// missing: then it finds the fault in its place.
void ParseState::CloseSubset() {
  mInput.CheckConversion();
  mInput.MarkEnd();
  for (const char* closing : {">]>", "\">]>", "'>]>", "-->]>", "?>]>"}) {
    if (HasStopped() || mContexts.Document()->instate != XML_PARSER_DTD) return;
    Parse(Encode(closing, mForm));
  }
}

void ParseState::End() {
  const bool isInSubset = mContexts.Document()->instate == XML_PARSER_DTD && mContexts.Input();
  if (isInSubset) mOutcome.Try([this] { CloseSubset(); });
  if (!HasStopped()) xmlParseChunk(mContexts.Document(), nullptr, 0, 1);
}

bool ParseState::Feed(std::string_view bytes, bool isLast) {
  mLimits.Read(bytes.size());
  mInput.DropRead();
  const ErrorTrap trap(mErrors);
  if (!std::exchange(mHasBegun, true)) mOutcome.Try([&] { bytes = Begin(bytes, isLast); });
  if (HasStopped()) return false;
  Parse(bytes);
  if (isLast) End();
  if (HasStopped()) return false;
  mOutcome.Try([&] { CheckProgress(isLast); });
  return !HasStopped() && mContexts.Document()->wellFormed == 1;
}

// What libxml2 has read without an event.
void ParseState::CheckProgress(bool isLast) {
  mInput.Follow();
  if (isLast) mInput.CheckConversion();
  // libxml2 finds a name ever more slowly among many.
  const int names = std::max(xmlDictSize(mContexts.Document()->dict), 0);
  mInput.Enforce(DocumentLimits::CheckNames(static_cast<std::size_t>(names)));
  const xmlParserInput* input = mContexts.Input();
  if (input == nullptr) return;
  mInput.Enforce(DocumentLimits::CheckPending(View(input->cur, input->end)));
}

std::optional<SyntaxError> ParseState::Finish(bool anyBytes) {
  const xmlParserCtxt& document = *mContexts.Document();
  if (!HasStopped() && !anyBytes) mOutcome.Fail({{}, "the document is empty"});
  if (!HasStopped() && document.wellFormed != 1) {
    mOutcome.Fail({mInput.ReadingPosition(), "the document is not well-formed"});
  }
  if (!HasStopped()) mDelivery.EndCDATASection();
  if (document.errNo == XML_ERR_NO_MEMORY) mOutcome.LackMemory();
  return mOutcome.Take();
}

}  // namespace zelcore::xml
