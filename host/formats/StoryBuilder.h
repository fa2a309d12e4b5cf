#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelstoryhost/Story.h>
#include <zelstoryparser/StoryTree.h>

namespace zelstoryhost {

// The names of the comment streams for what a script says beside its text.
inline constexpr std::string_view kNotes = "notes";
inline constexpr std::string_view kSynopses = "synopses";
inline constexpr std::string_view kSections = "sections";
inline constexpr std::string_view kBoneyard = "boneyard";

// Builds the tree of a story from a script, scene by scene. All texts are UTF-8.
//
// Finish gives scenes and paragraphs identifiers that are unique in the tree, and depend on no
// other scene: a scene's is made from its number or, without one, from its own text. The
// identifiers of its paragraphs count from 1 within the scene.
class StoryBuilder {
 public:
  StoryBuilder();

  // Begins a scene. What is added before the first one begins a scene without a number.
  void BeginScene(std::string_view number);

  // Adds a paragraph of one text run to the scene; `position` is its place in the script.
  void Add(zelstoryparser::ParagraphElementType kind, std::string_view text,
           const zelcore::xml::Position& position);

  // The current scene; null before the first.
  zelstoryparser::Scene* CurrentScene() const { return mScene.get(); }

  // Adds a comment to the current scene, in the stream of this name and author.
  void AddComment(std::string_view stream, std::string_view author, std::string_view text);

  zelstoryparser::TavroStory& Story() { return *mStory; }

  // Completes the tree, and returns it with the places of its paragraphs and these findings. Call
  // it once, last.
  StoryResult Finish(std::vector<Finding> findings);

 private:
  struct Comment {
    std::size_t mStream;  // in the document's list
    std::size_t mScene;   // in the body
    std::string mText;
  };

  std::size_t StreamOf(std::string_view name, std::string_view author);
  void Identify(zelstoryparser::Scene& scene);
  void PlaceComments();

  boost::intrusive_ptr<zelstoryparser::TavroStory> mStory;
  boost::intrusive_ptr<zelstoryparser::Section> mBody;
  boost::intrusive_ptr<zelstoryparser::Scene> mScene;
  BodyPositions mPositions;
  std::vector<Comment> mComments;
  std::map<std::pair<std::string, std::string>, std::size_t> mStreams;  // by name and author
  std::map<std::string, int> mIdentifiers;  // of scenes, with the number of the last twin
};

// Whether a scene of the body has an identifier that is none of those that StoryBuilder makes.
bool HasForeignIdentifiers(const zelstoryparser::TavroStory& story);

}  // namespace zelstoryhost
