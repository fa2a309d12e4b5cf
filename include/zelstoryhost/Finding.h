#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <zelcore/xml/Position.h>

namespace zelstoryhost {

enum class Severity {
  kNote,     // understood by a guess, or layout that has no place
  kWarning,  // something that the script says, and the result does not
};

// What a finding is about. The names are for programs, and do not change.
enum class FindingCode {
  kFormat,  // of a script's format: all findings of readers and writers
  kUnknownSetting,
  kUnknownTime,
  kOtherReading,
  kDuplicateSceneNumber,
  kMissingSceneNumber,
  kNameSpelling,
  kExtensionSpelling,
  kDialogueWithoutName,
  kNameWithoutDialogue,
  kMissingIdentifier,
};

struct FindingCodeName {
  FindingCode mCode;
  std::string_view mName;  // ASCII
};

inline constexpr std::array<FindingCodeName, 11> kFindingCodes{{
    {FindingCode::kFormat, "format"},
    {FindingCode::kUnknownSetting, "unknown-setting"},
    {FindingCode::kUnknownTime, "unknown-time"},
    {FindingCode::kOtherReading, "other-reading"},
    {FindingCode::kDuplicateSceneNumber, "duplicate-scene-number"},
    {FindingCode::kMissingSceneNumber, "missing-scene-number"},
    {FindingCode::kNameSpelling, "name-spelling"},
    {FindingCode::kExtensionSpelling, "extension-spelling"},
    {FindingCode::kDialogueWithoutName, "dialogue-without-name"},
    {FindingCode::kNameWithoutDialogue, "name-without-dialogue"},
    {FindingCode::kMissingIdentifier, "missing-identifier"},
}};

constexpr std::string_view NameOf(FindingCode code) {
  std::string_view name;
  for (const FindingCodeName& known : kFindingCodes) {
    if (known.mCode == code) name = known.mName;
  }
  return name;
}

// What a script says and a story, or another format, has no place for. Not an error: the rest is
// read or written. What occurs many times is one finding, with the place of the first. CheckStory
// finds in the same form what deserves a second look.
struct Finding {
  Severity mSeverity = Severity::kNote;
  std::string mText;                                  // UTF-8, one line
  std::optional<zelcore::xml::Position> mPosition{};  // in the script that was read
  std::string mWhere{};  // in the story that was written or checked: "body, scene 12A, paragraph 7"
  FindingCode mCode = FindingCode::kFormat;
};

}  // namespace zelstoryhost
