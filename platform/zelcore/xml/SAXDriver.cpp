#include <algorithm>
#include <exception>
#include <istream>
#include <memory>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/xmlerror.h>

#include <zelcore/xml/SAXDriver.h>
#include <zelcore/xml/TextWindow.h>

namespace zelcore::xml {
namespace {

constexpr std::size_t kChunkBytes = 65'536;

std::string_view View(const xmlChar* text) {
  return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

std::string_view View(const xmlChar* begin, const xmlChar* end) {
  return {reinterpret_cast<const char*>(begin), static_cast<std::size_t>(end - begin)};
}

// The XML library's messages end in a line feed and may hold more of them.
std::string OneLine(const char* message) {
  std::string line = message == nullptr ? "unknown error" : message;
  while (!line.empty() && (line.back() == '\n' || line.back() == ' ')) line.pop_back();
  std::replace(line.begin(), line.end(), '\n', ' ');
  return line;
}

struct ContextDeleter {
  void operator()(xmlParserCtxt* context) const {
    if (context->myDoc != nullptr) xmlFreeDoc(context->myDoc);
    xmlFreeParserCtxt(context);
  }
};

}  // namespace

// Many of the library's functions know no parse: where they find no memory they say so to the
// thread at large (by default on standard error), and their callers go on and complain of what they
// then miss.
class ErrorTrap {
 public:
  explicit ErrorTrap(bool& hasNoMemory)
      : mHasNoMemory(hasNoMemory),
        mFunction(xmlStructuredError),
        mContext(xmlStructuredErrorContext) {
    xmlSetStructuredErrorFunc(this, Catch);
  }
  ~ErrorTrap() { xmlSetStructuredErrorFunc(mContext, mFunction); }
  ErrorTrap(const ErrorTrap&) = delete;
  ErrorTrap& operator=(const ErrorTrap&) = delete;

 private:
  static void Catch(void* context, xmlErrorPtr error) {
    const ErrorTrap& trap = *static_cast<ErrorTrap*>(context);
    if (error->code == XML_ERR_NO_MEMORY) trap.mHasNoMemory = true;
    if (trap.mFunction != nullptr) trap.mFunction(trap.mContext, error);
  }

  bool& mHasNoMemory;
  const xmlStructuredErrorFunc mFunction;
  void* const mContext;
};

// The state of one parse, reached from the XML library's callbacks through _private. The text of an
// entity is parsed in a context of its own, so callbacks may come from another context than ours.
class ParseState {
 public:
  explicit ParseState(SAXEvents& events);

  static ParseState& Of(void* context) {
    return *static_cast<ParseState*>(static_cast<xmlParserCtxt*>(context)->_private);
  }

  // Runs a piece of a callback: nothing after a stop, and no exception may cross the C library.
  template <typename Action>
  void Guard(void* context, Action action) {
    if (mHalted) return;
    mInner = static_cast<xmlParserCtxt*>(context);
    try {
      action();
    } catch (...) {
      mException = std::current_exception();
      Halt();
    }
  }

  void Halt() {
    mHalted = true;
    if (mInner != nullptr && mInner != mContext.get()) xmlStopParser(mInner);
    xmlStopParser(mContext.get());
  }

  void Refuse(std::string reason) {
    if (!mError) mError = SyntaxError{CurrentPosition(), std::move(reason)};
    Halt();
  }

  // Where the library reads in the document; in the text of an entity, behind the reference to it.
  Position ReadingPosition() const {
    const xmlParserInput* input = mContext ? mContext->input : nullptr;
    if (input == nullptr) return {};
    return IsConverted(*input) ? Position{input->line, input->col} : mWindow.At(OffsetOf(*input));
  }

  Position CurrentPosition() const {
    return mInTag && mInner == mContext.get() && mContext->input != nullptr
               ? TagPosition(*mContext->input)
               : ReadingPosition();
  }

  // The library reads at or behind a tag's end when it reports the tag; no "<" can stand inside a
  // tag, so the last one before is the tag's own.
  Position TagPosition(const xmlParserInput& input) const {
    if (!IsConverted(input)) return mWindow.At(mWindow.LastTagBefore(OffsetOf(input)));
    const std::string_view read = View(input.base, input.cur);
    const std::size_t tag = read.rfind('<');
    const std::size_t newline = read.rfind('\n', tag);
    if (tag == std::string_view::npos || newline == std::string_view::npos) {
      return ReadingPosition();
    }
    const std::size_t lineStart = newline + 1;
    TextWindow line;
    line.Append(read.substr(lineStart));
    const auto newlines =
        std::count(read.begin() + static_cast<std::ptrdiff_t>(tag), read.end(), '\n');
    return {input.line - newlines, line.At(tag - lineStart).mColumn};
  }

