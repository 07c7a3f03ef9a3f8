#include "engine_api/platform/clock.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/time.h>

#include <chrono>
#include <climits>

namespace {

using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

TEST(SleepMs, SleepsAtLeastAsLongAsAsked) {
  const auto start = steady_clock::now();
  SleepMs(30);
  EXPECT_GE(steady_clock::now() - start, milliseconds(30));
}

TEST(SleepMs, GoesOnSleepingAfterASignal) {
  struct sigaction ignoring = {};
  ignoring.sa_handler = [](int) {};
  struct sigaction before = {};
  sigaction(SIGALRM, &ignoring, &before);
  const itimerval everyMillisecond = {{0, 1000}, {0, 1000}};
  setitimer(ITIMER_REAL, &everyMillisecond, nullptr);

  const auto start = steady_clock::now();
  SleepMs(50);
  EXPECT_GE(steady_clock::now() - start, milliseconds(50));

  const itimerval never = {};
  setitimer(ITIMER_REAL, &never, nullptr);
  sigaction(SIGALRM, &before, nullptr);
}

TEST(SleepMs, ReturnsWhenThereIsNothingToSleep) {
  SleepMs(0);
  SleepMs(-1);
  SleepMs(INT_MIN);
}

TEST(GetExactTickCount, CountsMilliseconds) {
  const auto outerStart = steady_clock::now();
  const uint32_t first = GetExactTickCount();
  const auto innerStart = steady_clock::now();
  SleepMs(50);
  const auto innerEnd = steady_clock::now();
  const uint32_t last = GetExactTickCount();
  const auto outerEnd = steady_clock::now();

  const uint32_t ticks = last - first;
  EXPECT_GE(ticks, duration_cast<milliseconds>(innerEnd - innerStart).count());
  EXPECT_LE(ticks, duration_cast<milliseconds>(outerEnd - outerStart).count() + 1);
}

TEST(GetExactTickCount, NeverGoesBack) {
  uint32_t before = GetExactTickCount();
  for (int i = 0; i < 100000; ++i) {
    const uint32_t now = GetExactTickCount();
    ASSERT_LT(now - before, 0x80000000U);
    before = now;
  }
}

}  // namespace
