#pragma once

#include <string>
#include <string_view>

// Text from stories, sidecars, tables, file names and the command line, made safe to show. Whatever
// the tool prints for people passes through here.
namespace zelstory {

// The text with an escape in place of each character that would steer a terminal, or that would
// show people another text than there is:
//
//   \n, \t, \r    line feed, tab, carriage return
//   \x1B          other ASCII control characters, U+007F included, and bytes that are not UTF-8
//   \u{9B}        U+0080 to U+009F, line and paragraph separators, bidirectional controls, and
//                 noncharacters
//
// The ASCII characters in `layout` lay out the text and stay. So does everything else, backslashes
// included: file names remain readable, and an escaped text does not change when it is escaped
// again. Where a text must not pass for an escaped one, use Quoted.
std::string Escaped(std::string_view text, std::string_view layout = {});

// The text in quotation marks, escaped as above, and with a backslash before each of its own
// quotation marks and backslashes: no other text is shown like it.
std::string Quoted(std::string_view text);

}  // namespace zelstory
