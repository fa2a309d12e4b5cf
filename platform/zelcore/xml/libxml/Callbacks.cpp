#include <cstddef>
#include <string>
#include <string_view>

#include <libxml/SAX2.h>

#include <zelcore/xml/libxml/Callbacks.h>
#include <zelcore/xml/libxml/ParseState.h>
#include <zelcore/xml/libxml/Views.h>

namespace zelcore::xml {
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
    state.Delivery().StartElement({View(prefix), View(localName), View(uri)},
                                  {namespaces, 2 * static_cast<std::size_t>(namespaceCount)},
                                  {attributes, 5 * static_cast<std::size_t>(attributeCount)},
                                  static_cast<std::size_t>(defaultedCount));
  });
}

void OnEndElement(void* context, const xmlChar* /*localName*/, const xmlChar* /*prefix*/,
                  const xmlChar* /*uri*/) {
  OnState(context, [](ParseState& state) { state.Delivery().EndElement(); });
}

void OnCharacters(void* context, const xmlChar* text, int length) {
  OnState(context,
          [&](ParseState& state) { state.Delivery().Characters(View(text, text + length)); });
}

// libxml2 delivers a long section in pieces, each at its place in the input; a text elsewhere is a
// whole section, in the text of an entity.
bool BeginsSection(const xmlParserInput& input, const xmlChar* text) {
  constexpr std::string_view kOpening = "<![CDATA[";
  return text != input.cur || View(input.base, input.cur).ends_with(kOpening);
}

void OnCDATA(void* context, const xmlChar* text, int length) {
  const bool begins = BeginsSection(*static_cast<xmlParserCtxt*>(context)->input, text);
  OnState(context,
          [&](ParseState& state) { state.Delivery().CDATA(View(text, text + length), begins); });
}

void OnComment(void* context, const xmlChar* text) {
  OnState(context, [&](ParseState& state) { state.Delivery().Comment(View(text)); });
}

void OnProcessingInstruction(void* context, const xmlChar* target, const xmlChar* data) {
  OnState(context, [&](ParseState& state) {
    state.Delivery().ProcessingInstruction(View(target), View(data));
  });
}

void OnStartDocument(void* context) {
  ParseState::Of(context).Input().Begin();
  xmlSAX2StartDocument(context);
}

void OnInternalSubset(void* context, const xmlChar* name, const xmlChar* publicID,
                      const xmlChar* systemID) {
  const ParseState& state =
      OnState(context, [](ParseState& running) { running.Delivery().Doctype(); });
  if (!state.HasStopped()) xmlSAX2InternalSubset(context, name, publicID, systemID);
}

void OnAttributeDeclaration(void* context, const xmlChar* /*element*/, const xmlChar* /*name*/,
                            int /*type*/, int /*kind*/, const xmlChar* /*value*/,
                            xmlEnumerationPtr values) {
  xmlFreeEnumeration(values);
  OnState(context, [](ParseState& state) { state.Delivery().DeclareAttribute(); });
}

void OnEntityDeclaration(void* context, const xmlChar* name, int type, const xmlChar* publicID,
                         const xmlChar* systemID, xmlChar* content) {
  if (type != XML_INTERNAL_GENERAL_ENTITY) {
    xmlSAX2EntityDecl(context, name, type, publicID, systemID, content);
    return;
  }
  OnState(context, [&](ParseState& state) {
    state.Entities().Declare(std::string(View(name)), View(content));
  });
}

// Every reference to an entity comes through here, also those inside other entities.
xmlEntityPtr FindEntity(void* context, const xmlChar* name, xmlEntityPtr entity) {
  const ParseState& state = OnState(context, [&](ParseState& running) {
    entity = running.Entities().ForPlace(View(name), entity);
    running.Entities().ReferTo(View(name), entity);
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
  ParseState::Of(context).Errors().Report(context, *error);
}

}  // namespace

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

}  // namespace zelcore::xml
