// Devices whose sound server stands still, dies, or comes back.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include "desktop/devices/audio_device.h"
#include "desktop/live/wait.h"
#include "sound_server_fixture.h"

namespace {

using desktop::AudioDevice;
using desktop::Direction;
using std::chrono::milliseconds;

constexpr int kRate = 48000;

// Both directions at once, for as long as this lives.
struct BothDevices {
  BothDevices() { started = output.Start() && input.Start(); }
  // Whether both have moved on by so many blocks, in the end.
  bool Move(uint64_t blocks) const {
    const uint64_t played = output.Blocks() + blocks;
    const uint64_t heard = input.Blocks() + blocks;
    return WaitUntil([&] { return output.Blocks() >= played && input.Blocks() >= heard; });
  }
  AudioDevice output{Direction::kOutput, {kRate, 1}, [](short*, size_t) {}};
  AudioDevice input{Direction::kInput, {kRate, 1}, [](short*, size_t) {}};
  bool started = false;
};

TEST_F(SoundServerTest, ComesBackToAServerThatStoodStillForSeconds) {
  const BothDevices devices;
  ASSERT_TRUE(devices.started);
  ASSERT_TRUE(devices.Move(20));
  m_server.Pause();
  std::this_thread::sleep_for(milliseconds(3000));
  EXPECT_TRUE(WaitUntil([&] { return LinesWith("is lost, null device from now on") == 2; }));
  EXPECT_TRUE(devices.Move(20));
  m_server.GoOn();
  EXPECT_TRUE(WaitUntil([&] { return LinesWith("on the sound server from now on") == 2; }));
  EXPECT_TRUE(devices.Move(20));
  EXPECT_EQ(LinesWith("it does not answer"), 2) << m_log.Text();
}

TEST_F(SoundServerTest, ComesBackToAServerThatWasStartedAgain) {
  const BothDevices devices;
  ASSERT_TRUE(devices.started);
  ASSERT_TRUE(devices.Move(20));
  m_server.Kill();
  EXPECT_TRUE(WaitUntil([&] { return LinesWith("is lost, null device from now on") == 2; }));
  ASSERT_TRUE(m_server.StartAgain());
  EXPECT_TRUE(WaitUntil([&] { return LinesWith("on the sound server from now on") == 2; }));
  EXPECT_TRUE(devices.Move(20));
  EXPECT_EQ(LinesWith("is lost"), 2) << m_log.Text();
}

TEST_F(SoundServerTest, KeepsAServerThatSuspendsADevice) {
  const BothDevices devices;  // One plays where the other one listens.
  ASSERT_TRUE(devices.started);
  ASSERT_TRUE(devices.Move(20));
  ASSERT_EQ(system("pactl suspend-sink mic 1"), 0);  // NOLINT
  EXPECT_TRUE(WaitUntil([&] { return LinesWith("suspended by the sound server") == 2; }));
  EXPECT_TRUE(devices.Move(150));
  ASSERT_EQ(system("pactl suspend-sink mic 0"), 0);  // NOLINT
  EXPECT_TRUE(WaitUntil([&] { return LinesWith("the sound server goes on") == 2; }));
  EXPECT_TRUE(devices.Move(20));
  EXPECT_EQ(LinesWith("is lost"), 0) << m_log.Text();
}

// A process that a shell or a debugger has stopped.
TEST_F(SoundServerTest, KeepsItsServerWhileItIsStoppedItself) {
  const BothDevices devices;
  ASSERT_TRUE(devices.started);
  ASSERT_TRUE(devices.Move(20));
  const pid_t own = getpid();
  const pid_t helper = fork();
  ASSERT_GE(helper, 0);
  if (helper == 0) {
    kill(own, SIGSTOP);
    usleep(1'500'000);
    kill(own, SIGCONT);
    _exit(0);
  }
  waitpid(helper, nullptr, 0);
  EXPECT_TRUE(devices.Move(20));
  EXPECT_EQ(LinesWith("is lost"), 0) << m_log.Text();
}

}  // namespace
