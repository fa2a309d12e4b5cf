#pragma once

#include <libxml/parser.h>

namespace zelcore::xml {

// The functions that libxml2 calls back. They pass everything on to the ParseState of their
// context.
xmlSAXHandler MakeHandler();

}  // namespace zelcore::xml
