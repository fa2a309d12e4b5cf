#pragma once

#include <filesystem>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <zelstoryhost/Export.h>
#include <zelstoryhost/Finding.h>
#include <zelstoryhost/Story.h>

// The forms in which people hold scripts. All functions may be called from several threads at once.
namespace zelstoryhost {

// A script as bytes, and what its format could not say of the story.
struct WrittenScript {
  std::string mBytes;
  std::vector<Finding> mFindings{};
};

struct ScriptFormat {
  std::string_view mName;                         // as options have it: "fountain"
  std::string_view mTitle;                        // for people: "Fountain"
  std::span<const std::string_view> mExtensions;  // lower case, ".fountain"; the usual one first

  // Reads a whole script; `source` stands for it in faults. Text is never dropped silently: what
  // has no place in a story is a finding. Throws nothing but std::bad_alloc.
  StoryResult (*mRead)(std::string_view bytes, const std::string& source);

  // Writes a story; `name` stands for the result in errors. Throws Error where the format cannot
  // carry a text at all.
  WrittenScript (*mWrite)(const zelstoryparser::TavroStory& story, const std::string& name);
};

// All formats. They live as long as the process.
ZELSTORYHOST_API std::span<const ScriptFormat> ScriptFormats();

// The format of this name; null when there is none.
ZELSTORYHOST_API const ScriptFormat* FindFormat(std::string_view name);

// The format that a file's extension, in any case, tells; null when none does.
ZELSTORYHOST_API const ScriptFormat* FormatOfName(const std::filesystem::path& file);

// The format of a script that begins with `head`, by its content or, where that does not tell, by
// the file's name. Text of no other format is Fountain, which is plain text; XML of no other one is
// a story. Throws Error for a known form that cannot be read, such as PDF, with what to do.
ZELSTORYHOST_API const ScriptFormat& DetectFormat(std::string_view head, const std::string& file);

// Reads a script file, of the given format or, with null, of the one that is detected. Faults are
// those of ReadStory, and those of the formats.
[[nodiscard]] ZELSTORYHOST_API StoryResult ReadScript(const std::filesystem::path& file,
                                                      const ScriptFormat* format = nullptr);

// Reads a script from a stream, to its end; `name` stands for it in faults.
[[nodiscard]] ZELSTORYHOST_API StoryResult ReadScript(std::istream& stream, const std::string& name,
                                                      const ScriptFormat* format = nullptr);

}  // namespace zelstoryhost
