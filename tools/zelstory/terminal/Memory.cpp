#include "terminal/Memory.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iostream>
#include <new>
#include <string_view>

#include "terminal/Console.h"
#include "terminal/Escaped.h"

namespace zelstory {
namespace {

bool theMemoryRanOut = false;
std::array<char, 4096> theFile{"zelstory"};  // a longer name is cut

bool MayNeedEscape(char byte) {
  return byte < 0x20 || byte >= 0x7F;  // whether or not a char is signed
}

void Keep(std::string_view name) noexcept {
  const std::size_t length = std::min(name.size(), theFile.size() - 1);
  std::copy_n(name.begin(), length, theFile.begin());
  theFile[length] = '\0';
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

void WorkOn(const std::string& file) {
  Keep(file);
  std::replace_if(theFile.begin(), std::find(theFile.begin(), theFile.end(), '\0'), MayNeedEscape,
                  '?');
  Keep(Escaped(file));
}

void PrintOutOfMemory() noexcept {
  HideProgress();
  std::cerr << theFile.data() << ": error: out of memory" << WrittenBefore() << '\n';
}

}  // namespace zelstory
