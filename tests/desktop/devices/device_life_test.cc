// What a device and a worker leave behind when they end, start anew, or do not start.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <thread>

#include "desktop/devices/audio_device.h"
#include "desktop/devices/block_worker.h"
#include "desktop/platform/step_clock.h"
#include "engine_api/platform/clock.h"
#include "support/child_process.h"
#include "support/no_thread.h"

namespace {

using desktop::AudioDevice;
using desktop::Direction;

TEST(DeviceLife, CountsAnewWithEachStart) {
  const desktop::StepClock clock;
  desktop::UseNullDevices(1);
  AudioDevice input(Direction::kInput, {}, [](short*, size_t) {});
  AudioDevice output(Direction::kOutput, {}, [](short*, size_t) {});
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(input.Start());
    ASSERT_TRUE(output.Start());
    SleepMs(1005);
    EXPECT_EQ(input.Blocks(), 100U);
    EXPECT_EQ(output.Blocks(), 101U);  // The first one is due at once.
    EXPECT_EQ(input.LatencyMs(), 10U);
    input.Stop();
    output.Stop();
    EXPECT_EQ(input.Blocks(), 100U);
  }
}

// Those that wait for all devices to end would wait for one that has never run.
TEST(DeviceLife, IsForgottenWhenItDoesNotStart) {
  if (!kThreadsCanFail) GTEST_SKIP() << "the sanitizer ends a process that can start no thread";
  const int status = RunInChild([] {
    desktop::UseNullDevices(1);
    AudioDevice device(Direction::kInput, {}, [](short*, size_t) {});
    AllowNoThread();
    if (device.Start()) _exit(2);
    rusage before = {};
    rusage after = {};
    getrusage(RUSAGE_THREAD, &before);
    desktop::StopAudioDevices();
    getrusage(RUSAGE_THREAD, &after);
    // It sleeps between two looks.
    _exit(after.ru_nvcsw - before.ru_nvcsw < 5 ? 0 : 1);
  });
  EXPECT_EQ(status, 0);
}

TEST(BlockWorker, WorksOnWhatWaitsWhenItIsStopped) {
  std::atomic<bool> goesOn = false;
  std::atomic<int> worked = 0;
  desktop::BlockWorker worker(
      {16000, 1},
      [&](short*, size_t) {
        while (!goesOn) std::this_thread::yield();
        ++worked;
      },
      std::chrono::seconds(2));
  const std::vector<short> block(160);
  for (int i = 0; i < 50; ++i) worker.Put(block.data());
  std::thread stopper([&] { worker.Stop(); });
  // The worker is in its first block when it is told to stop.
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  goesOn = true;
  stopper.join();
  EXPECT_EQ(worked, 50);
  EXPECT_EQ(worker.Lost(), 0U);
}

// It has nothing to do, and nothing else would wake it: no time passes meanwhile.
TEST(BlockWorker, IsWokenByItsStop) {
  const desktop::StepClock clock;
  const std::vector<short> block(160);
  for (const bool leaves : {false, true}) {
    desktop::BlockWorker worker(
        {16000, 1}, [](short*, size_t) {}, std::chrono::seconds(2));
    worker.Put(block.data());
    SleepMs(10);
    const desktop::Time before = desktop::Now();
    alarm(60);  // Ends a stop that hangs.
    EXPECT_TRUE(!leaves || worker.StopOrLeave(std::chrono::seconds(10)));
    worker.Stop();
    alarm(0);
    EXPECT_EQ(desktop::Now(), before);
  }
}

}  // namespace
