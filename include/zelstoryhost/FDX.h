#pragma once

#include <zelstoryhost/ScriptFormats.h>

// FDX, an XML form of screenplays with the root FinalDraft. docs/formats.md says what becomes of
// each element. Both functions may be called from several threads at once.
namespace zelstoryhost {

// Reads an FDX script of the versions 1 to 6; `source` stands for it in faults, which are
// malformed XML and another root. Throws nothing but std::bad_alloc.
[[nodiscard]] ZELSTORYHOST_API StoryResult ReadFDX(std::string_view bytes,
                                                   const std::string& source);

// Writes a story as an FDX script, so that ReadFDX finds the same scenes, numbers, kinds and texts.
// The findings name what FDX has no place for. Throws Error, with the place in the story, for
// characters that XML cannot hold; `name` stands for the script there.
[[nodiscard]] ZELSTORYHOST_API WrittenScript WriteFDX(const zelstoryparser::TavroStory& story,
                                                      const std::string& name);

}  // namespace zelstoryhost
