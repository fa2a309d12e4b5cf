#include <zelcore/xml/AbstractParseHandler.h>

namespace zelcore::xml {

// Out of line, so that the class's virtual table stands in one place.
AbstractParseHandler::~AbstractParseHandler() = default;

}  // namespace zelcore::xml
