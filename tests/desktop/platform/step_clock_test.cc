#include "desktop/platform/step_clock.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <memory>

#include "desktop/devices/audio_device.h"
#include "desktop/devices/ticker.h"
#include "desktop/platform/wake.h"
#include "engine_api/platform/clock.h"

namespace {

using desktop::AudioDevice;
using desktop::Direction;
using desktop::StepClock;
using std::chrono::milliseconds;

TEST(StepClock, LetsTimePassInASleepOnly) {
  const StepClock clock;
  const desktop::Time start = desktop::Now();
  const uint32_t ticks = GetExactTickCount();
  std::this_thread::sleep_for(milliseconds(3));
  EXPECT_EQ(desktop::Now(), start);
  SleepMs(3'600'000);
  EXPECT_EQ(desktop::Now(), start + std::chrono::hours(1));
  EXPECT_EQ(GetExactTickCount() - ticks, 3'600'000U);
  SleepMs(0);
  SleepMs(-1);
  EXPECT_EQ(desktop::Now(), start + std::chrono::hours(1));
}

TEST(StepClock, GivesTheTimeOfTheMachineBack) {
  { const StepClock clock; }
  EXPECT_EQ(StepClock::Current(), nullptr);
  const auto before = std::chrono::steady_clock::now();
  EXPECT_GE(desktop::Now(), before);
}

TEST(StepClock, WaitsForAThreadThatWorks) {
  const StepClock clock;
  desktop::Time late;
  std::thread worker = desktop::StartThread([&] {
    SleepMs(10);
    std::this_thread::sleep_for(milliseconds(30));  // At work, however long that takes.
    late = desktop::Now();
  });
  const desktop::Time start = desktop::Now();
  SleepMs(1000);
  worker.join();
  EXPECT_EQ(late, start + milliseconds(10));
}

TEST(StepClock, WakesAWaitByItsPostOrItsTime) {
  const StepClock clock;
  desktop::Wake wake;
  const desktop::Time start = desktop::Now();
  wake.Post();
  wake.WaitFor(milliseconds(50));  // Was posted before.
  EXPECT_EQ(desktop::Now(), start);
  wake.WaitFor(milliseconds(50));
  EXPECT_EQ(desktop::Now(), start + milliseconds(50));
  std::thread poster = desktop::StartThread([&] {
    SleepMs(20);
    wake.Post();
  });
  wake.Wait();
  EXPECT_EQ(desktop::Now(), start + milliseconds(70));
  poster.join();
}

TEST(StepClock, GivesDevicesAndTickersExactlyTheirSteps) {
  const StepClock clock;
  desktop::UseNullDevices(1);
  std::atomic<int> steps = 0;
  auto ticker = std::make_unique<desktop::Ticker>(milliseconds(5), [&] { ++steps; });
  AudioDevice output(Direction::kOutput, {}, [](short*, size_t) {});
  AudioDevice input(Direction::kInput, {}, [](short*, size_t) {});
  ASSERT_TRUE(output.Start());
  ASSERT_TRUE(input.Start());
  SleepMs(10'002);
  EXPECT_EQ(steps, 2001);
  EXPECT_EQ(output.Blocks(), 1001U);  // The first one is due at once.
  EXPECT_EQ(input.Blocks(), 1000U);
  ticker = nullptr;
  output.Stop();
  input.Stop();
  EXPECT_EQ(output.Failures() + input.Failures(), 0U);
}

}  // namespace
