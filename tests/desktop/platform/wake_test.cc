#include "desktop/platform/wake.h"

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>

namespace {

// By how many seconds the time of day that this program sees is wrong.
std::atomic<time_t> g_setBack = 0;

}  // namespace

// In place of the system's, for the whole program.
extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
  const auto result = static_cast<int>(syscall(SYS_clock_gettime, clock, time));
  if (clock == CLOCK_REALTIME) time->tv_sec -= g_setBack;
  return result;
}

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

TEST(Wake, WaitsAsLongAsItShouldWhateverTheTimeOfDayIs) {
  desktop::Wake wake;
  g_setBack = 3600;
  const auto start = steady_clock::now();
  wake.WaitFor(milliseconds(20));
  EXPECT_GE(steady_clock::now() - start, milliseconds(20));
  g_setBack = 0;
}

TEST(Wake, EndsAWaitAtOnceAfterAPost) {
  desktop::Wake wake;
  wake.Post();
  wake.WaitFor(std::chrono::hours(1));
  wake.Post();
  wake.Wait();
}

}  // namespace
