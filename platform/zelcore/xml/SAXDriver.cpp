#include <algorithm>
#include <exception>
#include <istream>
#include <memory>
#include <mutex>
#include <new>
#include <tuple>
#include <utility>
#include <vector>

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/xmlerror.h>

#include <zelcore/UTF8.h>
#include <zelcore/xml/CDATAText.h>
#include <zelcore/xml/DocumentLimits.h>
#include <zelcore/xml/DocumentPlace.h>
#include <zelcore/xml/EncodingCheck.h>
#include <zelcore/xml/EntityText.h>
#include <zelcore/xml/SAXDriver.h>

// The only source that knows libxml2: its callbacks, and what has to be known of its inside.
namespace zelcore::xml {
namespace {

constexpr std::size_t kChunkBytes = 65'536;
constexpr const char* kEndsEarly = "the document ends before its root element does";
constexpr int kOptions = XML_PARSE_NOENT | XML_PARSE_NONET;

std::string_view View(const xmlChar* text) {
  return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

std::string_view View(const xmlChar* begin, const xmlChar* end) {
  return {reinterpret_cast<const char*>(begin), static_cast<std::size_t>(end - begin)};
}

std::string_view Content(xmlBufPtr buffer) {
  return {reinterpret_cast<const char*>(xmlBufContent(buffer)), xmlBufUse(buffer)};
}

const xmlChar* Bytes(const std::string& text) {
  return reinterpret_cast<const xmlChar*>(text.c_str());
}

// The twin of an entity (ParseState::DeclareEntity). No document can refer to this name.
std::string NameOfTwin(std::string_view entity) {
  return std::string(entity) + '\r';
}

// `consumed` counts what was dropped before `base`; the bytes up to `cur` have been read.
HeldInput Held(const xmlParserInput& input) {
  return {input.consumed,
          View(input.base, input.end),
          static_cast<std::size_t>(input.cur - input.base),
          {input.line, input.col}};
}

// libxml2's messages end in a line feed and may contain more of them.
std::string OneLine(const char* message) {
  std::string line = message == nullptr ? "unknown error" : message;
  while (!line.empty() && (line.back() == '\n' || line.back() == ' ')) line.pop_back();
  std::replace(line.begin(), line.end(), '\n', ' ');
  return line;
}

std::string Hex(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    ((text += " 0x") += kDigits[value / 16]) += kDigits[value % 16];
  }
  return text;
}

std::string Encode(std::string_view ascii, UnicodeForm form) {
  std::string bytes;
  for (const char c : ascii) {
    const std::size_t begin = bytes.size();
    bytes.append(UnitSize(form), '\0');
    bytes[IsBigEndian(form) ? bytes.size() - 1 : begin] = c;
  }
  return bytes;
}

struct ContextDeleter {
  void operator()(xmlParserCtxt* context) const {
    if (context->myDoc != nullptr) xmlFreeDoc(context->myDoc);
    xmlFreeParserCtxt(context);
  }
};

// Thrown to stop a parse where the driver itself refuses the document.
struct Refusal {
  SyntaxError mError;
};

}  // namespace

// libxml2 reports lack of memory and failed conversions to the thread's error handler, by default
// on standard error, and not to the parser. It then goes on and complains of what it misses, which
// is misleading. While a trap lives, a state receives these reports.
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

// One parse. libxml2's callbacks reach it through the _private of their context, which is the
// document's own or, in the text of an entity, another one.
class ParseState {
 public:
  explicit ParseState(SAXEvents& events);

  static ParseState& Of(void* context) {
    return *static_cast<ParseState*>(static_cast<xmlParserCtxt*>(context)->_private);
  }

  // Parses the next bytes, and returns whether more are wanted.
  bool Feed(std::string_view bytes, bool isLast);

  // The source of the bytes failed.
  void FailToRead() { mError = SyntaxError{CurrentPosition(), "reading failed"}; }

