#include "terminal/Input.h"

#include <fstream>
#include <iostream>
#include <system_error>

#if defined(__unix__) || defined(__APPLE__)
#include <sys/stat.h>
#include <unistd.h>
#define ZELSTORY_POSIX 1
#endif

#include <zelstoryhost/Files.h>

#include "terminal/Console.h"
#include "terminal/Memory.h"

namespace zelstory {

namespace fs = std::filesystem;

using zelstoryhost::ScriptFormat;
using zelstoryhost::Sidecar;
using zelstoryhost::StoryResult;

namespace {

bool IsStandardInput([[maybe_unused]] const fs::path& file) {
#if defined(ZELSTORY_POSIX)
  struct stat input {};
  struct stat named {};
  return fstat(STDIN_FILENO, &input) == 0 && stat(file.c_str(), &named) == 0 &&
         input.st_dev == named.st_dev && input.st_ino == named.st_ino;
#else
  return false;
#endif
}

// Shells pass the output of a command under such a name: zelstory check <(command)
bool IsPassedDescriptor(const fs::path& file) {
  return file.parent_path() == "/dev/fd" || file.parent_path() == "/proc/self/fd";
}

// The stream that a name means, which is `opened` unless it is standard input; none if the name
// means a file.
std::istream* StreamNamed(const std::string& file, std::ifstream& opened) {
  if (file == kStandardStream) return &std::cin;
  std::error_code error;
  if (fs::is_regular_file(file, error)) return nullptr;
  if (IsStandardInput(file)) return &std::cin;
  if (!IsPassedDescriptor(file)) return nullptr;
  opened.open(file, std::ios::binary);
  return opened ? &opened : nullptr;
}

}  // namespace

StoryResult ReadStory(const std::string& file, const ScriptFormat* format) {
  WorkOn(file);
  std::ifstream opened;
  std::istream* const stream = StreamNamed(file, opened);
  return stream != nullptr ? zelstoryhost::ReadScript(*stream, file, format)
                           : zelstoryhost::ReadScript(fs::path(file), format);
}

boost::intrusive_ptr<zelstoryparser::TavroStory> LoadStory(const std::string& file,
                                                           const ScriptFormat* format) {
  const StoryResult result = ReadStory(file, format);
  if (!result) throw zelstoryhost::Error(*result.mFault);
  PrintFindings(file, result.mFindings);
  return result.mStory;
}

std::string ReadText(const std::string& file) {
  WorkOn(file);
  std::ifstream opened;
  if (std::istream* const stream = StreamNamed(file, opened)) {
    return zelstoryhost::ReadStream(*stream, file);
  }
  std::optional<std::string> bytes = zelstoryhost::ReadFile(file);
  if (!bytes) throw zelstoryhost::Error(file, "No such file or directory");
  return *std::move(bytes);
}

Sidecar ReadSidecar(const std::string& clipOrSidecar, std::optional<zelstoryhost::SidecarForm> form,
                    zelstoryhost::WhenAbsent whenAbsent, zelstoryhost::SidecarFinder& finder) {
  WorkOn(clipOrSidecar);
  if (clipOrSidecar == kStandardStream) return Sidecar::FromBytes(ReadText(clipOrSidecar), "-");
  return Sidecar(finder.Find(clipOrSidecar, form, whenAbsent), whenAbsent);
}

bool IsStoryItself(const std::string& story, const fs::path& file) {
  if (story == kStandardStream) return IsStandardInput(file);
  std::error_code error;  // a file that does not exist yet is not the story
  return fs::equivalent(story, file, error);
}

}  // namespace zelstory
