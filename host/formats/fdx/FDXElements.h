#pragma once

#include <optional>
#include <string_view>

#include <zelstoryparser/StoryTree.h>

// The names of FDX that reader and writer share, and what they mean.
namespace zelstoryhost {

inline constexpr std::string_view kFDXRoot = "FinalDraft";

// Attributes that this library adds, and other programs ignore. On a scene heading: it only begins
// a scene that has none, or it belongs to the scene before. On a line of the title page: the key of
// the metadata line that it stands for.
inline constexpr std::string_view kStoryScene = "StoryScene";
inline constexpr std::string_view kBegins = "Begins";
inline constexpr std::string_view kContinues = "Continues";
inline constexpr std::string_view kStoryKey = "StoryKey";

// The category of a story's own tags.
inline constexpr std::string_view kStoryCategory = "Story";

// What a paragraph of some type becomes.
enum class TypeMeaning {
  kSame,
  kNearest,  // of a kind that says less
  kSung,     // dialogue while somebody speaks, otherwise action
};

struct FDXType {
  std::string_view mName;
  zelstoryparser::ParagraphElementType mKind;
  TypeMeaning mMeaning;
};

// The type of this name, as the attribute Type has it; null for one that a template has added.
const FDXType* FindFDXType(std::string_view name);

// The type of the paragraphs of a kind.
const FDXType& FDXTypeOf(zelstoryparser::ParagraphElementType kind);

// The parts of a document, by what their text is.
enum class FDXArea {
  kDocument,         // the root
  kScript,           // Content, and what wraps paragraphs in it
  kHidden,           // an omitted scene
  kSceneProperties,  // and the summary in them:
  kSummary,
  kScriptNotes,  // the list of these:
  kScriptNote,
  kTitlePage,  // and its content:
  kTitleLines,
  kTags,
  kIgnored,  // layout, settings and lists that belong to the program
  kForeign,  // elements of the document that are not known
};

// Whether paragraphs in an area have a text that is kept.
constexpr bool HoldsParagraphs(FDXArea area) {
  return area == FDXArea::kScript || area == FDXArea::kHidden || area == FDXArea::kSummary ||
         area == FDXArea::kScriptNote || area == FDXArea::kTitleLines;
}

// The area that an element of this name begins within another one; none for an element that is
// part of the area around it, or not known.
std::optional<FDXArea> FDXAreaOf(std::string_view name, FDXArea around);

}  // namespace zelstoryhost
