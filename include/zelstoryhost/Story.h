#pragma once

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Export.h>
#include <zelstoryhost/Finding.h>
#include <zelstoryparser/StoryTree.h>

// Story files. All functions may be called from several threads at once; a tree belongs to one
// thread at a time.
namespace zelstoryhost {

// Where the paragraphs of a story's body begin in the script that was read: a list for each scene.
using BodyPositions = std::vector<std::vector<zelcore::xml::Position>>;

// What became of a story file or another script: a tree, or its first fault.
struct StoryResult {
  boost::intrusive_ptr<zelstoryparser::TavroStory> mStory;  // null after a fault
  std::optional<Error> mFault;
  std::vector<Finding> mFindings{};  // of a script that is no story document
  BodyPositions mPositions{};        // empty after a fault

  explicit operator bool() const { return !mFault; }
};

// Reads a story file. A fault names the tag, or the place where the XML is malformed, with line,
// column and the place in the story; it has no position when the file could not be opened, or is a
// directory, a device or a pipe. A document without a root is a fault. Throws nothing but
// std::bad_alloc.
[[nodiscard]] ZELSTORYHOST_API StoryResult ReadStory(const std::filesystem::path& file);

// Reads a story from a stream, to its end; `name` stands for it in faults.
[[nodiscard]] ZELSTORYHOST_API StoryResult ReadStory(std::istream& stream, const std::string& name);

// Reads a story document in memory; `name` stands for it in faults.
[[nodiscard]] ZELSTORYHOST_API StoryResult ReadStory(std::string_view bytes,
                                                     const std::string& name);

// Reads a story file and returns its tree, never null. Throws Error where ReadStory has a fault.
ZELSTORYHOST_API boost::intrusive_ptr<zelstoryparser::TavroStory> LoadStory(
    const std::filesystem::path& file);

// The scenes of the story's body, in order; none when it has no body or the body has no section.
ZELSTORYHOST_API std::vector<boost::intrusive_ptr<zelstoryparser::Scene>> BodyScenes(
    const zelstoryparser::TavroStory& story);

}  // namespace zelstoryhost
