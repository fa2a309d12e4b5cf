#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <zelcore/xml/Position.h>

// What XML says about characters and names, over UTF-8 text. Pure functions.
namespace xmptoolkit {

// What NextCharacter returns for bytes that are not well-formed.
inline constexpr char32_t kMalformed = 0xFFFFFFFF;

// Reads the character at `position`, which must be inside `text`, and moves `position` past it.
// Returns kMalformed, and leaves `position` alone, when it is not well-formed.
char32_t NextCharacter(std::string_view text, std::size_t& position);

// The byte where the first character begins that is malformed or that XML 1.0 cannot represent, not
// even as a reference; npos when there is none.
std::size_t FindUnfitForXML(std::string_view text);

// The byte where the first malformed character begins; npos when the text is well-formed.
std::size_t FindMalformed(std::string_view text);

// True for a name without colon (NCName of Namespaces in XML 1.0).
bool IsNCName(std::string_view text);

// True for the names that XML reserves: those that begin with "xml" in any case.
bool IsReservedName(std::string_view name);

// True for text that has only spaces, tabs, line feeds and carriage returns; so also for no text.
bool IsWhiteSpace(std::string_view text);

// Appends a value as the content of an element, so that an XML reader gets back the same
// characters. `newline` is written for each line feed: what XML reads as one.
void AppendEscapedText(std::string_view value, std::string& xml, std::string_view newline = "\n");

// Appends a value as the content of an attribute in quotes, double or single ones.
void AppendEscapedAttribute(std::string_view value, std::string& xml, char quote = '"');

// A text for a message: in double quotes, cut off after 100 bytes, malformed bytes shown as "?".
std::string Quoted(std::string_view text);

// "line:column: ", the beginning of a message.
std::string Describe(const zelcore::xml::Position& position);

}  // namespace xmptoolkit
