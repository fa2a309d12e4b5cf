#pragma once

#include <algorithm>

#include <zelcore/xml/AbstractParseHandler.h>

#include "support/Text.h"

// Drives a handler by a text: <name a='v'>, <name/> and </name>, balanced or not; ^ and $ for the
// start and the end of the document; | parts two pieces of character data.
namespace eventscript {

inline void DriveTag(std::string_view tag, zelcore::xml::AbstractParseHandler& handler) {
  if (tag.front() == '/') return handler.EndElement(Utf16(tag.substr(1)));
  const bool isEmpty = tag.back() == '/';
  if (isEmpty) tag.remove_suffix(1);
  const zelcore::UTF16String name = Utf16(tag.substr(0, tag.find(' ')));
  std::map<zelcore::UTF16String, zelcore::UTF16String> attributes;
  for (std::size_t space = tag.find(' '); space < tag.size();) {
    const std::size_t equals = tag.find("='", space);
    const std::size_t quote = tag.find('\'', equals + 2);
    attributes[Utf16(tag.substr(space + 1, equals - space - 1))] =
        Utf16(tag.substr(equals + 2, quote - equals - 2));
    space = tag.find(' ', quote);
  }
  handler.StartElement(name, attributes);
  if (isEmpty) handler.EndElement(name);
}

}  // namespace eventscript

inline void Drive(std::string_view script, zelcore::xml::AbstractParseHandler& handler) {
  while (!script.empty()) {
    std::size_t length = 1;
    if (script[0] == '<') {
      length = script.find('>') + 1;
      eventscript::DriveTag(script.substr(1, length - 2), handler);
    } else if (script[0] == '^') {
      handler.StartDocument();
    } else if (script[0] == '$') {
      handler.EndDocument();
    } else if (script[0] != '|') {
      length = std::min(script.find_first_of("<^$|"), script.size());
      handler.Characters(Utf16(script.substr(0, length)));
    }
    script.remove_prefix(length);
  }
}
