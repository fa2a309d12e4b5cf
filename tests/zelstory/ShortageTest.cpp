#include <cstdlib>

#include "zelstory/Scratch.h"

// What the tool does when the system refuses: each command is run with each of its allocations, and
// with each of its system calls, failing. Whatever fails, it must end with status 1 and say so, and
// leave every file old or new.
namespace {

// The environment variable ZELSTORY_SWEPT_STORY names another story than the small one here.
class ShortageTest : public Scratch, public testing::WithParamInterface<const char*> {
 protected:
  ShortageTest() {
    Write("s.quor",
          Story("<scene sceneNumber='1'>" + Paragraph("SceneHeading", "INT. HOUSE - DAY") +
                "</scene><scene sceneNumber='2'>" + Paragraph("Character", "\u00C1NNA") +
                Paragraph("Dialog", "A speech that is no short string.") + "</scene>"));
    Write("s.fountain", "Title: A\n\nINT. HOUSE #1#\n\nANNA\nA *speech* [[and]] more.\n");
    Write("t.csv", "clip,position\nclip.xmp,1\nb.mov,2\n");
    Run("[ -z \"$ZELSTORY_SWEPT_STORY\" ] || cp \"$ZELSTORY_SWEPT_STORY\" s.quor\n"
        "touch b.mov; zelstory write s.quor clip.xmp --position 2");
  }

  // Returns the number of the command's allocations.
  long FailAllocations(const std::string& command, long first) const {
#if defined(ZELSTORY_SHORTAGE)
    const Outcome outcome =
        Run("export TMPDIR=. LD_BIND_NOW=1 SHORTAGE_FROM=" + std::to_string(first) +
            " LD_PRELOAD=" ZELSTORY_SHORTAGE "\nexec zelstory " + command);
    EXPECT_EQ(outcome.mStatus, 0) << command << '\n' << outcome.mOutput << outcome.mErrors;
    return std::atol(outcome.mOutput.c_str());
#else
    return first + static_cast<long>(command.size());
#endif
  }
};

INSTANTIATE_TEST_SUITE_P(
    Commands, ShortageTest,
    testing::Values("check s.quor --headings exact", "show s.quor", "show s.quor --json",
                    "scenes s.quor", "characters s.quor --csv", "stats s.quor --json",
                    "write s.quor clip.xmp --position 1 --headings exact",
                    "write s.quor clip.xmp --position 1 --dry-run --diff", "clear clip.xmp",
                    "has clip.xmp", "xmp clip.xmp", "xmp clip.xmp --json",
                    "tag s.quor --table t.csv --json --headings exact",
                    "shots s.quor --out D --headings exact",
                    "report s.quor --html p.html --headings exact", "dump s.quor",
                    "scenes s.fountain --headings exact", "convert s.quor c.fdx", "--version",
                    "report --help", "unknown"));

TEST_P(ShortageTest, EveryAllocationMayFail) {
#if !defined(ZELSTORY_SHORTAGE)
  GTEST_SKIP() << "the sanitizers bring allocators of their own";
#endif
  // What every command needs before its own work is enough to try once.
  const std::string command = GetParam();
  const long toStart = FailAllocations("--version", 1000000);
  EXPECT_GT(FailAllocations(command, command == "--version" ? 0 : toStart - toStart / 30), 1000);
}

// Of each kind, one call after the other fails, until none is left to fail, without those with
// which the loader starts every command (it ends with status 127 if they fail).
constexpr const char* kFailEachCall = R"sh(
export TMPDIR=.
fault() { echo "$command: $call $n: $1; status $status: $(cat $s/said)"; }
cp -r . $s/before; $command >/dev/null 2>&1; whole=$?; cp -r . $s/after
for failure in write:ENOSPC read:EIO openat:EMFILE fsync:EIO fchmod:EPERM mkdir:ENOSPC \
    link:EIO linkat:ENOSPC rename:EIO renameat:EIO renameat2:EIO flock:EIO; do
  call=${failure%:*}
  strace -qq -o $s/log -e trace=$call zelstory --version >/dev/null
  n=$(grep -c "^$call(" $s/log)
  n=$((n > 2 ? n - 2 : 0))
  while
    n=$((n + 1)) status=0
    find . -mindepth 1 -delete; cp -r $s/before/. .
    timeout 60 strace -qq -o $s/log -e trace=$call -e inject=$call:error=${failure#*:}:when=$n \
      $command >$s/said 2>&1 || status=$?
    grep -q INJECTED $s/log
  do
    echo $call >>$s/failed
    for file in $(find . -type f); do
      cmp -s $file $s/before/$file || cmp -s $file $s/after/$file || fault "$file is neither old nor new"
    done
    case $status in
      $whole) diff -r . $s/after >/dev/null || fault 'is not done' ;;
      1) grep -Eq ': error: .|"reason":' $s/said || fault 'says nothing' ;;
      127) ;;
      *) fault 'no such status' ;;
    esac
    cmp -s clip.xmp $s/before/clip.xmp || ! grep -Eq 'as it was|unchanged' $s/said || fault 'not so'
  done
done
[ $(sort -u $s/failed | wc -l) -gt 2 ] || echo nothing failed
rm -r $s/before $s/after $s/failed)sh";

TEST_P(ShortageTest, EverySystemCallMayFail) {
#if !defined(ZELSTORY_SHORTAGE)
  GTEST_SKIP() << "the sanitizers make such calls themselves, and stop when they fail";
#endif
  if (Run("strace -o /dev/null true").mStatus != 0) GTEST_SKIP() << "no strace, or not permitted";
  EXPECT_EQ(Printed("command='zelstory " + std::string(GetParam()) + "'" + kFailEachCall), "");
}

}  // namespace
