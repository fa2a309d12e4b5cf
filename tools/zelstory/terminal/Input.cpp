#include "terminal/Input.h"

#include <iostream>
#include <system_error>

#if defined(__unix__) || defined(__APPLE__)
#include <sys/stat.h>
#include <unistd.h>
#define ZELSTORY_POSIX 1
#endif

#include <zelstoryhost/Files.h>

#include "terminal/Memory.h"

namespace zelstory {

namespace fs = std::filesystem;

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

}  // namespace

StoryResult ReadStory(const std::string& file) {
  WorkOn(file);
  return file == kStandardStream ? zelstoryhost::ReadStory(std::cin, file)
                                 : zelstoryhost::ReadStory(fs::path(file));
}

boost::intrusive_ptr<zelstoryparser::TavroStory> LoadStory(const std::string& file) {
  const StoryResult result = ReadStory(file);
  if (!result) throw zelstoryhost::Error(*result.mFault);
  return result.mStory;
}

std::string ReadText(const std::string& file) {
  WorkOn(file);
  if (file == kStandardStream) return zelstoryhost::ReadStream(std::cin, file);
  std::optional<std::string> bytes = zelstoryhost::ReadFile(file);
  if (!bytes) throw zelstoryhost::Error(file, "No such file or directory");
  return *std::move(bytes);
}

Sidecar ReadSidecar(const std::string& clipOrSidecar, std::optional<zelstoryhost::SidecarForm> form,
                    zelstoryhost::WhenAbsent whenAbsent) {
  WorkOn(clipOrSidecar);
  if (clipOrSidecar == kStandardStream) return Sidecar::FromBytes(ReadText(clipOrSidecar), "-");
  return Sidecar(FindSidecar(clipOrSidecar, form, whenAbsent), whenAbsent);
}

bool IsStoryItself(const std::string& story, const fs::path& file) {
  if (story == kStandardStream) return IsStandardInput(file);
  std::error_code error;  // a file that does not exist yet is not the story
  return fs::equivalent(story, file, error);
}

}  // namespace zelstory
