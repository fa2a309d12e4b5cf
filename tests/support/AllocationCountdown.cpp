#include "support/AllocationCountdown.h"

#include <atomic>
#include <cstdlib>

namespace {

std::atomic<long> liveAllocations{0};
thread_local long countdown = -1;  // below 0: nothing fails
thread_local bool hasFailed = false;

void* Allocate(std::size_t size) noexcept {
  if (countdown >= 0 && countdown-- == 0) {
    hasFailed = true;
    return nullptr;
  }
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory != nullptr) ++liveAllocations;
  return memory;
}

void Release(void* memory) noexcept {
  if (memory != nullptr) --liveAllocations;
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
  void* memory = Allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size);
}
void operator delete(void* memory) noexcept {
  Release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  Release(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  Release(memory);
}

long LiveAllocations() {
  return liveAllocations;
}

AllocationCountdown::AllocationCountdown(long nth) {
  hasFailed = false;
  countdown = nth;
}
AllocationCountdown::~AllocationCountdown() {
  countdown = -1;
}
bool AllocationCountdown::HasFailed() const {
  return hasFailed;
}
