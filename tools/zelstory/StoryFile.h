#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelcore/xml/Reader.h>
#include <zelstoryparser/StoryTree.h>

namespace zelstory {

// What is wrong with a story file.
struct StoryFault {
  // Of the tag at fault, or where the XML is malformed, from 1; none when the file was not opened.
  std::optional<zelcore::xml::Position> mPosition;
  std::string mMessage;  // UTF-8
  // The place in the story: "body, scene 12A, paragraph 7", or "scene at position 3" for a scene
  // without a number. Empty outside streams.
  std::string mWhere;

  // FILE:LINE:COLUMN: error: MESSAGE (WHERE), without what is not known
  std::string Describe(const std::string& file) const;
};

// Reads a story file and returns its first fault, or nothing and the root in `story`. "-" names
// standard input. A document without any root is a fault.
std::optional<StoryFault> ReadStory(const std::string& file,
                                    boost::intrusive_ptr<zelstoryparser::TavroStory>& story);

// Reads a story file that must be faultless. Throws ToolError.
boost::intrusive_ptr<zelstoryparser::TavroStory> LoadStory(const std::string& file);

// Whether a story is read from `file`, under whatever name.
bool IsStoryItself(const std::string& story, const std::filesystem::path& file);

// The scenes of the body, in order; none when there is no body or it has no section.
std::vector<boost::intrusive_ptr<zelstoryparser::Scene>> BodyScenes(
    const zelstoryparser::TavroStory& story);

}  // namespace zelstory
