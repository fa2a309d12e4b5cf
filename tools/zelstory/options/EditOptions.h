#pragma once

#include <optional>
#include <string>

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <zelstoryhost/SidecarEdit.h>

#include "options/CommandLine.h"

namespace zelstory {

// How --dry-run says that a scene that the clip holds goes first.
inline constexpr const char* kClearsFirst =
    "clears the scene that it holds first (--merge keeps what the new one lacks)";

// A difference as --dry-run prints it: PATH: BEFORE -> AFTER
std::string Describe(const zelstoryhost::Difference& difference);

// The options of the commands that change sidecars, and the changes that they ask for. "-" as a
// sidecar reads standard input and writes standard output. What throws, throws Error; the sidecar
// is then as it was.
class EditOptions {
 public:
  // Adds --dry-run, --force, --no-wait and --sidecar-name; AddMergeOption adds --merge for commands
  // that write. The object must outlive the parsing.
  void AddTo(Command& command);
  void AddMergeOption(Command& command);

  bool IsDryRun() const { return mSettings.mIsDryRun; }
  std::optional<zelstoryhost::SidecarForm> Form() const { return mSettings.mForm; }

  // Has the sidecar of a clip hold a scene.
  zelstoryhost::SidecarChange Write(const std::string& clipOrSidecar,
                                    const boost::intrusive_ptr<zelstoryparser::Scene>& scene) const;

  // Takes any scene out of the sidecar of a clip.
  zelstoryhost::SidecarChange Clear(const std::string& clipOrSidecar,
                                    zelstoryhost::WhenAbsent whenAbsent) const;

  // Prints the touched paths, or "unchanged", each after `label`; with --dry-run, the differences.
  // Prints nothing where standard output has the packet.
  void Print(const zelstoryhost::SidecarChange& change, const std::string& label) const;

 private:
  zelstoryhost::EditSettings Settings() const;
  template <typename Make>
  zelstoryhost::SidecarChange EditStandardInput(Make make) const;

  zelstoryhost::EditSettings mSettings;
  bool mNeverWaits = false;
  bool mMerges = false;
};

}  // namespace zelstory
