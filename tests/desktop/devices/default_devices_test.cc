// The devices of a program that never chooses any: a program of its own, because others do.

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>

#include "desktop/devices/audio_device.h"
#include "desktop/platform/step_clock.h"
#include "engine_api/platform/clock.h"

namespace {

using desktop::Direction;

// A server that is not there.
class NoServer : public desktop::SoundStream {
 public:
  bool Connect(const std::atomic<bool>&) override { return false; }
  bool Wait(desktop::Time) override { return false; }
  bool IsSuspended() const override { return false; }
  bool WantsBlock() override { return false; }
  bool Give(const short*) override { return false; }
  bool Take(short*) override { return false; }
  const std::string& Fault() const override { return m_fault; }
  uint64_t Failures() const override { return 0; }
  uint32_t LatencyMs() const override { return 0; }

 private:
  const std::string m_fault = "there is none";
};

TEST(DefaultDevices, AskTheSoundServerFirst) {
  const desktop::StepClock clock;
  std::atomic<int> asked = 0;
  desktop::UseSoundStreams([&](Direction, desktop::DeviceFormat) {
    ++asked;
    return std::make_unique<NoServer>();
  });
  desktop::AudioDevice device(Direction::kOutput, {}, [](short*, size_t) {});
  ASSERT_TRUE(device.Start());
  SleepMs(505);
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(device.Blocks(), 51U);  // The null device's meanwhile; the first one is due at once.
  device.Stop();
  desktop::UseSoundStreams(nullptr);
}

}  // namespace
