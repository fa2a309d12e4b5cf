#include <zelcore/xml/AbstractParseHandler.h>

namespace zelcore::xml {

// Out of line, so that the class has its virtual table in one place.
AbstractParseHandler::~AbstractParseHandler() = default;

}  // namespace zelcore::xml
