#include <algorithm>
#include <cstddef>
#include <new>

#include <libxml/SAX2.h>

#include <zelcore/xml/EntityText.h>
#include <zelcore/xml/libxml/EntityTable.h>
#include <zelcore/xml/libxml/Views.h>

namespace zelcore::xml {
namespace {

// No document can refer to this name.
std::string NameOfTwin(std::string_view entity) {
  return std::string(entity) + '\r';
}

bool NeedsTwin(std::string_view text) {
  return text.find('\r') != std::string_view::npos;
}

}  // namespace

void EntityTable::Declare(const std::string& name, std::string_view text) {
  Store(name, std::string(text));
  if (NeedsTwin(text)) Store(NameOfTwin(name), WithReferences(text));
}

// libxml2 does not report that it has no memory for an entity.
void EntityTable::Store(const std::string& name, std::string&& text) {
  xmlParserCtxt* context = mContexts.Current();
  xmlSAX2EntityDecl(context, Bytes(name), XML_INTERNAL_GENERAL_ENTITY, nullptr, nullptr,
                    reinterpret_cast<xmlChar*>(text.data()));
  if (xmlSAX2GetEntity(context, Bytes(name)) == nullptr) throw std::bad_alloc();
}

xmlEntityPtr EntityTable::ForPlace(std::string_view name, xmlEntityPtr entity) const {
  xmlParserCtxt* context = mContexts.Current();
  const bool isInContent = context->instate != XML_PARSER_ATTRIBUTE_VALUE;
  const bool isInternal = entity != nullptr && entity->etype == XML_INTERNAL_GENERAL_ENTITY;
  if (!isInContent || !isInternal || entity->content == nullptr) return entity;
  if (!NeedsTwin(View(entity->content, entity->content + entity->length))) return entity;
  return xmlSAX2GetEntity(context, Bytes(NameOfTwin(name)));
}

void EntityTable::ReferTo(std::string_view name, const xmlEntity* entity) {
  const int length = entity == nullptr ? 0 : std::max(entity->length, 0);
  mInput.Enforce(mLimits.Refer(static_cast<std::size_t>(length)));
  if (entity == nullptr) return;
  const bool isInternal = entity->etype == XML_INTERNAL_GENERAL_ENTITY ||
                          entity->etype == XML_INTERNAL_PARAMETER_ENTITY ||
                          entity->etype == XML_INTERNAL_PREDEFINED_ENTITY;
  if (isInternal) return;
  mInput.Refuse("entity '" + std::string(name) + "' is external; external entities are never read");
}

}  // namespace zelcore::xml
