#pragma once

#include <optional>
#include <string>
#include <string_view>

// The rules of Fountain for single lines, which its reader and its writer share. Lines are UTF-8
// and have no tabs.
namespace zelstoryhost::fountain {

// A text without the blanks around it.
std::string_view Trim(std::string_view text);
std::string_view TrimEnd(std::string_view text);

bool IsBlank(std::string_view line);

// Whether a backslash before the text's first character would make it stand for itself. Letters,
// digits and white space cannot be escaped.
bool IsEscapable(std::string_view text);

// Whether a text ends with a character that no backslash escapes.
bool EndsWith(std::string_view text, char c);

// Scene headings by their first word: INT, EXT, EST, INT./EXT, INT/EXT, EXT/INT, I/E, in any case,
// and a blank or a full stop. Emphasis may begin before it.
bool IsNaturalHeading(std::string_view line);

// Scene headings by one full stop before a letter, a digit, or an escaped character.
bool IsForcedHeading(std::string_view line);

// Takes a scene number, such as #12A#, from the end of a heading. Empty when there is none.
std::string_view TakeSceneNumber(std::string_view& heading);

// Whether a text may stand between the marks of a scene number: letters, digits, - and full stops.
bool IsSceneNumber(std::string_view text);

// Capitals that end in TO:, with nothing after it.
bool IsNaturalTransition(std::string_view line);

// Whether a line names who speaks: capitals, at least one, outside of parentheses.
bool IsNaturalCue(std::string_view line);

bool IsCentred(std::string_view line);        // > THE END <
bool IsParenthetical(std::string_view line);  // (beat)
bool IsPageBreak(std::string_view line);      // three or more =
bool IsSection(std::string_view line);        // # and more
bool IsSynopsis(std::string_view line);       // = and no page break

// Whether a line stands for itself wherever it is, and so ends an action.
bool IsOutline(std::string_view line);

// Whether a line begins, after its blanks, with one of the marks that decide what it is.
bool HasMark(std::string_view line);

// The key of a title page that a line begins with: what stands before its first colon. None for
// indented lines, for marks and for scene headings.
std::optional<std::string_view> TitleKeyIn(std::string_view line);

// Whether the key is one that Fountain proposes: Title, Author and so on, in any case.
bool IsKnownTitleKey(std::string_view key);

// Removes the marks of emphasis (*italics*, **bold**, _underlined_) and the backslashes that escape
// characters. `found` becomes true if there was emphasis.
std::string WithoutMarks(std::string_view line, bool& found);

// The opposite: a line that reads as `text` when its marks are removed, and in which nothing begins
// a note or a boneyard. `escapesFirst`: the first character is escaped in any case.
std::string WithEscapes(std::string_view text, bool escapesFirst = false);

}  // namespace zelstoryhost::fountain
