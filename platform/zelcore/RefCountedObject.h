#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include <zelcore/Export.h>
#include <zelcore/SmallBlocks.h>

namespace zelcore::utility {

// The base of everything that is shared by counted pointers. Objects are made with `new` and put
// into a counted pointer at once; the release that takes the count to zero deletes them.
//
// Threads: the count changes only atomically, so pointers to one object may be copied and dropped
// on several threads at once. The flags are plain fields.
class ZELPLATFORM_API RefCountedObject {
 public:
  RefCountedObject() = default;

  // A copy starts with no holders and with both flags false.
  RefCountedObject(const RefCountedObject&) noexcept : RefCountedObject() {}
  RefCountedObject& operator=(const RefCountedObject&) = delete;

  virtual ~RefCountedObject() = default;

  static void* operator new(std::size_t bytes) { return AllocateBlock(bytes); }
  static void operator delete(void* object) noexcept { FreeBlock(object); }

  std::atomic<std::int32_t> mRefCount{0};  // number of counted holders
  bool mDeleting = false;                  // set just before the object deletes itself
  bool mNoAutoDelete = false;              // while true, a count of zero deletes nothing
};

}  // namespace zelcore::utility
