#pragma once

#include <zelstoryhost/ScriptFormats.h>

// Fountain 1.1, the plain-text form of screenplays. docs/formats.md says what becomes of each
// element. Both functions may be called from several threads at once.
namespace zelstoryhost {

// Reads a Fountain script in UTF-8 or UTF-16; `source` stands for it in faults. Every text is a
// Fountain script; the only fault is that the bytes are no text, with line and column. Throws
// nothing but std::bad_alloc.
[[nodiscard]] ZELSTORYHOST_API StoryResult ReadFountain(std::string_view bytes,
                                                        const std::string& source);

// Writes a story as a Fountain script in UTF-8. Marks and escapes are added where a text would be
// misread, so that ReadFountain finds the same scenes, numbers, kinds and texts; the findings name
// what Fountain has no words for. `name` stands for the script in errors.
[[nodiscard]] ZELSTORYHOST_API WrittenScript WriteFountain(const zelstoryparser::TavroStory& story,
                                                           const std::string& name);

}  // namespace zelstoryhost
