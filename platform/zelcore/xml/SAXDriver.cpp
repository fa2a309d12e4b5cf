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

#include <zelcore/UTF8.h>
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

// Bytes of the document, or of what the library has made of it in UTF-8.
std::size_t OffsetOf(const xmlParserInput& input) {
  return input.consumed + static_cast<std::size_t>(input.cur - input.base);
}

std::string_view Content(xmlBufPtr buffer) {
  return {reinterpret_cast<const char*>(xmlBufContent(buffer)), xmlBufUse(buffer)};
}

// How many values are quoted in the beginning of a tag.
std::size_t CountValues(std::string_view tag) {
  std::size_t count = 0;
  std::size_t quote = tag.find_first_of("\"'");
  while (quote != std::string_view::npos) {
    const std::size_t end = tag.find(tag[quote], quote + 1);
    if (end == std::string_view::npos) break;
    ++count;
    quote = tag.find_first_of("\"'", end + 1);
  }
  return count;
}

struct ContextDeleter {
  void operator()(xmlParserCtxt* context) const {
    if (context->myDoc != nullptr) xmlFreeDoc(context->myDoc);
    xmlFreeParserCtxt(context);
  }
};

}  // namespace

class ParseState;

// Many of the library's functions know no parse: where they find no memory, or bytes that cannot be
// converted, they say so to the thread at large (by default on standard error), and their callers
// go on and complain of what they then miss.
class ErrorTrap {
 public:
  explicit ErrorTrap(ParseState& state)
      : mState(state), mFunction(xmlStructuredError), mContext(xmlStructuredErrorContext) {
    xmlSetStructuredErrorFunc(this, Catch);
  }
  ~ErrorTrap() { xmlSetStructuredErrorFunc(mContext, mFunction); }
  ErrorTrap(const ErrorTrap&) = delete;
  ErrorTrap& operator=(const ErrorTrap&) = delete;

 private:
  static void Catch(void* context, xmlErrorPtr error);

  ParseState& mState;
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
      FollowInput();
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

  void RefuseMoreThan(std::size_t limit, const char* what) {
    Refuse("more than " + std::to_string(limit) + " " + what);
  }

  // The document; the texts of entities are inputs of their own. Null before it has begun, and when
  // the library has given it up.
  const xmlParserInput* Input() const {
    const bool isThere = mContext && mContext->inputNr > 0 && mContext->inputTab[0]->buf;
    return isThere ? mContext->inputTab[0] : nullptr;
  }

  void FollowInput();
  void Take(std::size_t offset, std::string_view bytes);

  // Up to where the library has read; in the text of an entity, behind the reference to it.
  Position ReadingPosition() const {
    if (mHasWindow) return mWindow.At(mRead);
    const xmlParserInput* input = Input();  // no further than the XML declaration
    return input == nullptr ? Position{} : Position{input->line, input->col};
  }

  // The library reads at or behind a tag's end when it reports the tag; no "<" can stand inside a
  // tag, so the last one before is the tag's own.
  Position CurrentPosition() const {
    const bool isTag = mInTag && mInner == mContext.get();
    return isTag ? mWindow.At(mWindow.LastTagBefore(mRead)) : ReadingPosition();
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
    if (mDelivered > 4 * mFed + kMostExpandedBytes)
      Refuse("entities or default attributes expand beyond the limit");
  }

  void StartElement(const NameView& name, std::span<const xmlChar*> namespaces,
                    std::span<const xmlChar*> attributes, std::size_t defaulted);
  void CDATA(std::string_view text);
  void EndCDATASection();
  void StrayError(const xmlError& error);
  void RefuseUnconverted();
  void CheckLimits();
  bool Feed(std::string_view bytes, bool isLast);
  std::optional<SyntaxError> Finish(bool anyBytes);

  SAXEvents& mEvents;
  std::unique_ptr<xmlParserCtxt, ContextDeleter> mContext;
  xmlParserCtxt* mInner = nullptr;
  std::exception_ptr mException;
  std::optional<SyntaxError> mError;
  TextWindow mWindow;     // in UTF-8, whatever the document's encoding
  std::size_t mRead = 0;  // the offset in the window up to where the library has read
  bool mHasWindow = false;
  std::size_t mDepth = 0;
  std::size_t mDeclaredAttributes = 0;
  std::size_t mFed = 0;
  std::size_t mDelivered = 0;
  bool mRootEnded = false;
  bool mHalted = false;
  bool mInTag = false;
  bool mInCDATA = false;
  bool mEndsInCR = false;  // the piece of a CDATA section before
  std::string mText;       // a piece of a CDATA section with its line ends normalised
  bool mHasNoMemory = false;
  std::vector<NamespaceView> mDeclarations;
  std::vector<AttributeView> mAttributes;
};

