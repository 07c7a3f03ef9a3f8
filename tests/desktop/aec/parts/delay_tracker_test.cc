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

// For 800 ms of each second the far end is 200 ms ahead; then the near end has caught up.
TEST(DelayTracker, TakesAnEndThatIsAheadForLessThanASecond) {
  constexpr size_t kAhead = 20 * kBlock;
  const Samples far = Talk(kRate, 5, 2);
  const Samples near = Echo(far, kRate, 60);
  desktop::DelayTracker tracker(kRate, 500);
  for (size_t at = 0; at + kRate <= near.size(); at += kRate) {
    tracker.AddFar(&far[at], kAhead);
    for (size_t i = 0; i + kAhead < kRate; i += kBlock) {
      tracker.AddFar(&far[at + kAhead + i], kBlock);
      tracker.AddNear(&near[at + i], kBlock);
    }
    for (size_t i = kRate - kAhead; i < kRate; i += kBlock) tracker.AddNear(&near[at + i], kBlock);
  }
  ASSERT_TRUE(tracker.KnowsDelay());
  EXPECT_NEAR(tracker.DelayMs(), 60, 8);
}

}  // namespace
