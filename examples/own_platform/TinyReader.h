#pragma once

#include <string_view>

#include <zelcore/xml/AbstractParseHandler.h>

// Reads the XML that this host exchanges: UTF-8, elements, attributes, comments and the predefined
// entities; no DOCTYPE and no CDATA section. Returns false if the document has anything else.
bool ReadDocument(std::string_view document, zelcore::xml::AbstractParseHandler& handler);
