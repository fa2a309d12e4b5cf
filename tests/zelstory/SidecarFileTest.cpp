// Which files the tool changes, and that a change is made whole or not at all.
#include <csignal>
#include <filesystem>
#include <random>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "zelstory/Scratch.h"

namespace {

namespace fs = std::filesystem;
using testing::StartsWith;

class SidecarFileTest : public Scratch {
 protected:
  SidecarFileTest() {
    Write("s.quor", Story("<scene>" + Paragraph("Action", std::string(3000, 'x')) + "</scene>"));
    Tool("write s.quor --position 1 with.xmp; cp with.xmp none.xmp; zelstory clear none.xmp");
  }
};

TEST_F(SidecarFileTest, AClipsNameFindsItsSidecar) {
  struct Case {
    std::string mFiles;
    std::string mArguments;
    std::string mResult;  // the sidecar that is written, or the error
  };
  const Case cases[] = {
      {"c.mov", "c.mov", "c.mov.xmp"},
      {"c.mov", "c.mov --sidecar-name stem", "c.xmp"},
      {"c.mov c.xmp", "c.mov", "c.xmp"},
      {"c.MOV c.XMP", "c.MOV", "c.XMP"},
      {"c.mov c.mov.xMP", "c.mov", "c.mov.xMP"},
      {"c.mov c.mov.xmp", "c.mov --sidecar-name stem", "c.mov.xmp"},
      {"c.mov c.mov.xmp c.xmp", "c.mov",
       "c.mov: error: has several sidecars: c.mov.xmp and c.xmp; name one"},
      {"c.mov c.xmp c.xMp", "c.mov --sidecar-name stem", "c.mov: error: has several sidecars"},
      {"c.mov c.mov.xmp c.xmp", "c.mov --sidecar-name stem", "c.xmp"},
      {"c.mov c.mov.xmp c.xmp", "c.mov --sidecar-name full", "c.mov.xmp"},
      {"c.mov c.avi c.WAV c.mp4 c.xmp", "c.mov",
       "c.mov: error: would share the sidecar c.xmp with c.WAV; --sidecar-name stem shares it, "
       "--sidecar-name full gives the clip its own\n"},
      {"c.mov c.3gp c.xmp", "c.mov --sidecar-name stem", "c.xmp"},
      {"c.mov c.webm c.xmp", "c.mov --sidecar-name full", "c.mov.xmp"},
      {"c.mov c.wav", "c.mov", "c.mov.xmp"},
      {"c.mov c.txt", "c.mov --sidecar-name stem", "c.xmp"},
      {"c.txt", "c.mov", "c.mov: error: No such clip"},
  };
  for (const auto& [files, arguments, result] : cases) {
    SCOPED_TRACE(files + ": " + arguments);
    Run("mkdir D; cd D; for f in " + files +
        "; do case $f in *.[xX]*) cp ../none.xmp $f;; "
        "*) touch $f; esac; done");
    const Outcome outcome = Run("cd D; zelstory write ../s.quor --position 1 " + arguments);
    const bool isWritten = outcome.mErrors.empty();
    EXPECT_THAT(isWritten ? result : outcome.mErrors, StartsWith(result));
    // The first clip's sidecar is looked for by name, that of the next one in the folder's listing.
    const std::string clip = arguments.substr(0, 5), yes = clip + ": yes\n";
    EXPECT_EQ(
        Run("cd D; grep -l xxx *; zelstory has " + clip + ' ' + arguments + "; rm -r ../D").mOutput,
        isWritten ? result + '\n' + yes + yes : "");
  }
}

// A hard link is parted only with --force, and then keeps the old file.
TEST_F(SidecarFileTest, ALinkStaysALinkAndModesAreKept) {
  const Outcome outcome =
      Run(R"(umask 027; mkdir D; chmod 1604 with.xmp; mv with.xmp D; ln D/with.xmp D/old.xmp
      ln -s with.xmp D/link.xmp; ln -s D/link.xmp link.xmp
      zelstory clear D/old.xmp; zelstory clear D/old.xmp --dry-run
      zelstory clear link.xmp --force >o; zelstory has D/*.xmp; stat -c %F:%a D/* link.xmp
      zelstory write s.quor --position 1 new.xmp >o; stat -c %a new.xmp)");
  const std::string error =
      "D/old.xmp: error: the file has other names (hard links), which would keep the old bytes; "
      "--force parts it from them\n";
  EXPECT_EQ(outcome.mErrors, error + error);
  EXPECT_EQ(outcome.mOutput,
            "D/link.xmp: no\nD/old.xmp: yes\nD/with.xmp: no\nsymbolic link:777\nregular file:1604\n"
            "regular file:1604\nsymbolic link:777\n640\n");
}

TEST_F(SidecarFileTest, WhatIsUnchangedIsNotWritten) {
  EXPECT_EQ(Run(R"(touch -d 2001-01-01 with.xmp
      zelstory write s.quor --position 1 with.xmp; zelstory clear none.xmp
      find . -name with.xmp -newermt 2001-01-02)")
                .mOutput,
            "unchanged\nunchanged\n");
}

TEST_F(SidecarFileTest, OneFilesRefusalDoesNotStopTheOthers) {
  const Outcome outcome = Tool("clear with.xmp b.xmp none.xmp; zelstory has with.xmp none.xmp");
  EXPECT_EQ(outcome.mErrors, "b.xmp: error: No such file or directory\n");
  EXPECT_THAT(outcome.mOutput, testing::EndsWith("with.xmp: no\nnone.xmp: no\n"));
}

TEST_F(SidecarFileTest, AProtectedFileIsChangedOnlyWithForce) {
  const std::string error =
      "with.xmp: error: the file has no write permission; --force replaces it anyway\n";
  // Root may write what anybody may.
  EXPECT_EQ(Run("[ $(id -u) -ne 0 ] || { chmod 420 with.xmp; zelstory clear with.xmp --dry-run; }")
                .mErrors,
            "");
  EXPECT_EQ(
      Run("chmod 444 with.xmp; zelstory clear with.xmp; zelstory clear with.xmp --dry-run").mErrors,
      error + error);
  EXPECT_EQ(Run("zelstory write s.quor --position 1 with.xmp; zelstory clear with.xmp --force >o;"
                "stat -c %a with.xmp; zelstory has with.xmp")
                .mOutput,
            "unchanged\n444\nno\n");
}

// The last command waits, and reads the file only after the other process has changed it.
TEST_F(SidecarFileTest, ALockedFolderIsWaitedFor) {
  if (const auto missing = Missing("flock"); !missing.empty()) GTEST_SKIP() << missing;
  Write("script", R"(zelstory clear none.xmp --no-wait
      timeout 9 zelstory clear none.xmp --dry-run
      zelstory write s.quor --position 1 none.xmp >done 2>note &
      for i in $(seq 100); do [ -s note ] && break; sleep 0.1; done; mv with.xmp none.xmp)");
  const Outcome locked = Run(R"(flock -o . sh script
      for i in $(seq 100); do [ -s done ] && break; sleep 0.1; done; cat note done)");
  EXPECT_EQ(locked.mErrors, ".: error: another process is changing files in this folder\n");
  EXPECT_EQ(locked.mOutput,
            "unchanged\n"
            ".: note: waiting for another process that changes files in this folder\n"
            "unchanged\n");
  // The end that a signal asks for is not delayed by the waiting.
  Write("script", R"(zelstory clear with.xmp with.xmp 2>note & tool=$!
      for i in $(seq 100); do [ -s note ] && break; sleep 0.1; done
      kill -TERM $tool; wait $tool; echo $?; tail -n 1 note)");
  EXPECT_EQ(Run("mv none.xmp with.xmp; flock -o . timeout 20 sh script").mOutput,
            "143\nzelstory: interrupted after 0 of 2 files; the others are unchanged\n");
}

TEST_F(SidecarFileTest, AFailedWriteLeavesTheOldFileAndNothingElse) {
  EXPECT_THAT(Run("ulimit -f 1; zelstory clear with.xmp").mErrors,
              StartsWith("with.xmp: error: cannot be written: "));
  EXPECT_THAT(Run("ulimit -f 1; zelstory shots $stories/harbour_lights.quor --out new").mErrors,
              StartsWith("new/scene_0001.xmp: error: cannot be written: "));
  EXPECT_EQ(Run("zelstory has with.xmp; ls -A").mOutput, "yes\nnone.xmp\ns.quor\nwith.xmp\n");
}

// In a folder with the sticky bit, only the owner of a file may replace it.
TEST_F(SidecarFileTest, TheOwnerIsKeptAndAFailedRenameLeavesNothing) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give files to others";
  if (const auto missing = Missing("setpriv"); !missing.empty()) GTEST_SKIP() << missing;
  const Outcome outcome = Run(R"(chmod 755 .; mkdir -m 1777 D; cp -p with.xmp D/clip.xmp
      chmod 666 D/clip.xmp; chown 4321:1234 with.xmp D D/clip.xmp
      zelstory clear with.xmp >o; stat -c %u:%g with.xmp
      setpriv --bounding-set=-all --inh-caps=-all zelstory clear D/clip.xmp; ls -A D)");
  EXPECT_EQ(outcome.mErrors, "D/clip.xmp: error: cannot be replaced: Operation not permitted\n");
  EXPECT_EQ(outcome.mOutput, "4321:1234\nclip.xmp\n");
}

// SIGTERM comes as soon as the new file has a name, SIGKILL at any time; only the latter may leave
// that file behind.
TEST_F(SidecarFileTest, AKilledWriterLeavesTheOldOrTheNewFile) {
  const std::string written = Read("with.xmp"), cleared = Read("none.xmp");
  Run("mkdir D; cp none.xmp D/clip.xmp");
  const auto filesInFolder = [folder = File("D")] {
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
  };
  std::mt19937 random(7);
  for (int i = 0; i < 400; ++i) {
    const std::string script = "cd " + File("") + "; exec " ZELSTORY_TOOL +
                               (i % 2 == 0 ? " write s.quor --position 1" : " clear") +
                               " D/clip.xmp >/dev/null";
    const pid_t tool = fork();
    if (tool == 0) _exit(execl("/bin/sh", "sh", "-c", script.c_str(), nullptr));
    bool hasEnded = false;
    if (i % 4 == 0) {
      usleep(static_cast<useconds_t>(random() % 8000));
    } else {
      while (!hasEnded && filesInFolder() == 1) hasEnded = waitpid(tool, nullptr, WNOHANG) != 0;
    }
    if (!hasEnded) {
      kill(tool, i % 4 == 0 ? SIGKILL : SIGTERM);
      waitpid(tool, nullptr, 0);
    }
    if (i % 4 == 0) Run("rm -f D/.z*");
    const std::string now = Read("D/clip.xmp");
    ASSERT_TRUE(now == written || now == cleared) << "after kill " << i;
    ASSERT_EQ(filesInFolder(), 1) << "after kill " << i;
  }
}

}  // namespace
