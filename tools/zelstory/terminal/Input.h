#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelstoryhost/ScriptFormats.h>
#include <zelstoryhost/Sidecar.h>
#include <zelstoryhost/Story.h>

// Files as a command line names them: "-" is standard input, and so is any other name of it, such
// as /dev/stdin. A descriptor that the caller passes (/dev/fd/N) is read likewise; no other pipe or
// device is.
namespace zelstory {

// The name that stands for standard input or output.
inline constexpr std::string_view kStandardStream = "-";

// Reads a script in the given format or, with null, the one that its content tells.
zelstoryhost::StoryResult ReadStory(const std::string& file,
                                    const zelstoryhost::ScriptFormat* format);

// The same, printing the findings on standard error. Throws Error.
boost::intrusive_ptr<zelstoryparser::TavroStory> LoadStory(
    const std::string& file, const zelstoryhost::ScriptFormat* format);

// Reads a whole file. Throws Error, also when it does not exist.
std::string ReadText(const std::string& file);

// Reads the sidecar of a clip, which `finder` finds. Throws Error.
zelstoryhost::Sidecar ReadSidecar(const std::string& clipOrSidecar,
                                  std::optional<zelstoryhost::SidecarForm> form,
                                  zelstoryhost::WhenAbsent whenAbsent,
                                  zelstoryhost::SidecarFinder& finder);

// Whether a story is read from `file`, under whatever name. On a system that cannot tell
// which file standard input was opened from, false for "-".
bool IsStoryItself(const std::string& story, const std::filesystem::path& file);

}  // namespace zelstory
