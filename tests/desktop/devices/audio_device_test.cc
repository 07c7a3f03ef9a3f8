#include "desktop/devices/audio_device.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>

#include "desktop/devices/block_ring.h"
#include "desktop/devices/clock_pacer.h"
#include "desktop/platform/step_clock.h"
#include "engine_api/platform/clock.h"
#include "support/allocation_count.h"
#include "support/captured_stderr.h"

namespace {

using desktop::AudioDevice;
using desktop::ClockPacer;
using desktop::DeviceFormat;
using desktop::Direction;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using testing::ElementsAre;
using testing::HasSubstr;

// The time of a device that is never late, until its block `blocks` was handed over.
std::chrono::nanoseconds TimeOfBlocks(Direction direction, DeviceFormat format, int blocks) {
  const auto start = steady_clock::now();
  ClockPacer pacer(direction, format, 1, start, 0);
  const auto first = direction == Direction::kInput ? start : pacer.Due();
  for (int i = 0; i < blocks - 1; ++i) EXPECT_FALSE(pacer.Pass(pacer.Due()));
  return pacer.Due() - first;
}

TEST(ClockPacer, DoesNotDriftInAMinute) {
  using std::chrono::seconds;
  const auto nearly = [](auto time, auto expected) {
    return abs(time - expected) < milliseconds(1);
  };
  EXPECT_TRUE(nearly(TimeOfBlocks(Direction::kInput, {48000, 2}, 6000), seconds(60)));
  EXPECT_TRUE(nearly(TimeOfBlocks(Direction::kOutput, {44100, 2}, 6001), seconds(60)));
  // A block has 110 frames, not 110.25.
  EXPECT_TRUE(nearly(TimeOfBlocks(Direction::kInput, {11025, 1}, 6000),
                     std::chrono::duration<double>(660000.0 / 11025)));
}

TEST(ClockPacer, CatchesUpAtTwiceThePaceAndCountsOneFailure) {
  ClockPacer pacer(Direction::kOutput, {48000, 2}, 1, {}, 0);
  const auto start = pacer.Due();
  EXPECT_FALSE(pacer.Pass(start + milliseconds(70)));
  EXPECT_EQ(pacer.Due(), start + milliseconds(75));

  auto now = start + milliseconds(300);
  EXPECT_TRUE(pacer.Pass(now));
  int blocks = 2;
  while (pacer.Due() != start + milliseconds(10 * blocks)) {
    ASSERT_EQ(pacer.Due(), now + milliseconds(5));
    now = pacer.Due();
    EXPECT_FALSE(pacer.Pass(now));
    ++blocks;
  }
  EXPECT_EQ(now, start + milliseconds(580 + 5));
}

TEST(ClockPacer, GivesUpWhatWasMissedInASuspendedMachine) {
  ClockPacer pacer(Direction::kOutput, {48000, 2}, 1, {}, 0);
  const auto later = pacer.Due() + std::chrono::hours(1);
  EXPECT_TRUE(pacer.Pass(later));
  EXPECT_EQ(pacer.Due(), later + milliseconds(10));
}

TEST(ClockPacer, CatchesUpWithTwoSecondsAndNotWithMore) {
  ClockPacer two(Direction::kOutput, {48000, 2}, 1, {}, 0);
  auto later = two.Due() + milliseconds(2000);
  EXPECT_TRUE(two.Pass(later));
  EXPECT_EQ(two.Due(), later + milliseconds(5));
  ClockPacer more(Direction::kOutput, {48000, 2}, 1, {}, 0);
  later = more.Due() + milliseconds(2000) + std::chrono::nanoseconds(1);
  EXPECT_TRUE(more.Pass(later));
  EXPECT_EQ(more.Due(), later + milliseconds(10));
}

TEST(ClockPacer, CatchesUpWithTheBlocksThatAnInputLacks) {
  const auto start = steady_clock::now() - milliseconds(500);
  ClockPacer pacer(Direction::kInput, {16000, 1}, 1, start, 20);
  EXPECT_EQ(pacer.Due(), start + milliseconds(210));
}

class NullDevice : public testing::Test {
 protected:
  void SetUp() override { desktop::UseNullDevices(1); }

