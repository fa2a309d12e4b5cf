#include "support/AllocationCountdown.h"

#include <cstdlib>

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  if (gCountdown >= 0 && gCountdown-- == 0) return nullptr;
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory != nullptr) ++gLiveAllocations;
  return memory;
}
void* operator new(std::size_t size) {
  void* memory = operator new(size, std::nothrow);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept {
  if (memory != nullptr) --gLiveAllocations;
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  operator delete(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  operator delete(memory);
}
