#include "formats/fdx/FDXElements.h"

#include <algorithm>
#include <array>

namespace zelstoryhost {
namespace {

using namespace zelstoryparser;

// The first type of a kind is the one that is written. Names are as the programs write them.
constexpr std::array<FDXType, 17> kTypes{{
    {"Scene Heading", kSceneHeading, TypeMeaning::kSame},
    {"Action", kAction, TypeMeaning::kSame},
    {"Character", kCharacter, TypeMeaning::kSame},
    {"Dialogue", kDialog, TypeMeaning::kSame},
    {"Parenthetical", kParenthetical, TypeMeaning::kSame},
    {"Shot", kShot, TypeMeaning::kSame},
    {"Transition", kTransition, TypeMeaning::kSame},
    {"Unknown", kUnknownElement, TypeMeaning::kSame},  // of no program, so that it is told apart
    {"General", kAction, TypeMeaning::kSame},
    {"Cast List", kAction, TypeMeaning::kNearest},
    {"New Act", kAction, TypeMeaning::kNearest},
    {"End of Act", kAction, TypeMeaning::kNearest},
    {"Cold Opening", kAction, TypeMeaning::kNearest},
    {"Teaser", kAction, TypeMeaning::kNearest},
    {"Show/Ep. Title", kAction, TypeMeaning::kNearest},
    {"Lyrics", kDialog, TypeMeaning::kSung},
    {"Singing", kDialog, TypeMeaning::kSung},
}};

struct AreaRule {
  std::string_view mName;
  FDXArea mAround, mArea;
};

using enum FDXArea;
constexpr std::array<AreaRule, 13> kAreas{{
    {"Content", kDocument, kScript},
    {"DualDialogue", kScript, kScript},
    {"OmittedScene", kScript, kHidden},
    {"SceneProperties", kScript, kSceneProperties},
    {"SceneProperties", kHidden, kSceneProperties},
    {"Summary", kSceneProperties, kSummary},
    {"ScriptNotes", kDocument, kScriptNotes},
    {"ScriptNote", kScriptNotes, kScriptNote},
    {"ScriptNote", kScript, kScriptNote},
    {"ScriptNote", kHidden, kScriptNote},
    {"TitlePage", kDocument, kTitlePage},
    {"Content", kTitlePage, kTitleLines},
    {"TagData", kDocument, kTags},
}};

// Their texts repeat those of the script, or say how the program shows, prints and types it.
constexpr std::array<std::string_view, 22> kIgnoredElements{"Actors",
                                                            "AltCollection",
                                                            "Cast",
                                                            "CharacterHighlighting",
                                                            "ElementSettings",
                                                            "HeaderAndFooter",
                                                            "LockedPages",
                                                            "Macros",
                                                            "MoresAndContinueds",
                                                            "PageLayout",
                                                            "Revisions",
                                                            "SceneNumberOptions",
                                                            "ScriptNoteDefinitions",
                                                            "SmartType",
                                                            "SpellCheck",
                                                            "SpellCheckIgnoreLists",
                                                            "SplitState",
                                                            "TargetScriptLength",
                                                            "TextState",
                                                            "Watermarking",
                                                            "WindowState",
                                                            "Writers"};

}  // namespace

const FDXType* FindFDXType(std::string_view name) {
  const auto* const found = std::find_if(kTypes.begin(), kTypes.end(),
                                         [&](const auto& type) { return type.mName == name; });
  return found == kTypes.end() ? nullptr : found;
}

const FDXType& FDXTypeOf(ParagraphElementType kind) {
  return *std::find_if(kTypes.begin(), kTypes.end(),
                       [&](const auto& type) { return type.mKind == kind; });
}

std::optional<FDXArea> FDXAreaOf(std::string_view name, FDXArea around) {
  if (around == kIgnored || around == kForeign) return std::nullopt;
  const auto* const rule = std::find_if(kAreas.begin(), kAreas.end(), [&](const AreaRule& known) {
    return known.mName == name && known.mAround == around;
  });
  if (rule != kAreas.end()) return rule->mArea;
  if (std::ranges::find(kIgnoredElements, name) != kIgnoredElements.end()) return kIgnored;
  return around == kDocument ? std::optional(kForeign) : std::nullopt;
}

}  // namespace zelstoryhost
