#pragma once

#include <iosfwd>
#include <string>

#include <xmptoolkit/XMP.h>

namespace zelstory {

// Prints any metadata as an indented tree: one property per line, its kind in parentheses (struct,
// bag, seq, alt), values in quotation marks, items by number, qualifiers with a question mark;
// names and values are escaped (terminal/Escaped.h).
void PrintXMP(const TXMPMeta<std::string>& metadata, std::ostream& output);

// Prints the same as JSON: {"properties": [NODE...]}, where a node has "name" (not in items),
// "namespace", "kind" (simple, uri, struct, bag, seq, alt), then "value", "fields" or "items", and
// "qualifiers" if there are any.
void PrintXMPAsJSON(const TXMPMeta<std::string>& metadata, std::ostream& output);

}  // namespace zelstory