  // Ends the parse. Throws what a receiver has thrown, and std::bad_alloc.
  std::optional<SyntaxError> Finish(bool anyBytes);

  Position CurrentPosition() const;

  // Whether the parse has come to its end early. No event follows then.
  bool HasStopped() const { return mError || mException; }

  // Runs a callback's action: none after a stop, and no exception crosses the C library.
  template <typename Action>
  void Guard(void* context, Action action) {
    if (HasStopped()) return;
    mCurrent = static_cast<xmlParserCtxt*>(context);
    Try([&] {
      FollowInput();
      if (mEnd) RefuseBeyondEnd(ReadingPosition());
      action();
    });
    if (HasStopped()) Halt();
  }

  // What the callbacks do, within Guard. All of them may throw.
  void StartElement(const NameView& name, std::span<const xmlChar*> namespaces,
                    std::span<const xmlChar*> attributes, std::size_t defaulted);
  void EndElement();
  void Characters(std::string_view text);
  void CDATA(std::string_view text, bool beginsSection);
  void Comment(std::string_view text);
  void ProcessingInstruction(std::string_view target, std::string_view data);
  void Doctype() { mEvents.Doctype(); }
  void DeclareAttribute() { Enforce(mLimits.DeclareAttribute()); }
  void ReferTo(std::string_view name, const xmlEntity* entity);
  void DeclareEntity(const std::string& name, std::string_view text);
  xmlEntityPtr ForPlace(std::string_view name, xmlEntityPtr entity) const;

  // These guard themselves.
  void BeginDocument();
  void ReportError(void* context, const xmlError& error);
  void ReportStrayError(const xmlError& error);

 private:
  template <typename Action>
  void Try(Action action) {
    try {
      action();
    } catch (Refusal& refusal) {
      mError = std::move(refusal.mError);
    } catch (...) {
      mException = std::current_exception();
    }
  }

  [[noreturn]] void Refuse(std::string reason) const {
    throw Refusal{{CurrentPosition(), std::move(reason)}};
  }

  void Enforce(DocumentLimits::Fault fault) const {
    if (fault) Refuse(*std::move(fault));
  }

  void InitialiseLibrary();

  // Has libxml2 stop, in the text of an entity too.
  void Halt() {
    if (mCurrent != mContext.get()) xmlStopParser(mCurrent);
    xmlStopParser(mContext.get());
  }

  const xmlParserInput* Input() const;
  std::string_view Begin(std::string_view bytes, bool isWhole);
  void Parse(std::string_view bytes);
  void CloseSubset();
  void End();
  void Declare(const std::string& name, std::string&& text);
  void RefuseBeyondEnd(const Position& position) const;
  void Decode();
  void FollowInput();
  Position ReadingPosition() const;
  void EndCDATASection();
  std::size_t Convert(std::span<const xmlChar*> attributes);
  void CheckConversion();
  std::string ReasonOf(const xmlError& error) const;

  SAXEvents& mEvents;
  std::unique_ptr<xmlParserCtxt, ContextDeleter> mContext;  // of the document
  xmlParserCtxt* mCurrent = nullptr;                        // of the callback; set by the first

  // What has stopped the parse, if anything has.
  std::optional<SyntaxError> mError;
  std::exception_ptr mException;
  bool mHasNoMemory = false;  // libxml2 may go on without

  DocumentPlace mPlace;
  DocumentLimits mLimits;
  CDATAText mCDATA;
  UnicodeForm mForm = UnicodeForm::kUTF8;
  std::optional<Position> mEnd;  // of a document that ends in its internal subset
  bool mHasBegun = false;        // the first bytes have been fed
  bool mIsInTag = false;         // a tag is being reported
  bool mRootEnded = false;       // the root element is complete

