#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "Support.h"

// Runs a fuzz target over files and the files of folders, for compilers that bring no fuzzer. Each
// name is printed first, so that the last one is what a fault belongs to.
int main(int argc, char** argv) {
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i]))
      files.emplace_back(argv[i]);
    else
      for (const auto& entry : std::filesystem::directory_iterator(argv[i])) files.push_back(entry);
  }
  std::sort(files.begin(), files.end());
  for (const std::filesystem::path& file : files) {
    std::cout << file.string() << std::endl;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) return 1;
    const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  return files.empty() ? 1 : 0;
}
