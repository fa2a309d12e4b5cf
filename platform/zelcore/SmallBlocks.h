#pragma once

#include <cstddef>
#include <limits>
#include <new>

#include <zelcore/Export.h>

// The allocator for the many small objects of a story: the host's strings and its counted objects.
// It is the program's operator new, unless the platform was built with ZELSTORY_LIBRARY_MIMALLOC;
// only FreeBlock may free its blocks. All functions may be called from any thread, and a block may
// be freed on another thread than the one that allocated it.
namespace zelcore {

// A block of at least `bytes` bytes, aligned for every type of fundamental alignment. Throws
// std::bad_alloc.
[[nodiscard]] ZELPLATFORM_API void* AllocateBlock(std::size_t bytes);

// Frees a block of AllocateBlock; null is allowed.
ZELPLATFORM_API void FreeBlock(void* block) noexcept;

// AllocateBlock for the standard's containers. Stateless: all of them are equal.
template <typename T>
class SmallBlockAllocator {
 public:
  using value_type = T;

  SmallBlockAllocator() = default;
  template <typename Other>
  SmallBlockAllocator(const SmallBlockAllocator<Other>&) noexcept {}  // NOLINT: as containers ask

  [[nodiscard]] T* allocate(std::size_t count) {
    static_assert(alignof(T) <= alignof(std::max_align_t));
    if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) {
      throw std::bad_array_new_length();
    }
    return static_cast<T*>(AllocateBlock(count * sizeof(T)));
  }
  void deallocate(T* block, std::size_t /*count*/) noexcept { FreeBlock(block); }

  friend bool operator==(const SmallBlockAllocator&, const SmallBlockAllocator&) { return true; }
};

}  // namespace zelcore
