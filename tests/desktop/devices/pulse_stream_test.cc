// What a sound server says of gaps and delays, put into the mouth of a real one: its library's
// answers are exchanged at the linker's seam, so that nothing depends on when they come.

#include "desktop/devices/pulse_stream.h"

#include <gtest/gtest.h>
#include <pulse/pulseaudio.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

#include "desktop/devices/audio_device.h"
#include "desktop/live/file_player.h"
#include "desktop/live/microphone.h"
#include "desktop/platform/step_clock.h"
#include "support/captured_stderr.h"
#include "support/file_bytes.h"
#include "support/sound_server.h"
#include "support/temporary_directory.h"
#include "support/wav_bytes.h"

namespace {

constexpr short kHeard = 7;  // All samples that the server gives.

std::atomic<bool> g_hole = false;  // The next part that the server gives is one.
std::atomic<size_t> g_holeSamples = 0;
std::atomic<bool> g_underflow = false;  // The server tells one as soon as it can.
pa_stream_notify_cb_t g_toldOf = nullptr;
void* g_toldWith = nullptr;
std::atomic<pa_usec_t> g_latency = 50'000;  // What the server tells,
std::atomic<bool> g_isNegative = false;     // that it is less than nothing,
std::atomic<int> g_latencyResult = 0;       // or that it has not told.

}  // namespace

extern "C" {
int __real_pa_stream_peek(pa_stream* stream, const void** data, size_t* bytes);
size_t __real_pa_stream_writable_size(const pa_stream* stream);
void __real_pa_stream_set_underflow_callback(pa_stream* stream, pa_stream_notify_cb_t callback,
                                             void* data);

int __wrap_pa_stream_peek(pa_stream* stream, const void** data, size_t* bytes);
size_t __wrap_pa_stream_writable_size(pa_stream* stream);
void __wrap_pa_stream_set_underflow_callback(pa_stream* stream, pa_stream_notify_cb_t callback,
                                             void* data);
int __wrap_pa_stream_get_latency(pa_stream* stream, pa_usec_t* latency, int* isNegative);

int __wrap_pa_stream_peek(pa_stream* stream, const void** data, size_t* bytes) {
  static const std::vector<short> heard(1 << 20, kHeard);
  const int result = __real_pa_stream_peek(stream, data, bytes);
  if (result < 0 || *data == nullptr || *bytes == 0) return result;
  *data = heard.data();
  if (g_hole.exchange(false)) {
    *data = nullptr;
    g_holeSamples = *bytes / sizeof(short);
  }
  return result;
}

size_t __wrap_pa_stream_writable_size(pa_stream* stream) {
  if (g_toldOf != nullptr && g_underflow.exchange(false)) g_toldOf(stream, g_toldWith);
  return __real_pa_stream_writable_size(stream);
}

void __wrap_pa_stream_set_underflow_callback(pa_stream* stream, pa_stream_notify_cb_t callback,
                                             void* data) {
  g_toldOf = callback;
  g_toldWith = data;
  __real_pa_stream_set_underflow_callback(stream, callback, data);
}

int __wrap_pa_stream_get_latency(pa_stream* /*stream*/, pa_usec_t* latency, int* isNegative) {
  *latency = g_latency;
  *isNegative = g_isNegative ? 1 : 0;
  return g_latencyResult;
}
}

namespace {

using desktop::AudioDevice;
using desktop::Direction;

class PulseStreamTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!m_server.IsRunning()) GTEST_SKIP() << "pulseaudio is not installed";
    desktop::UseNullDevices(0);
  }
  void TearDown() override { desktop::UseNullDevices(1); }

  // Whether it comes does not depend on the machine, only when.
  template <typename Done>
  static bool Comes(const Done& done) {
    for (int i = 0; i < 60'000 && !done(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return done();
  }

  SoundServer m_server;
  const CapturedStderr m_log;
};

