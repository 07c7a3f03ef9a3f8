// What a device does when its sound server goes and comes, on the test's clock.

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "desktop/devices/audio_device.h"
#include "desktop/platform/step_clock.h"
#include "engine_api/platform/clock.h"
#include "support/allocation_count.h"
#include "support/captured_stderr.h"

namespace {

using desktop::AudioDevice;
using desktop::DeviceFormat;
using desktop::Direction;
using desktop::Now;
using desktop::Time;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::HasSubstr;

// What its streams share.
struct Server {
  std::atomic<bool> there = true;
  std::atomic<bool> suspended = false;
  std::atomic<bool> takesNoBlock = false;
  std::atomic<uint64_t> gaps = 0;
  std::atomic<int> blocks = 0;
  std::mutex mutex;
  std::vector<Time> attempts;
};

// Moves one block each 10 ms.
class ServerStream : public desktop::SoundStream {
 public:
  explicit ServerStream(Server& server) : m_server(server) {}

  bool Connect(const std::atomic<bool>&) override {
    const std::scoped_lock lock(m_server.mutex);
    m_server.attempts.push_back(Now());
    m_next = Now();
    return m_server.there;
  }
  bool Wait(Time until) override {
    m_wake.WaitUntil(std::min(until, Now() + milliseconds(10)));
    return m_server.there;
  }
  bool IsSuspended() const override { return m_server.suspended; }
  bool WantsBlock() override {
    const bool wants = !m_server.suspended && Now() >= m_next;
    if (wants) m_next = Now() + milliseconds(10);
    return wants;
  }
  bool Give(const short*) override {
    if (!m_server.takesNoBlock) ++m_server.blocks;
    return !m_server.takesNoBlock;
  }
  bool Take(short* samples) override {
    if (!WantsBlock()) return false;
    samples[0] = 1;
    ++m_server.blocks;
    return true;
  }
  const std::string& Fault() const override { return m_fault; }
  uint64_t Failures() const override { return m_server.gaps; }
  uint32_t LatencyMs() const override { return 70; }

 private:
  Server& m_server;
  desktop::Wake m_wake;
  Time m_next;
  std::string m_fault = "it is gone";
};

class DeviceServer : public testing::TestWithParam<Direction> {
 protected:
  DeviceServer() {
    desktop::UseNullDevices(0);
    desktop::UseSoundStreams(
        [this](Direction, DeviceFormat) { return std::make_unique<ServerStream>(m_server); });
  }
  ~DeviceServer() override {
    Stop();
    desktop::UseSoundStreams(nullptr);
    desktop::UseNullDevices(1);
  }

  // A stream waits for time to pass, which it does while this thread sleeps.
  void Stop() {
    std::atomic<bool> stopped = false;
    std::thread stopper([&] {
      m_device.Stop();
      stopped = true;
    });
    while (!stopped) SleepMs(1);
    stopper.join();
  }

  std::string Name() const {
    return GetParam() == Direction::kOutput ? "loudspeaker: " : "microphone: ";
  }

