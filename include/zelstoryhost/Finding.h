#pragma once

#include <optional>
#include <string>

#include <zelcore/xml/Position.h>

namespace zelstoryhost {

enum class Severity {
  kNote,     // understood by a guess, or layout that has no place
  kWarning,  // something that the script says, and the result does not
};

// What a script says and a story, or another format, has no place for. Not an error: the rest is
// read or written. What occurs many times is one finding, with the place of the first.
struct Finding {
  Severity mSeverity = Severity::kNote;
  std::string mText;                                  // UTF-8, one line
  std::optional<zelcore::xml::Position> mPosition{};  // in the script that was read
  std::string mWhere{};  // in the story that was written: "body, scene 12A, paragraph 7"
};

}  // namespace zelstoryhost
