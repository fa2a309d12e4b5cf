#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace zelstoryhost {

// A file descriptor, closed with the object.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : mNumber(number) {}
  Descriptor(Descriptor&& other) noexcept : mNumber(std::exchange(other.mNumber, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(mNumber, other.mNumber);
    return *this;
  }
  ~Descriptor() {
    if (mNumber >= 0) close(mNumber);
  }

  int Number() const { return mNumber; }
  explicit operator bool() const { return mNumber >= 0; }

 private:
  int mNumber;
};

// An open folder. One that may be searched but not read can neither be locked nor flushed.
class OpenFolder {
 public:
  explicit OpenFolder(const std::filesystem::path& path);

  // Valid as long as the object; -1 when the folder could not be opened.
  int Number() const { return mDescriptor.Number(); }
  // Why it could not: an error number of the system; 0 if it could.
  int Error() const { return mError; }

  // What is known of an entry, of a link itself. Nothing when there is none, or when it cannot be
  // examined; errno says why.
  std::optional<struct stat> StatusOf(const std::string& entry) const;

  // Opens an entry for reading, but not through a link, and without waiting for a pipe's writer.
  // None when it cannot be opened; errno says why.
  Descriptor OpenToRead(const std::string& entry) const;

 private:
  Descriptor mDescriptor;
  int mError = 0;
};

}  // namespace zelstoryhost
