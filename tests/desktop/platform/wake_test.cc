#include "desktop/platform/wake.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <thread>

namespace {

// By how many seconds the time of day that this program sees is wrong.
std::atomic<time_t> g_setBack = 0;

}  // namespace

// In place of the system's, under whose names its parameters stand, for the whole program.
extern "C" int clock_gettime(clockid_t __clock_id, timespec* __tp) noexcept {
  const auto result = static_cast<int>(syscall(SYS_clock_gettime, __clock_id, __tp));
  if (__clock_id == CLOCK_REALTIME) __tp->tv_sec -= g_setBack;
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

std::atomic<int> g_signals = 0;

// Whether `wait` goes on through 20 signals that interrupt its thread, until `post`.
bool WaitsOnThroughSignals(const std::function<void()>& wait, const std::function<void()>& post) {
  struct sigaction counting = {};
  counting.sa_handler = [](int) { ++g_signals; };
  struct sigaction before = {};
  sigaction(SIGUSR1, &counting, &before);
  std::atomic<bool> ended = false;
  std::thread waiter([&] {
    wait();
    ended = true;
  });
  for (int i = 0; i < 20; ++i) {
    std::this_thread::sleep_for(milliseconds(1));
    const int seen = g_signals;
    pthread_kill(waiter.native_handle(), SIGUSR1);
    while (g_signals == seen && !ended) std::this_thread::yield();
  }
  std::this_thread::sleep_for(milliseconds(1));
  const bool waits = !ended;
  post();
  waiter.join();
  sigaction(SIGUSR1, &before, nullptr);
  return waits;
}

TEST(Wake, GoesOnWaitingAfterASignal) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "the thread sanitizer keeps signals back until the wait has ended";
#endif
  desktop::Wake wake;
  const auto post = [&] { wake.Post(); };
  EXPECT_TRUE(WaitsOnThroughSignals([&] { wake.Wait(); }, post));
  EXPECT_TRUE(WaitsOnThroughSignals([&] { wake.WaitFor(std::chrono::hours(1)); }, post));
}

}  // namespace
