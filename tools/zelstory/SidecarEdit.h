#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <zelstoryparser/StoryTree.h>

#include "CommandLine.h"
#include "SidecarName.h"

namespace zelstory {

// What a metadata path leads to: nothing, a text, an array of so many items, or a struct.
struct StructValue {
  bool operator==(const StructValue&) const = default;
};
using MetadataValue = std::variant<std::monostate, std::string, std::int64_t, StructValue>;

// A change at a metadata path.
struct Difference {
  std::string mPath;
  MetadataValue mBefore;
  MetadataValue mAfter;

  std::string Describe() const;  // PATH: BEFORE -> AFTER
};

// How --dry-run says that what the clip holds of a scene goes first.
inline constexpr const char* kClearsFirst =
    "clears the scene that it holds first (--merge keeps what the new one lacks)";

// What became of a sidecar.
struct SidecarChange {
  std::string mSidecar;  // the file
  bool mIsChanged = false;
  bool mClearsFirst = false;               // it held a scene, which goes
  std::vector<std::string> mTouchedPaths;  // each once
  std::vector<Difference> mDifferences;    // with --dry-run
};

// What the commands that change sidecars have in common: their options, and the way from the file
// through a change back to the file. Where Clear and Write throw, which is ToolError, the file is
// as it was; with --dry-run, it is left alone.
class SidecarEdit {
 public:
  // Adds --dry-run, --force, --no-wait and --sidecar-name, and --merge for commands that write. The
  // object must outlive the parsing.
  void AddOptions(Command& command);
  void AddMergeOption(Command& command);

  bool IsDryRun() const { return mDryRun; }
  std::optional<SidecarForm> Form() const { return mForm; }

  // Has the sidecar of a clip, created when absent, hold a scene and no other; with --merge, what
  // the scene lacks stays.
  SidecarChange Write(const std::string& clipOrSidecar,
                      const boost::intrusive_ptr<zelstoryparser::Scene>& scene) const;

  // Takes any scene out of the sidecar of a clip.
  SidecarChange Clear(const std::string& clipOrSidecar, WhenAbsent whenAbsent) const;

  // Prints the touched paths, or "unchanged", each after `label`; with --dry-run, the differences.
  // Prints nothing where standard output has the packet.
  void Print(const SidecarChange& change, const std::string& label) const;

 private:
  template <typename Change>
  SidecarChange Apply(const std::string& clipOrSidecar, WhenAbsent whenAbsent, Change make) const;

  bool mDryRun = false;
  bool mForce = false;
  bool mNoWait = false;
  bool mMerge = false;
  std::optional<SidecarForm> mForm;
};

}  // namespace zelstory
