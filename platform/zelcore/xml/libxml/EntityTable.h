#pragma once

#include <string>
#include <string_view>

#include <libxml/parser.h>

#include <zelcore/xml/DocumentLimits.h>
#include <zelcore/xml/libxml/Contexts.h>
#include <zelcore/xml/libxml/DocumentInput.h>

namespace zelcore::xml {

// The entities that a document declares.
//
// In the text of an entity, a carriage return comes from a character reference, but libxml2 takes
// it for a line end. Such an entity gets a twin for use in content, whose text keeps the
// references. In attributes, where XML makes a blank of the character but not of a reference, it is
// used itself.
class EntityTable {
 public:
  EntityTable(const Contexts& contexts, const DocumentInput& input, DocumentLimits& limits)
      : mContexts(contexts), mInput(input), mLimits(limits) {}

  // Declares an internal general entity. Throws std::bad_alloc.
  void Declare(const std::string& name, std::string_view text);

  // The entity to use at the place of a reference: itself or its twin, or null if it is not
  // declared.
  xmlEntityPtr ForPlace(std::string_view name, xmlEntityPtr entity) const;

  // Charges a reference to the limits. Throws Refusal, also if the entity is external. `entity` is
  // null when it is not declared.
  void ReferTo(std::string_view name, const xmlEntity* entity);

 private:
  void Store(const std::string& name, std::string&& text);

  const Contexts& mContexts;
  const DocumentInput& mInput;
  DocumentLimits& mLimits;
};

}  // namespace zelcore::xml
