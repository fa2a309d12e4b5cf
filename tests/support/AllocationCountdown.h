#pragma once

#include <atomic>
#include <new>

#include <gtest/gtest.h>

// A test program's own operator new (AllocationCountdown.cpp), which counts what is alive and fails
// on demand.
inline std::atomic<long> gLiveAllocations{0};
inline thread_local long gCountdown = -1;  // allocations of this thread before the one that fails

// Runs `attempt` with its first allocation failing, then its second, until none of them does, and
// `check(failed)` after each. A failure must leave the attempt as std::bad_alloc.
template <typename Attempt, typename Check>
void FailEachAllocation(Attempt attempt, Check check) {
  bool hasFailed = true;
  for (long nth = 0; hasFailed; ++nth) {
    bool hasThrown = false;
    gCountdown = nth;
    try {
      attempt();
    } catch (const std::bad_alloc&) {
      hasThrown = true;
    }
    hasFailed = gCountdown < 0;
    gCountdown = -1;
    ASSERT_EQ(hasThrown, hasFailed) << "allocation " << nth;
    ASSERT_TRUE(hasFailed || nth > 0) << "nothing was allocated";
    check(hasFailed);
    ASSERT_FALSE(::testing::Test::HasFailure()) << "allocation " << nth;
  }
}

// A test that must give back all that it took.
class LeavesNothing : public ::testing::Test {
 protected:
  void TearDown() override {  // a recorded failure keeps memory of its own
    EXPECT_TRUE(HasFailure() || gLiveAllocations == mBefore) << gLiveAllocations - mBefore;
  }
  const long mBefore = gLiveAllocations;
};
