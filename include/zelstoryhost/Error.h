#pragma once

#include <optional>
#include <stdexcept>
#include <string>

#include <zelcore/xml/Position.h>
#include <zelstoryhost/Export.h>

namespace zelstoryhost {

// The faults that a host may want to offer a remedy for.
enum class ErrorKind {
  kOther,
  kWriteProtected,   // EditSettings::mForce replaces the file anyway
  kReadOnlyPacket,   // EditSettings::mForce changes the packet anyway
  kSharedSidecar,    // other clips may share the sidecar; a SidecarForm decides
  kSeveralSidecars,  // the clip has several: name one of them, or give a SidecarForm
  kHardLinks,        // EditSettings::mForce parts the file from its other names
  kForeignFile,      // not a file that may be replaced unasked
  kUnknownScene,     // no scene has the number or identifier
};

// The error of the host layer: something in or about a file was refused. Unless a function says
// otherwise, nothing has changed when it throws one. All texts are UTF-8.
class ZELSTORYHOST_API Error : public std::runtime_error {
 public:
  // A fault of the whole file, or, with an empty `file`, of something that has no file.
  Error(const std::string& file, const std::string& reason);

  // A fault at a place in the file, if that is known. A column of 0 means the whole line. `where`
  // may give the place in the story, such as "body, scene 12A, paragraph 7".
  Error(const std::string& file, const std::optional<zelcore::xml::Position>& position,
        const std::string& reason, const std::string& where = {});

  // A fault of the whole file that has a remedy.
  Error(const std::string& file, const std::string& reason, ErrorKind kind);

  // FILE:LINE:COLUMN: error: REASON (WHERE), without the parts that are not known. Valid as long as
  // the error.
  using std::runtime_error::what;

  // The file's name as it was given to the function that failed; may be empty.
  const std::string& File() const { return mFile; }

  // Line and column, both counted from 1; columns count characters.
  const std::optional<zelcore::xml::Position>& Position() const { return mPosition; }

  // The file with line and column: FILE:LINE:COLUMN, FILE:LINE or FILE.
  std::string Place() const;

  const std::string& Reason() const { return mReason; }

  ErrorKind Kind() const { return mKind; }

  // The place in the story; empty when the fault is outside of its streams.
  const std::string& Where() const { return mWhere; }

 private:
  std::string mFile;
  std::optional<zelcore::xml::Position> mPosition;
  std::string mReason;
  std::string mWhere;
  ErrorKind mKind = ErrorKind::kOther;
};

}  // namespace zelstoryhost