void ErrorTrap::Catch(void* context, xmlErrorPtr error) {
  const ErrorTrap& trap = *static_cast<ErrorTrap*>(context);
  trap.mState.StrayError(*error);
  if (trap.mFunction != nullptr) trap.mFunction(trap.mContext, error);
}

void ParseState::StrayError(const xmlError& error) {
  if (error.code == XML_ERR_NO_MEMORY) mHasNoMemory = true;
  if (error.code != XML_I18N_CONV_FAILED || mException) return;
  try {
    RefuseUnconverted();
  } catch (...) {
    mException = std::current_exception();
    mHalted = true;
  }
}

// Refuses a document of which a part could not be converted, where that part begins.
void ParseState::RefuseUnconverted() {
  const xmlParserInput* input = Input();
  if (input == nullptr || input->buf->encoder == nullptr || mError) return;
  const std::string_view rest = Content(input->buf->raw);
  if (rest.empty()) return;
  // In the declaration that names the encoding, the library has put aside what it has read.
  if (!mHasWindow) mWindow.Restart(input->consumed, {input->line, input->col});
  Take(input->consumed, Content(input->buf->buffer));
  std::string reason = "bytes that are no text in the document encoding:";
  for (const char byte : rest.substr(0, 4)) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    ((reason += " 0x") += kDigits[value / 16]) += kDigits[value % 16];
  }
  mError = SyntaxError{mWindow.At(mWindow.End()), std::move(reason)};
  mHalted = true;
}

// Called wherever the library lets go, since it converts by itself what it is fed and drops what it
// has read.
void ParseState::FollowInput() {
  const xmlParserInput* input = Input();
  if (input == nullptr || !mHasWindow) return;
  mRead = OffsetOf(*input);
  if (mWindow.End() < input->consumed) {
    // White space without end goes by in silence: its lines are counted back from here.
    const std::string_view read = View(input->base, input->cur);
    const auto newlines = std::count(read.begin(), read.end(), '\n');
    const auto column = newlines > 0 ? 1 : input->col - static_cast<std::int64_t>(read.size());
    mWindow.Restart(input->consumed, {input->line - newlines, column});
  }
  Take(input->consumed, View(input->base, input->end));
}

// Adds to the window what it has not yet of bytes that begin at `offset`.
void ParseState::Take(std::size_t offset, std::string_view bytes) {
  const std::size_t known = mWindow.End() - std::min(offset, mWindow.End());
  if (known < bytes.size()) mWindow.Append(bytes.substr(known));
}

void ParseState::StartElement(const NameView& name, std::span<const xmlChar*> namespaces,
                              std::span<const xmlChar*> attributes, std::size_t defaulted) {
  if (++mDepth > kMostOpenElements) return RefuseMoreThan(kMostOpenElements, "elements are open");
  // Two entries a declaration: prefix, URI.
  if (mInner->nsNr / 2 > static_cast<int>(kMostAttributes)) {
    return RefuseMoreThan(kMostAttributes, "namespace declarations are in force");
  }
  mDeclarations.clear();
  for (std::size_t i = 0; i < namespaces.size(); i += 2) {
    mDeclarations.push_back({View(namespaces[i]), View(namespaces[i + 1])});
  }
  // Five entries an attribute: local name, prefix, URI, first byte of the value, end of the value.
  const std::size_t count = attributes.size() / 5;
  if (count > kMostAttributes) return RefuseMoreThan(kMostAttributes, "attributes are in a tag");
  mAttributes.clear();
  // The library compares each attribute of a tag with each, and default ones cost no bytes.
  std::size_t cost = 1 + defaulted * count / 64;
  for (std::size_t i = 0; i < attributes.size(); i += 5) {
    mAttributes.push_back({{View(attributes[i + 1]), View(attributes[i]), View(attributes[i + 2])},
                           View(attributes[i + 3], attributes[i + 4])});
    cost += mAttributes.back().mValue.size() + 1;
  }
  Account(cost);
  if (!mHalted) mEvents.StartElement(name, mDeclarations, mAttributes);
}

// The library hands a section over as it stands: its line ends are those of the document, and
// bytes longer than their character needs have passed.
void ParseState::CDATA(std::string_view text) {
  Account(text.size());
  if (!mHalted && !utility::IsUTF8(text)) Refuse("a CDATA section is not UTF-8");
  if (mHalted || text.empty()) return;
  if (mEndsInCR || text.find('\r') != std::string_view::npos) {
    mText.clear();
    for (const char c : text) {
      if (c != '\n' || !mEndsInCR) mText.push_back(c == '\r' ? '\n' : c);
      mEndsInCR = c == '\r';
    }
    text = mText;
  }
  if (!text.empty()) mEvents.Characters(text);
}

