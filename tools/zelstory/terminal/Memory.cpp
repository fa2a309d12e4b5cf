#include "terminal/Memory.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iostream>
#include <new>

#include "terminal/Console.h"

namespace zelstory {
namespace {

bool theMemoryRanOut = false;
std::array<char, 4096> theFile{"zelstory"};  // a longer name is cut

bool IsControl(char byte) {
  return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
}

[[noreturn]] void NoteAndThrow() {
  theMemoryRanOut = true;
  throw std::bad_alloc();
}

}  // namespace

void WatchMemory() {
  std::set_new_handler(NoteAndThrow);
}

void RefuseIfMemoryRanOut() {
  if (theMemoryRanOut) throw std::bad_alloc();
}

void WorkOn(const std::string& file) noexcept {
  const std::size_t length = std::min(file.size(), theFile.size() - 1);
  std::copy_n(file.begin(), length, theFile.begin());
  std::replace_if(theFile.begin(), theFile.begin() + length, IsControl, '?');
  theFile[length] = '\0';
}

void PrintOutOfMemory() noexcept {
  HideProgress();
  std::cerr << theFile.data() << ": error: out of memory\n";
}

}  // namespace zelstory
