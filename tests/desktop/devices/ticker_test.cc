#include "desktop/devices/ticker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

using std::chrono::milliseconds;
using std::chrono::steady_clock;

TEST(Ticker, StepsAtItsPace) {
  std::atomic<int> steps = 0;
  const auto start = steady_clock::now();
  const desktop::Ticker ticker(milliseconds(5), [&] { ++steps; });
  while (steps < 21) std::this_thread::yield();
  // Twenty periods lie between the first step and the 21st.
  EXPECT_GE(steady_clock::now() - start, milliseconds(99));
}

TEST(Ticker, DoesNotCatchUpOnStepsThatComeLate) {
  std::atomic<int> steps = 0;
  steady_clock::time_point first;
  steady_clock::time_point third;
  const desktop::Ticker ticker(milliseconds(20), [&] {
    const int step = ++steps;
    if (step == 1) {
      first = steady_clock::now();
      std::this_thread::sleep_for(milliseconds(100));
    }
    if (step == 3) third = steady_clock::now();
  });
  while (steps < 4) std::this_thread::yield();
  // The second comes at once, however late the machine is, and the third a period after it.
  EXPECT_GE(third - first, milliseconds(120));
}

TEST(Ticker, EndsAtOnceAndStepsNoMoreOnceDestroyed) {
  std::atomic<int> steps = 0;
  auto ticker = std::make_unique<desktop::Ticker>(std::chrono::hours(1), [&] { ++steps; });
  while (steps < 1) std::this_thread::yield();
  const auto start = steady_clock::now();
  ticker.reset();
  EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(5));
  EXPECT_EQ(steps, 1);
}

TEST(Ticker, WaitsForTheStepThatIsUnderWay) {
  std::atomic<bool> begun = false;
  bool done = false;
  auto ticker = std::make_unique<desktop::Ticker>(milliseconds(1), [&] {
    begun = true;
    std::this_thread::sleep_for(milliseconds(30));
    done = true;
  });
  while (!begun) std::this_thread::yield();
  ticker.reset();
  EXPECT_TRUE(done);
}