void ParseState::EndCDATASection() {
  if (!std::exchange(mInCDATA, false)) return;
  mEndsInCR = false;
  mEvents.EndCDATA();
}

namespace {

void OnStartElement(void* context, const xmlChar* localName, const xmlChar* prefix,
                    const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                    int attributeCount, int defaultedCount, const xmlChar** attributes) {
  ParseState& state = ParseState::Of(context);
  state.Guard(context, [&] {
    state.EndCDATASection();
    state.mInTag = true;
    state.StartElement({View(prefix), View(localName), View(uri)},
                       {namespaces, 2 * static_cast<std::size_t>(namespaceCount)},
                       {attributes, 5 * static_cast<std::size_t>(attributeCount)},
                       static_cast<std::size_t>(defaultedCount));
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
    state.CDATA(View(text, text + length));
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

// Called behind the XML declaration, from which on the encoding stays.
void OnStartDocument(void* context) {
  ParseState& state = ParseState::Of(context);
  if (const xmlParserInput* input = state.Input()) {
    state.mWindow.Restart(OffsetOf(*input), {input->line, input->col});
    state.mHasWindow = true;
  }
  xmlSAX2StartDocument(context);
}

void OnInternalSubset(void* context, const xmlChar* name, const xmlChar* publicID,
                      const xmlChar* systemID) {
  ParseState& state = ParseState::Of(context);
  state.Guard(context, [&] { state.mEvents.Doctype(); });
  if (!state.mHalted) xmlSAX2InternalSubset(context, name, publicID, systemID);
}

void OnAttributeDeclaration(void* context, const xmlChar* /*element*/, const xmlChar* /*name*/,
                            int /*type*/, int /*kind*/, const xmlChar* /*value*/,
                            xmlEnumerationPtr values) {
  xmlFreeEnumeration(values);
  ParseState& state = ParseState::Of(context);
  state.Guard(context, [&] {
    if (++state.mDeclaredAttributes <= kMostAttributes) return;
    state.RefuseMoreThan(kMostAttributes, "attributes are declared");
  });
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
  try {
    state.FollowInput();
    if (error->code == XML_ERR_DOCUMENT_END) state.RefuseUnconverted();
    if (state.mError) return;
    Position position = state.ReadingPosition();
    // The library may have counted lines further than it says that it has read.
    if (context == state.mContext.get() && error->line > position.mLine) {
      position = {error->line, std::max(error->int2, 1)};
    }
    state.mError = SyntaxError{position, state.ReasonOf(*error)};
  } catch (...) {
    state.mException = std::current_exception();
  }
  state.mHalted = true;
}

xmlSAXHandler MakeHandler() {
  xmlSAXHandler handler{};
  xmlSAXVersion(&handler, 2);
  handler.startDocument = OnStartDocument;
  handler.internalSubset = OnInternalSubset;
  handler.externalSubset = nullptr;
  handler.resolveEntity = nullptr;
  handler.getEntity = OnGetEntity;
  handler.getParameterEntity = OnGetParameterEntity;
  handler.attributeDecl = OnAttributeDeclaration;
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
  const ErrorTrap trap(*this);
  xmlSAXHandler handler = MakeHandler();
  mContext.reset(xmlCreatePushParserCtxt(&handler, nullptr, nullptr, 0, nullptr));
  if (!mContext) throw std::bad_alloc();
  mContext->_private = this;
  xmlCtxtUseOptions(mContext.get(), XML_PARSE_NOENT | XML_PARSE_NONET);
}

void ParseState::CheckLimits() {
  // The library finds a name ever more slowly among many.
  if (xmlDictSize(mContext->dict) > static_cast<int>(kMostNames)) {
    return RefuseMoreThan(kMostNames, "different names are used");
  }
  const xmlParserInput* input = Input();
  if (input == nullptr) return;
  // Markup is not reported before it ends.
  const std::string_view pending = View(input->cur, input->end);
  if (pending.size() > kMostMarkupBytes) {
    return Refuse("a tag, a comment or other markup is longer than the limit");
  }
  const bool isTag = pending.starts_with('<') && !pending.starts_with("<!");
  if (isTag && CountValues(pending) > kMostAttributes) {
    RefuseMoreThan(kMostAttributes, "attributes are in a tag");
  }
}

// Returns whether more is wanted.
bool ParseState::Feed(std::string_view bytes, bool isLast) {
  mFed += bytes.size();
  if (mHasWindow) mWindow.DropBefore(mRead);
  const ErrorTrap trap(*this);
  xmlParseChunk(mContext.get(), bytes.data(), static_cast<int>(bytes.size()), isLast ? 1 : 0);
  FollowInput();
  if (isLast) RefuseUnconverted();
  if (!mHalted) CheckLimits();
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
