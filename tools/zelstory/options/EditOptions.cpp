#include "options/EditOptions.h"

#include <iostream>

#include <zelstoryhost/Files.h>

#include "options/SidecarOptions.h"
#include "terminal/Batch.h"
#include "terminal/Console.h"
#include "terminal/Escaped.h"
#include "terminal/Input.h"

namespace zelstory {

using zelstoryhost::Difference;
using zelstoryhost::EditSettings;
using zelstoryhost::MetadataValue;
using zelstoryhost::OldScene;
using zelstoryhost::Sidecar;
using zelstoryhost::SidecarChange;
using zelstoryhost::WhenAbsent;

namespace {

std::string DescribeValue(const MetadataValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return Quoted(*text);
  if (std::holds_alternative<zelstoryhost::StructValue>(value)) return "(struct)";
  const auto* items = std::get_if<std::int64_t>(&value);
  if (items == nullptr) return "(none)";
  return '(' + std::to_string(*items) + (*items == 1 ? " item)" : " items)");
}

}  // namespace

std::string Describe(const Difference& difference) {
  return difference.mPath + ": " + DescribeValue(difference.mBefore) + " -> " +
         DescribeValue(difference.mAfter);
}

std::string DescribeRewriting(const SidecarChange& change) {
  return "writes the whole packet anew: " + change.mWhyRewritten;
}

void EditOptions::AddTo(Command& command) {
  mSettings.mWaiting.mNote = PrintNote;
  mSettings.mWaiting.mCheck = Batch::StopIfAsked;
  mSettings.mFinder = std::make_shared<zelstoryhost::SidecarFinder>();
  const Option dryRun =
      command.AddFlag("--dry-run", mSettings.mIsDryRun,
                      "Print old and new values, one path per line; change nothing");
  command
      .AddFlag("--diff", mSettings.mWantsDiff,
               "With --dry-run: print how the file's lines would change, as diff -u does")
      .Needs(dryRun);
  command.AddFlag("--force", mSettings.mForce,
                  "Also change sidecars that are write-protected, have hard links, or hold a\n"
                  "packet marked read-only");
  command.AddFlag("--no-wait", mNeverWaits,
                  "Fail instead of waiting while another process changes the folder");
  AddSidecarNameOption(command, mSettings.mForm);
}

void EditOptions::AddWriteOptions(Command& command) {
  command.AddFlag("--merge", mMerges,
                  "Keep properties of the clip's old scene that the new one lacks");
  mHeadings.AddTo(command);
}

template <typename Make>
SidecarChange EditOptions::EditStandardInput(Make make) const {
  const std::string name(kStandardStream);
  Sidecar sidecar = Sidecar::FromBytes(zelstoryhost::ReadStream(std::cin, name), name);
  SidecarChange change = make(sidecar);
  if (change.mIsChanged && !mSettings.mForce) sidecar.RefuseProtected();
  if (mSettings.mIsDryRun) {
    Preview(sidecar, mSettings.mWantsDiff, change);
  } else {
    std::cout << sidecar.NewBytes();
  }
  return change;
}

SidecarChange EditOptions::Write(const std::string& clipOrSidecar,
                                 const boost::intrusive_ptr<zelstoryparser::Scene>& scene) const {
  const OldScene oldScene = mMerges ? OldScene::kMerge : OldScene::kClear;
  if (clipOrSidecar == kStandardStream) {
    return EditStandardInput([&](Sidecar& sidecar) {
      return WriteScene(scene, oldScene, sidecar, mSettings.mHeadings);
    });
  }
  return Counted(WriteSceneToClip(clipOrSidecar, scene, oldScene, Settings()));
}

SidecarChange EditOptions::Clear(const std::string& clipOrSidecar, WhenAbsent whenAbsent) const {
  if (clipOrSidecar == kStandardStream) return EditStandardInput(zelstoryhost::ClearScene);
  return Counted(ClearSceneFromClip(clipOrSidecar, whenAbsent, Settings()));
}

SidecarChange EditOptions::Counted(SidecarChange change) const {
  if (change.mIsChanged && !IsDryRun()) CountWrittenFile();
  return change;
}

EditSettings EditOptions::Settings() const {
  EditSettings settings = mSettings;
  if (mNeverWaits) settings.mWaiting.mLimit = std::chrono::milliseconds(0);
  return settings;
}

void EditOptions::Print(const SidecarChange& change, const std::string& label) const {
  if (change.mSidecar == kStandardStream && !IsDryRun()) return;
  if (!change.mIsChanged) return PrintResult(label, Tone::kFaint, "unchanged");
  if (!IsDryRun()) {
    for (const std::string& path : change.PathTexts()) PrintLine(label + path);
    return;
  }
  if (change.mClearsFirst) PrintLine(label + kClearsFirst);
  if (!change.mWhyRewritten.empty()) PrintLine(label + DescribeRewriting(change));
  if (!change.mDiff.empty()) return PrintDiff(change.mDiff);
  for (const Difference& difference : change.mDifferences) PrintLine(label + Describe(difference));
}

}  // namespace zelstory
