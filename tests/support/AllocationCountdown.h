#pragma once

#include <new>

#include <gtest/gtest.h>

// The test program's own operator new (AllocationCountdown.cpp): it counts what is alive, and fails
// on demand.

// Allocations that were made by operator new and not yet released.
long LiveAllocations();

// While in scope, the `nth` allocation of this thread, counted from 0, throws std::bad_alloc.
class AllocationCountdown {
 public:
  explicit AllocationCountdown(long nth);
  ~AllocationCountdown();
  bool HasFailed() const;
};

// Runs `attempt` with its first allocation failing, then its second, until none of them does, and
// `check(failed)` after each. A failure must leave the attempt as std::bad_alloc.
template <typename Attempt, typename Check>
void FailEachAllocation(Attempt attempt, Check check) {
  bool hasFailed = true;
  for (long nth = 0; hasFailed; ++nth) {
    bool hasThrown = false;
    {
      const AllocationCountdown countdown(nth);
      try {
        attempt();
      } catch (const std::bad_alloc&) {
        hasThrown = true;
      }
      hasFailed = countdown.HasFailed();
    }
    ASSERT_EQ(hasThrown, hasFailed) << "allocation " << nth;
    ASSERT_TRUE(hasFailed || nth > 0) << "nothing was allocated";
    check(hasFailed);
    ASSERT_FALSE(::testing::Test::HasFailure()) << "allocation " << nth;
  }
}

// A test that must give back all that it took.
class LeavesNothing : public ::testing::Test {
 protected:
  void TearDown() override {
    if (HasFailure()) return;  // a recorded failure keeps memory of its own
    EXPECT_EQ(LiveAllocations(), mBefore);
  }

 private:
  const long mBefore = LiveAllocations();
};