  // The library converts other encodings than UTF-8 before it reads, so that its offsets are not
  // the document's.
  static bool IsConverted(const xmlParserInput& input) {
    return input.buf != nullptr && input.buf->encoder != nullptr;
  }

  static std::size_t OffsetOf(const xmlParserInput& input) {
    return input.consumed + static_cast<std::size_t>(input.cur - input.base);
  }

  std::string ReasonOf(const xmlError& error) const {
    // The library takes a document that is cut off for one with something behind its end.
    const bool endsEarly = error.code == XML_ERR_DOCUMENT_END && !mRootEnded;
    if (endsEarly) return "the document ends before its root element does";
    if (error.code == XML_ERR_ENTITY_LOOP) return "entities expand too far, or refer to themselves";
    // It has that name for whatever does not begin like one, too.
    if (error.code == XML_ERR_DOCUMENT_EMPTY) return "the document does not begin with markup";
    return OneLine(error.message);
  }

  // Keeps documents from growing far beyond what was read: by entities that multiply each other, or
  // by long default attributes of short tags.
  void Account(std::size_t bytes) {
    mDelivered += bytes;
    if (mDelivered > 4 * mFed + kMostExpandedBytes) Refuse("entities expand beyond the limit");
  }

  void StartElement(const xmlChar* localName, const xmlChar* prefix, const xmlChar* uri,
                    int namespaceCount, const xmlChar** namespaces, int attributeCount,
                    const xmlChar** attributes);
  void EndCDATASection();
  bool Feed(std::string_view bytes, bool isLast);
  std::optional<SyntaxError> Finish(bool anyBytes);

