#include "desktop/aec/parts/delay_tracker.h"

#include <gtest/gtest.h>

#include "support/talk.h"

namespace {

constexpr int kRate = 16000;
constexpr size_t kBlock = 160;

// A far end that comes in bursts is ahead for a while, but not for as long as it takes both ends to
// go on by a second: nothing is missing at the near end.
TEST(DelayTracker, TakesAFarEndInBursts) {
  constexpr size_t kBurst = 30 * kBlock;
  const Samples far = Talk(kRate, 4, 1);
  const Samples near = Echo(far, kRate, 60);
  desktop::DelayTracker tracker(kRate, 500);
  for (size_t at = 0; at + kBurst <= near.size(); at += kBurst) {
    tracker.AddFar(&far[at], kBurst);
    for (size_t i = 0; i < kBurst; i += kBlock) tracker.AddNear(&near[at + i], kBlock);
  }
  ASSERT_TRUE(tracker.KnowsDelay());
  EXPECT_NEAR(tracker.DelayMs(), 60, 8);
}

}  // namespace
