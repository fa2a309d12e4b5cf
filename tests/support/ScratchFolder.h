#pragma once

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

inline std::string ReadBytes(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

inline void SetTemporaryFolder(const std::filesystem::path& path) {
#ifdef _WIN32
  _putenv_s("TMP", path.string().c_str());
#else
  setenv("TMPDIR", path.c_str(), 1);
#endif
}

// A new, empty folder, which is the system's temporary folder, too, until it goes with this object.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::filesystem::create_directories(mPath);
    SetTemporaryFolder(mPath);
  }
  ~ScratchFolder() {
    std::filesystem::remove_all(mPath);
    SetTemporaryFolder(mOuter);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& Path() const { return mPath; }
  std::filesystem::path Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(mPath / name, std::ios::binary) << bytes;
    return mPath / name;
  }

 private:
  const std::filesystem::path mOuter = std::filesystem::temp_directory_path();
  const std::filesystem::path mPath =
      mOuter /
      ("zelstory-" + std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
};