  const desktop::StepClock m_clock;
};

TEST_F(NullDevice, AsksForBlocksOf10Ms) {
  size_t frames = 0;
  AudioDevice device(Direction::kOutput, {44100, 2}, [&](short* samples, size_t count) {
    std::fill_n(samples, 2 * count, short{1});
    frames += count;
  });
  ASSERT_TRUE(device.Start());
  SleepMs(505);
  device.Stop();
  EXPECT_EQ(device.Blocks(), 51U);  // The first one is due at once.
  EXPECT_EQ(frames, 441U * 51);
}

TEST_F(NullDevice, HearsSilence) {
  std::vector<short> heard;
  heard.reserve(100000);
  AudioDevice device(Direction::kInput, {8000, 1}, [&](short* samples, size_t count) {
    heard.insert(heard.end(), samples, samples + count);
    std::fill_n(samples, count, short{99});  // A callback may use the block up.
  });
  ASSERT_TRUE(device.Start());
  SleepMs(505);
  device.Stop();
  EXPECT_EQ(heard, std::vector<short>(4000));
}

TEST_F(NullDevice, PassesItsTimeAsFastAsATestWants) {
  desktop::UseNullDevices(20);
  AudioDevice device(Direction::kInput, {}, [](short*, size_t) {});
  ASSERT_TRUE(device.Start());
  SleepMs(300);
  device.Stop();
  EXPECT_NEAR(static_cast<double>(device.Blocks()), 600, 1);
}

TEST_F(NullDevice, CallsNothingAfterStop) {
  std::atomic<int> calls = 0;
  AudioDevice device(Direction::kOutput, {}, [&](short*, size_t) { ++calls; });
  ASSERT_TRUE(device.Start());
  EXPECT_FALSE(device.Start());  // It runs already.
  SleepMs(20);
  device.Stop();
  const int after = calls;
  EXPECT_GT(after, 0);
  SleepMs(1000);
  EXPECT_EQ(calls, after);
  device.Stop();
  EXPECT_TRUE(device.Start());
}

TEST_F(NullDevice, SaysWhatItIsAndHowItWent) {
  const CapturedStderr log;
  {
    AudioDevice device(Direction::kOutput, {48000, 2}, [](short*, size_t) {});
    ASSERT_TRUE(device.Start());
    SleepMs(25);
  }
  EXPECT_THAT(log.Lines(),
              ElementsAre(testing::EndsWith(" loudspeaker: 48000 Hz, 2 channels, null device"),
                          HasSubstr(" loudspeaker: stopped after 3 blocks of 10 ms, 0 underruns")));
}

TEST_F(NullDevice, CountsWhatABusyCallbackMakesItLose) {
  const desktop::DeviceFailures before = desktop::AllDeviceFailures();
  std::atomic<int> calls = 0;
  AudioDevice device(Direction::kInput, {}, [&](short*, size_t) {
    if (++calls == 3) SleepMs(200);
  });
  ASSERT_TRUE(device.Start());
  SleepMs(1005);
  device.Stop();
  EXPECT_EQ(device.Failures(), 1U);
  EXPECT_EQ(device.Blocks(), 100U);  // It has caught up.
  EXPECT_EQ(desktop::AllDeviceFailures().inputs, before.inputs + device.Failures());
  EXPECT_EQ(desktop::AllDeviceFailures().outputs, before.outputs);
}

TEST_F(NullDevice, DoesNotStartWithAFormatThatNoDeviceHas) {
  for (const DeviceFormat format : {DeviceFormat{7999, 1}, {48001, 1}, {48000, 0}, {48000, 3}}) {
    const CapturedStderr log;
    AudioDevice device(Direction::kInput, format, [](short*, size_t) {});
    EXPECT_FALSE(device.Start());
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr(" microphone: no device has ")));
  }
}

TEST_F(NullDevice, AllocatesNothingPerBlock) {
  desktop::UseNullDevices(10);
  std::atomic<int> calls = 0;
  size_t atFirst = 0;
  size_t atLast = 0;
  AudioDevice device(Direction::kInput, {}, [&](short*, size_t) {
    if (calls == 0) atFirst = AllocationCount();
    atLast = AllocationCount();
    ++calls;
  });
  ASSERT_TRUE(device.Start());
  SleepMs(100);
  device.Stop();
  EXPECT_GT(calls, 50);
  EXPECT_EQ(atLast, atFirst);
}

TEST(BlockRing, GivesWhatItWasGivenAcrossItsEnd) {
  desktop::BlockRing ring(10);
  short out[10] = {};
  short next = 0;
  for (short expected = 0; expected < 100;) {
    const short in[7] = {next,
                         short(next + 1),
                         short(next + 2),
                         short(next + 3),
                         short(next + 4),
                         short(next + 5),
                         short(next + 6)};
    ASSERT_TRUE(ring.Write(in, 7));
    next = short(next + 7);
    EXPECT_FALSE(ring.Write(in, 4));
    EXPECT_EQ(ring.Waiting(), 7U);
    EXPECT_FALSE(ring.Read(out, 8));
    ASSERT_TRUE(ring.Read(out, 7));
    for (int i = 0; i < 7; ++i) EXPECT_EQ(out[i], expected++);
  }
}

TEST(BlockRing, CarriesSamplesFromOneThreadToAnother) {
  desktop::BlockRing ring(1000);
  constexpr int kBlocks = 20000;
  std::thread writer([&] {
    for (int i = 0; i < kBlocks; ++i) {
      const short block[3] = {short(i), short(i + 1), short(i + 2)};
      while (!ring.Write(block, 3)) std::this_thread::yield();
    }
  });
  int wrong = 0;
  for (int i = 0; i < kBlocks; ++i) {
    short block[3];
    while (!ring.Read(block, 3)) std::this_thread::yield();
    if (block[0] != short(i) || block[2] != short(i + 2)) ++wrong;
  }
  writer.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