  // Of the tag that is being reported; kept for their memory.
  std::vector<NamespaceView> mDeclarations;
  std::vector<AttributeView> mAttributes;
};

void ErrorTrap::Catch(void* context, xmlErrorPtr error) {
  const ErrorTrap& trap = *static_cast<ErrorTrap*>(context);
  trap.mState.ReportStrayError(*error);
  if (trap.mFunction != nullptr) trap.mFunction(trap.mContext, error);
}

// The document; the texts of entities are inputs of their own. Null before it has begun, and once
// libxml2 has given it up.
const xmlParserInput* ParseState::Input() const {
  const bool isThere = mContext && mContext->inputNr > 0 && mContext->inputTab[0]->buf;
  return isThere ? mContext->inputTab[0] : nullptr;
}

void ParseState::FollowInput() {
  if (const xmlParserInput* input = Input()) mPlace.Follow(Held(*input));
}

// Up to where libxml2 has read; in the text of an entity, the place after the reference to it.
Position ParseState::ReadingPosition() const {
  if (mPlace.HasBegun()) return mPlace.Read();
  const xmlParserInput* input = Input();  // no further than the XML declaration
  return input == nullptr ? Position{} : Position{input->line, input->col};
}

// libxml2 reports a tag when it has read it, or nearly. No "<" can be inside a tag, so the last one
// before is the tag's own.
Position ParseState::CurrentPosition() const {
  const bool isDocumentsTag = mIsInTag && mCurrent == mContext.get();
  return isDocumentsTag ? mPlace.LastTag() : ReadingPosition();
}

// Refuses a document whose fault is that it ends, if that is why libxml2 has gone beyond its end.
void ParseState::RefuseBeyondEnd(const Position& position) const {
  if (!mEnd || std::tie(position.mLine, position.mColumn) < std::tie(mEnd->mLine, mEnd->mColumn)) {
    return;
  }
  throw Refusal{{*mEnd, kEndsEarly}};
}

// Refuses a document of which a part could not be converted to UTF-8. libxml2 converts what it is
// fed at once, from `raw` to `buffer`: what is left in `raw` begins with the bytes that failed.
void ParseState::CheckConversion() {
  const xmlParserInput* input = Input();
  if (input == nullptr || input->buf->encoder == nullptr) return;  // UTF-8 is not converted
  const std::string_view rest = Content(input->buf->raw);
  if (rest.empty()) return;
  HeldInput held = Held(*input);
  held.mText = Content(input->buf->buffer);  // `end` may still be that of the piece before
  throw Refusal{{mPlace.EndOf(held),
                 "bytes that are not text in the document encoding:" + Hex(rest.substr(0, 4))}};
}

std::string ParseState::ReasonOf(const xmlError& error) const {
  // libxml2 uses this code for a document that is cut off and for one with more after its end.
  const bool endsEarly = error.code == XML_ERR_DOCUMENT_END && !mRootEnded;
  if (endsEarly) return kEndsEarly;
  if (error.code == XML_ERR_ENTITY_LOOP) return "entities expand too far, or refer to themselves";
  // libxml2 also uses this code for input that does not begin with markup.
  if (error.code == XML_ERR_DOCUMENT_EMPTY) return "the document does not begin with markup";
  return OneLine(error.message);
}

// Called after the XML declaration.
void ParseState::BeginDocument() {
  if (const xmlParserInput* input = Input()) mPlace.Begin(Held(*input));
}

// Stores the attributes and returns what delivering them costs, in bytes.
std::size_t ParseState::Convert(std::span<const xmlChar*> attributes) {
  std::size_t cost = 0;
  mAttributes.clear();
  // Five entries per attribute: local name, prefix, URI, first byte of the value, end of the value.
  for (std::size_t i = 0; i < attributes.size(); i += 5) {
    mAttributes.push_back({{View(attributes[i + 1]), View(attributes[i]), View(attributes[i + 2])},
                           View(attributes[i + 3], attributes[i + 4])});
    cost += mAttributes.back().mValue.size() + 1;
  }
  return cost;
}

void ParseState::StartElement(const NameView& name, std::span<const xmlChar*> namespaces,
                              std::span<const xmlChar*> attributes, std::size_t defaulted) {
  EndCDATASection();
  mIsInTag = true;
  const std::size_t count = attributes.size() / 5;
  // nsNr counts two entries per declaration: prefix, URI.
  Enforce(mLimits.OpenElement(static_cast<std::size_t>(mCurrent->nsNr) / 2, count));
  mDeclarations.clear();
  for (std::size_t i = 0; i < namespaces.size(); i += 2) {
    mDeclarations.push_back({View(namespaces[i]), View(namespaces[i + 1])});
  }
  // libxml2 compares each attribute of a tag with each, and default ones cost the document nothing.
  const std::size_t costOfComparing = defaulted * count / 64;
  Enforce(mLimits.Deliver(1 + costOfComparing + Convert(attributes)));
  mEvents.StartElement(name, mDeclarations, mAttributes);
  mIsInTag = false;
}

void ParseState::EndElement() {
  EndCDATASection();
  mLimits.CloseElement();
  mRootEnded = mLimits.OpenElements() == 0;
  mIsInTag = true;
  mEvents.EndElement();
  mIsInTag = false;
}

void ParseState::Characters(std::string_view text) {
  EndCDATASection();
  Enforce(mLimits.Deliver(text.size()));
  mEvents.Characters(text);
}

void ParseState::CDATA(std::string_view text, bool beginsSection) {
  if (beginsSection) EndCDATASection();
  if (mCDATA.Open()) mEvents.StartCDATA();
  Enforce(mLimits.Deliver(text.size()));
  // libxml2 lets overlong forms of characters pass here.
  if (!utility::IsUTF8(text)) Refuse("a CDATA section is not UTF-8");
  const std::string_view normalised = mCDATA.Normalise(text);
  if (!normalised.empty()) mEvents.Characters(normalised);
}

void ParseState::EndCDATASection() {
  if (mCDATA.Close()) mEvents.EndCDATA();
}

void ParseState::Comment(std::string_view text) {
  EndCDATASection();
  mEvents.Comment(text);
}

void ParseState::ProcessingInstruction(std::string_view target, std::string_view data) {
  EndCDATASection();
  mEvents.ProcessingInstruction(target, data);
}

// `entity` is null when it is not declared.
void ParseState::ReferTo(std::string_view name, const xmlEntity* entity) {
  Enforce(
      mLimits.Refer(entity == nullptr ? 0 : static_cast<std::size_t>(std::max(entity->length, 0))));
  if (entity == nullptr) return;
  const bool isInternal = entity->etype == XML_INTERNAL_GENERAL_ENTITY ||
                          entity->etype == XML_INTERNAL_PARAMETER_ENTITY ||
                          entity->etype == XML_INTERNAL_PREDEFINED_ENTITY;
  if (isInternal) return;
  Refuse("entity '" + std::string(name) + "' is external; external entities are never read");
}

// In the text of an entity, a carriage return comes from a character reference, but libxml2 takes
// it for a line end. Such an entity gets a twin for use in content, whose text keeps the
// references. In attributes, where XML makes a blank of the character but not of a reference, it is
// used itself.
void ParseState::DeclareEntity(const std::string& name, std::string_view text) {
  Declare(name, std::string(text));
  if (text.find('\r') != std::string_view::npos) Declare(NameOfTwin(name), WithReferences(text));
}

// libxml2 does not report that it has no memory for an entity.
void ParseState::Declare(const std::string& name, std::string&& text) {
  xmlSAX2EntityDecl(mCurrent, Bytes(name), XML_INTERNAL_GENERAL_ENTITY, nullptr, nullptr,
                    reinterpret_cast<xmlChar*>(text.data()));
  if (xmlSAX2GetEntity(mCurrent, Bytes(name)) == nullptr) throw std::bad_alloc();
}

// The entity to use at the place of a reference: itself or its twin, or null if it is not declared.
xmlEntityPtr ParseState::ForPlace(std::string_view name, xmlEntityPtr entity) const {
  const bool isInContent = mCurrent->instate != XML_PARSER_ATTRIBUTE_VALUE;
  const bool isInternal = entity != nullptr && entity->etype == XML_INTERNAL_GENERAL_ENTITY;
  if (!isInContent || !isInternal || entity->content == nullptr) return entity;
  const std::string_view text = View(entity->content, entity->content + entity->length);
  if (text.find('\r') == std::string_view::npos) return entity;
  return xmlSAX2GetEntity(mCurrent, Bytes(NameOfTwin(name)));
}

// libxml2 has no message without memory, and takes the name of a namespace that it cannot store to
// be empty. It has just read the name.
bool ShowsShortage(const xmlParserInput* input, const xmlError& error) {
  if (error.message == nullptr) return true;
  const bool isEmptyName =
      error.code == XML_NS_ERR_XML_NAMESPACE &&
      std::string_view(error.message).find("Empty XML namespace") != std::string_view::npos;
  if (!isEmptyName || input == nullptr || input->cur == input->base) return false;
  std::string_view name = View(input->base, input->cur - 1);
  name.remove_prefix(name.rfind(static_cast<char>(input->cur[-1])) + 1);
  return name.find_first_not_of(" \t\r\n") != std::string_view::npos &&
         name.find('&') == std::string_view::npos;
}

// Fatal errors stop libxml2. An undeclared entity may be a mere warning to it, as the declaration
// could be in an external part; but its text would be lost.
void ParseState::ReportError(void* context, const xmlError& error) {
  if (HasStopped()) return;
  if (ShowsShortage(Input(), error)) {
    mHasNoMemory = true;
    return Halt();
  }
  const bool losesText =
      error.code == XML_ERR_UNDECLARED_ENTITY || error.code == XML_WAR_UNDECLARED_ENTITY;
  if (error.level != XML_ERR_FATAL && !losesText) return;
  Try([&] {
    // The text of an entity that has no fault, which would have stopped the parse, lacks memory.
    const bool hasMessage = error.message != nullptr;
    if (hasMessage && std::string_view(error.message).ends_with("' failed to parse\n")) {
      throw std::bad_alloc();
    }
    FollowInput();
    // Bytes that failed to be converted look like the end of the document.
    if (error.code == XML_ERR_DOCUMENT_END) CheckConversion();
    Position position = ReadingPosition();
    // libxml2 may have looked further ahead than it has read.
    if (context == mContext.get() && error.line > position.mLine) {
      position = {error.line, std::max(error.int2, 1)};
    }
    RefuseBeyondEnd(position);
    throw Refusal{{position, ReasonOf(error)}};
  });
}

void ParseState::ReportStrayError(const xmlError& error) {
  if (error.code == XML_ERR_NO_MEMORY) mHasNoMemory = true;
  if (error.code == XML_I18N_CONV_FAILED && !HasStopped()) Try([this] { CheckConversion(); });
}

namespace {

// Runs a callback's action on the state that the callback belongs to.
template <typename Action>
ParseState& OnState(void* context, Action action) {
  ParseState& state = ParseState::Of(context);
  state.Guard(context, [&] { action(state); });
  return state;
}

void OnStartElement(void* context, const xmlChar* localName, const xmlChar* prefix,
                    const xmlChar* uri, int namespaceCount, const xmlChar** namespaces,
                    int attributeCount, int defaultedCount, const xmlChar** attributes) {
  OnState(context, [&](ParseState& state) {
    state.StartElement({View(prefix), View(localName), View(uri)},
                       {namespaces, 2 * static_cast<std::size_t>(namespaceCount)},
                       {attributes, 5 * static_cast<std::size_t>(attributeCount)},
                       static_cast<std::size_t>(defaultedCount));
  });
}

void OnEndElement(void* context, const xmlChar* /*localName*/, const xmlChar* /*prefix*/,
                  const xmlChar* /*uri*/) {
  OnState(context, [](ParseState& state) { state.EndElement(); });
}

void OnCharacters(void* context, const xmlChar* text, int length) {
  OnState(context, [&](ParseState& state) { state.Characters(View(text, text + length)); });
}

// libxml2 delivers a long section in pieces, each at its place in the input; a text elsewhere is a
// whole section, in the text of an entity.
bool BeginsSection(const xmlParserInput& input, const xmlChar* text) {
  constexpr std::string_view kOpening = "<![CDATA[";
  return text != input.cur || View(input.base, input.cur).ends_with(kOpening);
}

void OnCDATA(void* context, const xmlChar* text, int length) {
  const bool begins = BeginsSection(*static_cast<xmlParserCtxt*>(context)->input, text);
  OnState(context, [&](ParseState& state) { state.CDATA(View(text, text + length), begins); });
}

void OnComment(void* context, const xmlChar* text) {
  OnState(context, [&](ParseState& state) { state.Comment(View(text)); });
}

void OnProcessingInstruction(void* context, const xmlChar* target, const xmlChar* data) {
  OnState(context,
          [&](ParseState& state) { state.ProcessingInstruction(View(target), View(data)); });
}

void OnStartDocument(void* context) {
  ParseState::Of(context).BeginDocument();
  xmlSAX2StartDocument(context);
}

void OnInternalSubset(void* context, const xmlChar* name, const xmlChar* publicID,
                      const xmlChar* systemID) {
  const ParseState& state = OnState(context, [](ParseState& running) { running.Doctype(); });
  if (!state.HasStopped()) xmlSAX2InternalSubset(context, name, publicID, systemID);
}

void OnAttributeDeclaration(void* context, const xmlChar* /*element*/, const xmlChar* /*name*/,
                            int /*type*/, int /*kind*/, const xmlChar* /*value*/,
                            xmlEnumerationPtr values) {
  xmlFreeEnumeration(values);
  OnState(context, [](ParseState& state) { state.DeclareAttribute(); });
}

void OnEntityDeclaration(void* context, const xmlChar* name, int type, const xmlChar* publicID,
                         const xmlChar* systemID, xmlChar* content) {
  if (type != XML_INTERNAL_GENERAL_ENTITY) {
    xmlSAX2EntityDecl(context, name, type, publicID, systemID, content);
    return;
  }
  OnState(context,
          [&](ParseState& state) { state.DeclareEntity(std::string(View(name)), View(content)); });
}

// Every reference to an entity comes through here, also those inside other entities.
xmlEntityPtr FindEntity(void* context, const xmlChar* name, xmlEntityPtr entity) {
  const ParseState& state = OnState(context, [&](ParseState& running) {
    entity = running.ForPlace(View(name), entity);
    running.ReferTo(View(name), entity);
  });
  return state.HasStopped() ? nullptr : entity;
}

xmlEntityPtr OnGetEntity(void* context, const xmlChar* name) {
  return FindEntity(context, name, xmlSAX2GetEntity(context, name));
}

xmlEntityPtr OnGetParameterEntity(void* context, const xmlChar* name) {
  return FindEntity(context, name, xmlSAX2GetParameterEntity(context, name));
}

void OnError(void* context, xmlErrorPtr error) {
  // Without memory, a context may complain before it has been given its state.
  if (static_cast<xmlParserCtxt*>(context)->_private == nullptr) return;
  ParseState::Of(context).ReportError(context, *error);
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
  handler.entityDecl = OnEntityDeclaration;
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

}  // namespace

// libxml2 requires this before its first use by several threads. What it has no memory for then, it
// would lack from then on.
void ParseState::InitialiseLibrary() {
  static std::mutex mutex;
  static bool isInitialised = false;
  const std::lock_guard lock(mutex);  // std::call_once needs memory to pass an exception on
  if (isInitialised) return;
  const ErrorTrap trap(*this);
  xmlInitParser();
  isInitialised = !mHasNoMemory;
  if (isInitialised) return;
  xmlCleanupParser();  // the next document initialises it again
  throw std::bad_alloc();
}

ParseState::ParseState(SAXEvents& events) : mEvents(events) {
  InitialiseLibrary();
  const ErrorTrap trap(*this);
  xmlSAXHandler handler = MakeHandler();
  mContext.reset(xmlCreatePushParserCtxt(&handler, nullptr, nullptr, 0, nullptr));
  if (!mContext) throw std::bad_alloc();
  mContext->_private = this;
  xmlCtxtUseOptions(mContext.get(), kOptions);
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
  if (decoder == nullptr) Refuse(std::string("this system cannot decode ") + NameOf(mForm));
  xmlSwitchToEncoding(mContext.get(), decoder);
  xmlCtxtUseOptions(mContext.get(), kOptions | XML_PARSE_IGNORE_ENC);
}

void ParseState::Parse(std::string_view bytes) {
  xmlParseChunk(mContext.get(), bytes.data(), static_cast<int>(bytes.size()), 0);
}

// libxml2 parses an internal subset only when it has seen its end, which one quotation mark too few
// hides. At the end of a document, it is therefore shown an end, after each delimiter that may be
// missing: then it finds the fault in its place.
void ParseState::CloseSubset() {
  CheckConversion();
  mEnd = mPlace.EndOf(Held(*Input()));
  for (const char* closing : {">]>", "\">]>", "'>]>", "-->]>", "?>]>"}) {
    if (!HasStopped() && mContext->instate == XML_PARSER_DTD) Parse(Encode(closing, mForm));
  }
}

void ParseState::End() {
  if (mContext->instate == XML_PARSER_DTD && Input() != nullptr) Try([this] { CloseSubset(); });
  if (!HasStopped()) xmlParseChunk(mContext.get(), nullptr, 0, 1);
}

bool ParseState::Feed(std::string_view bytes, bool isLast) {
  mLimits.Read(bytes.size());
  mPlace.DropRead();
  const ErrorTrap trap(*this);
  if (!std::exchange(mHasBegun, true)) Try([&] { bytes = Begin(bytes, isLast); });
  if (HasStopped()) return false;
  Parse(bytes);
  if (isLast) End();
  if (HasStopped()) return false;
  Try([&] {
    FollowInput();
    if (isLast) CheckConversion();
    // libxml2 finds a name ever more slowly among many.
    Enforce(DocumentLimits::CheckNames(
        static_cast<std::size_t>(std::max(xmlDictSize(mContext->dict), 0))));
    const xmlParserInput* input = Input();
    if (input != nullptr) Enforce(DocumentLimits::CheckPending(View(input->cur, input->end)));
  });
  return !HasStopped() && mContext->wellFormed == 1;
}

std::optional<SyntaxError> ParseState::Finish(bool anyBytes) {
  if (!HasStopped() && !anyBytes) mError = SyntaxError{{}, "the document is empty"};
  if (!HasStopped() && mContext->wellFormed != 1) {
    mError = SyntaxError{ReadingPosition(), "the document is not well-formed"};
  }
  if (!HasStopped()) EndCDATASection();
  const bool hasNoMemory = mHasNoMemory || mContext->errNo == XML_ERR_NO_MEMORY;
  mContext.reset();
  // Lack of memory comes first: any error may be a consequence of it.
  if (hasNoMemory) throw std::bad_alloc();
  if (mException) std::rethrow_exception(std::exchange(mException, nullptr));
  return std::move(mError);
}

SAXDriver::SAXDriver(SAXEvents& events) : mEvents(events) {}

SAXDriver::~SAXDriver() = default;

// Runs `feedAll` with a state of its own, which is destroyed however the parse ends.
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
      if (stream.bad()) {
        state.FailToRead();
        return true;
      }
      const auto count = static_cast<std::size_t>(stream.gcount());
      anyBytes = anyBytes || count > 0;
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
