#pragma once

#include <functional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <xmptoolkit/XMP.h>
#include <zelcore/String.h>
#include <zelmetadata/Path.h>

#include "SidecarName.h"

namespace zelstory {

// What stands at a metadata path before and after a change: a text; for an array, the number of its
// items; null where nothing does.
struct Difference {
  std::string mPath;
  nlohmann::ordered_json mBefore;
  nlohmann::ordered_json mAfter;

  std::string Describe() const;  // PATH: BEFORE -> AFTER
};

// What became of a sidecar.
struct SidecarChange {
  std::string mSidecar;  // the file
  bool mIsChanged = false;
  std::vector<std::string> mTouchedPaths;
  std::vector<Difference> mDifferences;
};

// What the commands that change sidecars have in common: their options, and the way from the file
// through a change back to the file.
class SidecarEdit {
 public:
  // A change of metadata as the library offers it: appends what it touched, and returns an empty
  // text or the reason of its refusal.
  using Change = std::function<zelcore::UTF16String(TXMPMeta<std::string>& metadata,
                                                    std::vector<zelmetadata::Path>& changedPaths)>;

  // Adds --dry-run, --force and --sidecar-name. The object must outlive the parsing.
  void AddOptions(CLI::App& command);

  bool IsDryRun() const { return mDryRun; }
  SidecarForm Form() const { return mForm; }

  // Changes the sidecar of a clip; with --dry-run, the file is left alone. Throws ToolError; the
  // file is then as it was.
  SidecarChange Apply(const std::string& clipOrSidecar, WhenAbsent whenAbsent,
                      const Change& change) const;

  // The same, and prints the touched paths, or "unchanged", each behind
  // `label`; for standard output, the packet instead. With --dry-run, prints old and new values.
  void Run(const std::string& clipOrSidecar, WhenAbsent whenAbsent, const std::string& label,
           const Change& change) const;

 private:
  bool mDryRun = false;
  bool mForce = false;
  SidecarForm mForm = SidecarForm::kFull;
};

}  // namespace zelstory