  const desktop::StepClock m_clock;
  Server m_server;
  AudioDevice m_device{GetParam(), {8000, 1}, [](short*, size_t) {}};
  const CapturedStderr m_log;
};

TEST_P(DeviceServer, IsLookedForAfterOneSecondAndThenEveryFive) {
  const Time start = Now();
  ASSERT_TRUE(m_device.Start());
  SleepMs(1005);
  m_server.there = false;
  SleepMs(8000);  // It is missed after 1010 ms.
  m_server.there = true;
  const int before = m_server.blocks;
  EXPECT_NEAR(before, 100, 2);
  SleepMs(4000);
  EXPECT_NEAR(m_server.blocks - before, 100, 3);
  EXPECT_NEAR(static_cast<double>(m_device.Blocks()), 1300, 3);  // As time has passed.
  Stop();
  std::vector<int> attempts;
  for (const Time time : m_server.attempts) {
    attempts.push_back(static_cast<int>((time - start) / milliseconds(1)));
  }
  EXPECT_THAT(attempts, ElementsAre(0, 2010, 7010, 12010));
  EXPECT_THAT(
      m_log.Lines(),
      ElementsAre(
          HasSubstr(" " + Name() + "8000 Hz, 1 channels, sound server"),
          HasSubstr(" " + Name() + "the sound server is lost, null device from now on: it is gone"),
          HasSubstr(" " + Name() + "on the sound server from now on"),
          HasSubstr(" " + Name() + "stopped after ")));
}

TEST_P(DeviceServer, IsNeverAskedWhereDevicesAreNull) {
  for (const double speed : {0.5, 1.0, 20.0}) {
    desktop::UseNullDevices(speed);
    ASSERT_TRUE(m_device.Start());
    SleepMs(2005);
    EXPECT_GE(m_device.Blocks(), 100U);
    Stop();
  }
  EXPECT_TRUE(m_server.attempts.empty());
}

TEST_P(DeviceServer, IsFoundLateWhereThereWasNone) {
  m_server.there = false;
  ASSERT_TRUE(m_device.Start());
  SleepMs(505);
  EXPECT_NEAR(static_cast<double>(m_device.Blocks()), 50, 1);
  m_server.there = true;
  SleepMs(1000);
  EXPECT_NEAR(m_server.blocks, 50, 2);
  EXPECT_EQ(m_device.LatencyMs(), GetParam() == Direction::kInput ? 80U : 70U);
  Stop();
  EXPECT_THAT(m_log.Lines(),
              ElementsAre(HasSubstr(" " + Name() +
                                    "8000 Hz, 1 channels, null device: no sound server: "
                                    "it is gone"),
                          HasSubstr(" " + Name() + "on the sound server from now on"),
                          HasSubstr(" " + Name() + "stopped after ")));
}

TEST_P(DeviceServer, IsStoodInForWhileItSuspendsTheDevice) {
  ASSERT_TRUE(m_device.Start());
  SleepMs(1005);
  m_server.suspended = true;
  SleepMs(10'000);
  const int before = m_server.blocks;
  EXPECT_NEAR(before, 101, 2);
  EXPECT_NEAR(static_cast<double>(m_device.Blocks()), 1100, 3);
  m_server.suspended = false;
  SleepMs(1000);
  EXPECT_NEAR(m_server.blocks - before, 100, 3);
  EXPECT_NEAR(static_cast<double>(m_device.Blocks()), 1200, 3);
  Stop();
  EXPECT_EQ(m_server.attempts.size(), 1U);
  EXPECT_THAT(
      m_log.Lines(),
      ElementsAre(HasSubstr(" " + Name() + "8000 Hz, 1 channels, sound server"),
                  HasSubstr(" " + Name() + "suspended by the sound server, null device meanwhile"),
                  HasSubstr(" " + Name() + "the sound server goes on"),
                  HasSubstr(" " + Name() + "stopped after ")));
}

TEST_P(DeviceServer, CountsWhatFailedInTheRoundInWhichItIsLost) {
  ASSERT_TRUE(m_device.Start());
  SleepMs(105);
  m_server.gaps = 3;
  m_server.takesNoBlock = true;
  m_server.there = GetParam() == Direction::kOutput;
  SleepMs(100);
  EXPECT_EQ(m_device.Failures(), 3U);
  m_server.takesNoBlock = false;
  m_server.gaps = 2;  // Of the next stream.
  m_server.there = true;
  SleepMs(2000);
  Stop();
  EXPECT_EQ(m_device.Failures(), 5U);
}

// Losing and finding a server, and the lines about it, are another thread's.
TEST_P(DeviceServer, AllocatesNothingOnTheDevicesThread) {
  ASSERT_TRUE(m_device.Start());
  SleepMs(100);
  WatchAllocationsOf(GetParam() == Direction::kOutput ? "loudspeaker" : "microphone");
  m_server.there = false;
  SleepMs(500);
  m_server.there = true;
  SleepMs(1000);
  m_server.suspended = true;
  SleepMs(100);
  EXPECT_EQ(WatchedAllocations(), 0U);
  Stop();
  EXPECT_EQ(m_log.Lines().size(), 5U);
  WatchAllocationsOf(nullptr);
}

INSTANTIATE_TEST_SUITE_P(Directions, DeviceServer,
                         testing::Values(Direction::kOutput, Direction::kInput),
                         [](const auto& name) {
                           return name.param == Direction::kOutput ? "Output" : "Input";
                         });

TEST(WatchAllocationsOf, NoticesThoseOfADevicesThread) {
  const desktop::StepClock clock;
  desktop::UseNullDevices(1);
  std::unique_ptr<int> value;
  AudioDevice device(Direction::kOutput, {},
                     [&](short*, size_t) { value = std::make_unique<int>(1); });
  WatchAllocationsOf("loudspeaker");
  ASSERT_TRUE(device.Start());
  SleepMs(95);
  EXPECT_GE(WatchedAllocations(), 10U);
  device.Stop();
  WatchAllocationsOf(nullptr);
}

}  // namespace
