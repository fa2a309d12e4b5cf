#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Support.h"

// Runs a fuzz target without a fuzzer, for compilers that have none and at full speed.
//   TARGET_replay FOLDER...        the files of folders; prints each name first, so that the last
//                                  one printed is that of the file with the fault
//   TARGET_replay --random N SEED  inputs that are random bytes; prints the seed of the input with
//                                  the fault, for a run with N = 1
namespace {

unsigned NumberIn(std::string_view text) {
  unsigned number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

volatile unsigned theSeed = 0;

// Require aborts.
void PrintSeed(int) {
  std::fprintf(stderr, "seed %u\n", theSeed);
  std::_Exit(1);
}

void RunRandom(unsigned count, unsigned seed) {
  std::signal(SIGABRT, PrintSeed);
  for (; count > 0; --count, ++seed) {
    std::minstd_rand random(seed);
    std::vector<std::uint8_t> bytes(random() % 512);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random() >> 8);
    theSeed = seed;
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && std::string_view(argv[1]) == "--random") {
    RunRandom(NumberIn(argv[2]), NumberIn(argv[3]));
    return 0;
  }
  std::set<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) files.insert(entry);
  }
  for (const std::filesystem::path& file : files) {
    std::cout << file.string() << std::endl;
    std::ifstream stream(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    if (!stream) return 1;
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  return files.empty() ? 1 : 0;
}