  SAXEvents& mEvents;
  std::unique_ptr<xmlParserCtxt, ContextDeleter> mContext;
  xmlParserCtxt* mInner = nullptr;
  std::exception_ptr mException;
  std::optional<SyntaxError> mError;
  TextWindow mWindow;
  std::size_t mDepth = 0;
  std::size_t mFed = 0;
  std::size_t mDelivered = 0;
  bool mRootEnded = false;
  bool mHalted = false;
  bool mInTag = false;
  bool mInCDATA = false;
  bool mHasNoMemory = false;
  std::vector<NamespaceView> mDeclarations;
  std::vector<AttributeView> mAttributes;
};

void ParseState::StartElement(const xmlChar* localName, const xmlChar* prefix, const xmlChar* uri,
                              int namespaceCount, const xmlChar** namespaces, int attributeCount,
                              const xmlChar** attributes) {
  if (++mDepth > kMostOpenElements) {
    return Refuse("more than " + std::to_string(kMostOpenElements) + " elements are open");
  }
  mDeclarations.clear();
  for (const xmlChar** entry = namespaces; namespaceCount > 0; --namespaceCount, entry += 2) {
    mDeclarations.push_back({View(entry[0]), View(entry[1])});
  }
  mAttributes.clear();
  std::size_t bytes = 1;
  // Five entries an attribute: local name, prefix, URI, first byte of the value, end of the value.
  for (const xmlChar** entry = attributes; attributeCount > 0; --attributeCount, entry += 5) {
    mAttributes.push_back(
        {{View(entry[1]), View(entry[0]), View(entry[2])}, View(entry[3], entry[4])});
    bytes += mAttributes.back().mValue.size() + 1;
  }
  Account(bytes);
  if (!mHalted)
    mEvents.StartElement({View(prefix), View(localName), View(uri)}, mDeclarations, mAttributes);
}

void ParseState::EndCDATASection() {
  if (!std::exchange(mInCDATA, false)) return;
  mEvents.EndCDATA();
}

namespace {

void OnStartElement(void* context, const xmlChar* localName, const xmlChar* prefix,
                    const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                    int attributeCount, int /*defaultedCount*/, const xmlChar** attributes) {
  ParseState& state = ParseState::Of(context);
  state.Guard(context, [&] {
    state.EndCDATASection();
    state.mInTag = true;
    state.StartElement(localName, prefix, uri, namespaceCount, namespaces, attributeCount,
                       attributes);
    state.mInTag = false;
  });
}

void OnEndElement(void* context, const xmlChar* /*localName*/, const xmlChar* /*prefix*/,
                  const xmlChar* /*uri*/) {
  ParseState& state = ParseState::Of(context);
  state.Guard(context, [&] {
    state.EndCDATASection();
    state.mRootEnded = --state.mDepth == 0;
    state.mInTag = true;
    state.mEvents.EndElement();
    state.mInTag = false;
  });
}

void OnCharacters(void* context, const xmlChar* text, int length) {
  ParseState& state = ParseState::Of(context);
  state.Guard(context, [&] {
    state.EndCDATASection();
    state.Account(static_cast<std::size_t>(length));
    if (!state.mHalted) state.mEvents.Characters(View(text, text + length));
  });
}

// The library hands a long section over in pieces, each where it stands in the input.
bool BeginsSection(const xmlParserInput& input, const xmlChar* text) {
  constexpr std::string_view kOpening = "<![CDATA[";
  return text != input.cur || View(input.base, input.cur).ends_with(kOpening);
}

void OnCDATA(void* context, const xmlChar* text, int length) {
  ParseState& state = ParseState::Of(context);
  state.Guard(context, [&] {
    if (BeginsSection(*static_cast<xmlParserCtxt*>(context)->input, text)) state.EndCDATASection();
    if (!std::exchange(state.mInCDATA, true)) state.mEvents.StartCDATA();
    state.Account(static_cast<std::size_t>(length));
    if (!state.mHalted && length > 0) state.mEvents.Characters(View(text, text + length));
  });
}

void OnComment(void* context, const xmlChar* text) {
  ParseState& state = ParseState::Of(context);
  state.Guard(context, [&] {
    state.EndCDATASection();
    state.mEvents.Comment(View(text));
  });
}

void OnProcessingInstruction(void* context, const xmlChar* target, const xmlChar* data) {
  ParseState& state = ParseState::Of(context);
  state.Guard(context, [&] {
    state.EndCDATASection();
    state.mEvents.ProcessingInstruction(View(target), View(data));
  });
}

void OnInternalSubset(void* context, const xmlChar* name, const xmlChar* publicID,
                      const xmlChar* systemID) {
  ParseState& state = ParseState::Of(context);
  state.Guard(context, [&] { state.mEvents.Doctype(); });
  if (!state.mHalted) xmlSAX2InternalSubset(context, name, publicID, systemID);
}

// Every reference to an entity comes through here, also those inside other entities.
xmlEntityPtr FindEntity(void* context, const xmlChar* name, xmlEntityPtr entity) {
  ParseState& state = ParseState::Of(context);
  const bool isExternal = entity != nullptr && entity->etype != XML_INTERNAL_GENERAL_ENTITY &&
                          entity->etype != XML_INTERNAL_PARAMETER_ENTITY &&
                          entity->etype != XML_INTERNAL_PREDEFINED_ENTITY;
  state.Guard(context, [&] {
    // The text may be expanded inside an attribute, where no event tells of it until it is too
    // late.
    constexpr std::size_t kCostOfReference = 32;
    const int length = entity == nullptr ? 0 : std::max(entity->length, 0);
    state.Account(kCostOfReference + static_cast<std::size_t>(length));
    if (isExternal) {
      state.Refuse("entity '" + std::string(View(name)) +
                   "' is external; external entities are never read");
    }
  });
  return state.mHalted ? nullptr : entity;
}

xmlEntityPtr OnGetEntity(void* context, const xmlChar* name) {
  return FindEntity(context, name, xmlSAX2GetEntity(context, name));
}

xmlEntityPtr OnGetParameterEntity(void* context, const xmlChar* name) {
  return FindEntity(context, name, xmlSAX2GetParameterEntity(context, name));
}

// Fatal errors stop the library by themselves. An undeclared entity may be a mere warning to it
// (the declaration could stand in an external part), but its text would be lost.
void OnError(void* context, xmlErrorPtr error) {
  // Without memory, a context may complain before it has been given its state.
  if (static_cast<xmlParserCtxt*>(context)->_private == nullptr) return;
  ParseState& state = ParseState::Of(context);
  const bool losesText =
      error->code == XML_ERR_UNDECLARED_ENTITY || error->code == XML_WAR_UNDECLARED_ENTITY;
  if (state.mError || (error->level != XML_ERR_FATAL && !losesText)) return;
  // The library may have counted lines further than it says that it has read.
  Position position = state.ReadingPosition();
  if (context == state.mContext.get() && error->line > position.mLine) {
    position = {error->line, std::max(error->int2, 1)};
  }
  try {
    state.mError = SyntaxError{position, state.ReasonOf(*error)};
  } catch (...) {
    state.mException = std::current_exception();
  }
  state.mHalted = true;
}

xmlSAXHandler MakeHandler() {
  xmlSAXHandler handler{};
  xmlSAXVersion(&handler, 2);
  handler.internalSubset = OnInternalSubset;
  handler.externalSubset = nullptr;
  handler.resolveEntity = nullptr;
  handler.getEntity = OnGetEntity;
  handler.getParameterEntity = OnGetParameterEntity;
  handler.attributeDecl = nullptr;
  handler.elementDecl = nullptr;
  handler.reference = nullptr;
  handler.startElementNs = OnStartElement;
  handler.endElementNs = OnEndElement;
  handler.characters = OnCharacters;
  handler.ignorableWhitespace = OnCharacters;
  handler.cdataBlock = OnCDATA;
  handler.comment = OnComment;
  handler.processingInstruction = OnProcessingInstruction;
  handler.serror = OnError;
  return handler;
}

void InitialiseLibrary() {
  static std::once_flag once;  // the library asks for it before its first use by several threads
  std::call_once(once, xmlInitParser);
}

}  // namespace

ParseState::ParseState(SAXEvents& events) : mEvents(events) {
  InitialiseLibrary();
  const ErrorTrap trap(mHasNoMemory);
  xmlSAXHandler handler = MakeHandler();
  mContext.reset(xmlCreatePushParserCtxt(&handler, nullptr, nullptr, 0, nullptr));
  if (!mContext) throw std::bad_alloc();
  mContext->_private = this;
  xmlCtxtUseOptions(mContext.get(), XML_PARSE_NOENT | XML_PARSE_NONET);
}

// Returns whether more is wanted.
bool ParseState::Feed(std::string_view bytes, bool isLast) {
  mFed += bytes.size();
  if (mContext->input != nullptr && !IsConverted(*mContext->input)) {
    mWindow.DropBefore(OffsetOf(*mContext->input));
    mWindow.Append(bytes);
  }
  const ErrorTrap trap(mHasNoMemory);
  xmlParseChunk(mContext.get(), bytes.data(), static_cast<int>(bytes.size()), isLast ? 1 : 0);
  const xmlParserInput* input = mContext->input;
  if (!mHalted && input != nullptr &&
      input->end - input->cur > static_cast<std::ptrdiff_t>(kMostMarkupBytes)) {
    Refuse("a tag, a comment or other markup is longer than the limit");
  }
  // The library finds a name ever more slowly among many.
  if (!mHalted && xmlDictSize(mContext->dict) > static_cast<int>(kMostNames)) {
    Refuse("more than " + std::to_string(kMostNames) + " different names are used");
  }
  return !mHalted && mContext->wellFormed == 1;
}

std::optional<SyntaxError> ParseState::Finish(bool anyBytes) {
  if (!mException && !mError && !anyBytes) mError = SyntaxError{{}, "the document is empty"};
  const bool noMemory = mHasNoMemory || mContext->errNo == XML_ERR_NO_MEMORY;
  if (!mException && !mError && mContext->wellFormed != 1) {
    mError = SyntaxError{ReadingPosition(), "the document is not well-formed"};
  }
  if (!mException && !mError) EndCDATASection();
  mContext.reset();
  mInner = nullptr;
  if (noMemory) throw std::bad_alloc();  // whatever the receiver made of what was missing
  if (mException) std::rethrow_exception(std::exchange(mException, nullptr));
  return std::move(mError);
}

SAXDriver::SAXDriver(SAXEvents& events) : mEvents(events) {}

SAXDriver::~SAXDriver() = default;

// Runs `feed` over a state of its own, which goes with the parse however it ends.
template <typename FeedAll>
std::optional<SyntaxError> SAXDriver::Run(FeedAll feedAll) {
  mState = std::make_unique<ParseState>(mEvents);
  struct Ending {
    ~Ending() { mState.reset(); }
    std::unique_ptr<ParseState>& mState;
  } ending{mState};
  const bool anyBytes = feedAll(*mState);
  return mState->Finish(anyBytes);
}

std::optional<SyntaxError> SAXDriver::ParseBuffer(std::string_view bytes) {
  return Run([bytes](ParseState& state) {
    std::string_view rest = bytes;
    bool wantsMore = !rest.empty();
    while (wantsMore) {
      const std::string_view chunk = rest.substr(0, kChunkBytes);
      rest.remove_prefix(chunk.size());
      wantsMore = state.Feed(chunk, rest.empty()) && !rest.empty();
    }
    return !bytes.empty();
  });
}

std::optional<SyntaxError> SAXDriver::ParseStream(std::istream& stream) {
  return Run([&stream](ParseState& state) {
    std::vector<char> chunk(kChunkBytes);
    bool anyBytes = false;
    bool wantsMore = true;
    while (wantsMore) {
      stream.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
      const auto count = static_cast<std::size_t>(stream.gcount());
      if (stream.bad()) state.Refuse("reading failed");
      anyBytes = anyBytes || count > 0 || stream.bad();
      const bool isLast = count < chunk.size();
      wantsMore = anyBytes && state.Feed({chunk.data(), count}, isLast) && !isLast;
    }
    return anyBytes;
  });
}

Position SAXDriver::CurrentPosition() const {
  return mState ? mState->CurrentPosition() : Position{};
}

}  // namespace zelcore::xml
