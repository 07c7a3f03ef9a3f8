// The null device by the clock of the machine.

#include "support/real_time.h"

#include <atomic>
#include <chrono>
#include <cmath>
#include <thread>

#include "desktop/devices/audio_device.h"

namespace {

using desktop::AudioDevice;
using desktop::Direction;
using std::chrono::steady_clock;

TEST(NullDeviceInRealTime, TakesAndGivesAsManyBlocksAsTimePasses) {
  desktop::UseNullDevices(1);
  InRealTime time;
  for (const Direction direction : {Direction::kOutput, Direction::kInput}) {
    std::atomic<size_t> frames = 0;
    AudioDevice device(direction, {44100, 2}, [&](short*, size_t count) { frames += count; });
    const auto start = steady_clock::now();
    ASSERT_TRUE(device.Start());
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    device.Stop();
    const std::chrono::duration<double> took = steady_clock::now() - start;
    EXPECT_EQ(frames, 441 * device.Blocks());
    // It never runs ahead of the clock, however late it is.
    EXPECT_LE(static_cast<double>(device.Blocks()), took.count() * 100 + 1);
    const double heard = static_cast<double>(frames) / 44100;
    time.Expect(std::abs(heard - took.count()) < 0.03,
                std::to_string(heard) + " s within " + std::to_string(took.count()));
    time.Expect(device.Failures() == 0, std::to_string(device.Failures()) + " failures");
  }
  time.Judge();
}

}  // namespace