TEST_F(PulseStreamTest, HearsAHoleAsSilenceAndCountsIt) {
  std::mutex mutex;
  std::vector<short> heard;
  AudioDevice input(Direction::kInput, {48000, 1}, [&](short* samples, size_t frames) {
    const std::scoped_lock lock(mutex);
    heard.insert(heard.end(), samples, samples + frames);
  });
  ASSERT_TRUE(input.Start());
  ASSERT_TRUE(Comes([&] { return input.Blocks() > 30; }));
  EXPECT_EQ(input.LatencyMs(), 60U);  // A block of 10 ms has to be whole as well.
  g_hole = true;
  ASSERT_TRUE(Comes([&] { return !g_hole; }));
  const uint64_t before = input.Blocks();
  ASSERT_TRUE(Comes([&] { return input.Blocks() > before + 30; }));
  EXPECT_GE(input.Failures(), 1U);
  input.Stop();
  EXPECT_GT(g_holeSamples, 0U);
  EXPECT_EQ(std::count(heard.begin(), heard.end(), short{0}),
            static_cast<ptrdiff_t>(g_holeSamples));
  EXPECT_EQ(std::count(heard.begin(), heard.end(), kHeard),
            std::ssize(heard) - static_cast<ptrdiff_t>(g_holeSamples));
}

TEST(PulseStream, TellsTheLatencyThatTheServerTells) {
  const desktop::PulseStream stream(Direction::kOutput, {});
  EXPECT_EQ(stream.LatencyMs(), 50U);
  g_latency = 12'999;
  EXPECT_EQ(stream.LatencyMs(), 12U);
  g_isNegative = true;
  EXPECT_EQ(stream.LatencyMs(), 0U);
  g_latencyResult = -1;  // Nothing was given so far.
  EXPECT_EQ(stream.LatencyMs(), 0U);
  g_latency = 50'000;
  g_isNegative = false;
  g_latencyResult = 0;
}

TEST_F(PulseStreamTest, CountsAnUnderflowThatTheServerTells) {
  AudioDevice output(Direction::kOutput, {48000, 1},
                     [](short* samples, size_t frames) { std::fill_n(samples, frames, short{1}); });
  ASSERT_TRUE(output.Start());
  ASSERT_TRUE(Comes([&] { return output.Blocks() > 20; }));
  EXPECT_EQ(output.LatencyMs(), 50U);
  g_underflow = true;
  ASSERT_TRUE(Comes([&] { return !g_underflow; }));
  const uint64_t before = output.Blocks();
  ASSERT_TRUE(Comes([&] { return output.Blocks() > before + 20; }));
  EXPECT_GE(output.Failures(), 1U);
  output.Stop();
}

// Keeps the latest sample of the microphone path.
class LatestSample : public desktop::CaptureListener {
 public:
  void OnCaptured(const desktop::CapturedBlock& block) override {
    sample = block.samples[block.frames - 1];
    ++blocks;
  }
  std::atomic<int> sample = 0;
  std::atomic<int> blocks = 0;
};

// Cleaning takes the offset away that the server gives.
TEST_F(PulseStreamTest, HearsTheMicrophoneAsItIsOnceItIsNotCleanedAnyMore) {
  std::atomic<bool> cleans = true;
  LatestSample latest;
  desktop::Microphone microphone({48000, 1}, cleans);
  microphone.Add(&latest);
  ASSERT_TRUE(microphone.Start());
  EXPECT_TRUE(Comes([&] { return latest.blocks > 50; }));
  EXPECT_NE(latest.sample, kHeard);
  cleans = false;
  const int before = latest.blocks;
  EXPECT_TRUE(Comes([&] { return latest.blocks > before + 5; }));
  EXPECT_EQ(latest.sample, kHeard);
  microphone.Stop();
  microphone.Remove(&latest);
}

// On a clock that stands still the latency never passes, and a player whose last block was taken
// still plays.
TEST_F(PulseStreamTest, PlaysUntilTheLastBlockIsHeard) {
  const TemporaryDirectory directory;
  const desktop::StepClock clock;
  WriteFile("short.wav", WavBytes({.channels = 2, .rate = 48000}, std::vector<short>(9600, 5)));
  desktop::FilePlayer player;
  ASSERT_EQ(player.Open("short.wav"), desktop::FileFault::kNone);
  ASSERT_TRUE(player.Play());
  EXPECT_TRUE(Comes([&] { return player.PlayedMs() == 100; }));
  const desktop::AudioDevice& device = desktop::Loudspeaker::Shared().Device();
  const uint64_t before = device.Blocks();
  EXPECT_TRUE(Comes([&] { return !player.IsPlaying() || device.Blocks() > before + 30; }));
  EXPECT_TRUE(player.IsPlaying());
  player.Stop();
}

}  // namespace
