#pragma once

#include <atomic>
#include <cstdint>

namespace zelcore::utility {

// The base of the story's nodes. StoryTree.h adds and drops references through these members.
class RefCountedObject {
 public:
  RefCountedObject() = default;
  RefCountedObject(const RefCountedObject& /*other*/) {}  // a copy has no holders yet
  RefCountedObject& operator=(const RefCountedObject&) = delete;
  virtual ~RefCountedObject() = default;

  std::atomic<std::int32_t> mRefCount{0};
  bool mDeleting = false;
  bool mNoAutoDelete = false;
};

}  // namespace zelcore::utility
