#include <zelcore/SmallBlocks.h>

#if defined(ZELPLATFORM_MIMALLOC)
#include <mimalloc.h>
#endif

namespace zelcore {

#if defined(ZELPLATFORM_MIMALLOC)

void* AllocateBlock(std::size_t bytes) {
  void* block = mi_malloc(bytes);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void FreeBlock(void* block) noexcept {
  mi_free(block);
}

#else

void* AllocateBlock(std::size_t bytes) {
  return ::operator new(bytes);
}

void FreeBlock(void* block) noexcept {
  ::operator delete(block);
}

#endif

}  // namespace zelcore
