#pragma once

#include <optional>
#include <string>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelstoryhost/SidecarEdit.h>

#include "options/CommandLine.h"
#include "options/HeadingOption.h"

namespace zelstory {

// How --dry-run announces that the clip's present scene is removed first.
inline constexpr const char* kClearsFirst =
    "removes the clip's old scene first (--merge keeps what the new one lacks)";

// A difference as --dry-run prints it: PATH: BEFORE -> AFTER
std::string Describe(const zelstoryhost::Difference& difference);

// How --dry-run says that the packet's form would not be kept.
std::string DescribeRewriting(const zelstoryhost::SidecarChange& change);

// The options of the commands that change sidecars, and the changes themselves. The sidecar "-"
// reads standard input and writes standard output. Functions that fail throw Error and leave the
// sidecar as it was.
class EditOptions {
 public:
  // Adds --dry-run, --diff, --force, --no-wait and --sidecar-name; AddWriteOptions adds --merge and
  // --headings for commands that write. The object must outlive the parsing.
  void AddTo(Command& command);
  void AddWriteOptions(Command& command);

  // Reads the file that --headings names. Call it before Write. Throws Error.
  void ReadHeadingRules() { mSettings.mHeadings = mHeadings.Rules(); }

  bool IsDryRun() const { return mSettings.mIsDryRun; }
  std::optional<zelstoryhost::SidecarForm> Form() const { return mSettings.mForm; }

  // Writes a scene into the sidecar of a clip.
  zelstoryhost::SidecarChange Write(const std::string& clipOrSidecar,
                                    const boost::intrusive_ptr<zelstoryparser::Scene>& scene) const;

  // Removes any scene from the sidecar of a clip.
  zelstoryhost::SidecarChange Clear(const std::string& clipOrSidecar,
                                    zelstoryhost::WhenAbsent whenAbsent) const;

  // Prints the touched paths, or "unchanged", each after `label`; with --dry-run, the differences.
  // Prints nothing when standard output carries the packet.
  void Print(const zelstoryhost::SidecarChange& change, const std::string& label) const;

 private:
  zelstoryhost::EditSettings Settings() const;
  zelstoryhost::SidecarChange Counted(zelstoryhost::SidecarChange change) const;
  template <typename Make>
  zelstoryhost::SidecarChange EditStandardInput(Make make) const;

  zelstoryhost::EditSettings mSettings;
  bool mNeverWaits = false;
  bool mMerges = false;
  HeadingOption mHeadings;
};

}  // namespace zelstory
