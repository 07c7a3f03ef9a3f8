// Pushing and fetching from two threads: a push waits for the fetch that is under way. The fetch is
// held where it allocates, in the middle of its work.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <new>
#include <thread>

#include "engine_api/mixing/audio_record_mixer.h"

namespace {

std::atomic<bool> g_isHeld = false;
std::atomic<bool> g_pushed = false;
std::atomic<bool> g_pushedMeanwhile = false;
thread_local bool t_holds = false;  // This thread's next allocation.

void* Allocate(size_t bytes) {
  if (t_holds) {
    t_holds = false;
    g_isHeld = true;
    // A push that does not wait is through long before.
    for (int i = 0; i < 300 && !g_pushed; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    g_pushedMeanwhile = g_pushed.load();
  }
  return std::malloc(bytes);
}

zuwebrtc::AudioFrame Frame(short sample) {
  zuwebrtc::AudioFrame frame;
  frame.samples_per_channel_ = 80;
  frame.sample_rate_hz_ = 8000;
  frame.num_channels_ = 1;
  std::fill_n(frame.data_, 80, sample);
  return frame;
}

}  // namespace

[[gnu::noinline]] void* operator new(size_t bytes) {
  if (void* memory = Allocate(bytes)) return memory;
  throw std::bad_alloc();
}
// In line they would seem to free what others have allocated.
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, size_t) noexcept { std::free(memory); }

TEST(AudioRecordMixer, PushesOnlyBetweenTwoFetches) {
  AudioRecordMixer mixer;
  mixer.PushAudioFrame(new zuwebrtc::AudioFrame(Frame(1)), 0);
  auto* const second = new zuwebrtc::AudioFrame(Frame(2));
  std::thread pusher([&] {
    while (!g_isHeld) std::this_thread::yield();
    mixer.PushAudioFrame(second, 0);
    g_pushed = true;
  });
  zuwebrtc::AudioFrame fetched = Frame(100);
  t_holds = true;
  mixer.GetMixedAudioFrame(fetched);
  EXPECT_TRUE(g_isHeld);
  EXPECT_FALSE(g_pushedMeanwhile);
  EXPECT_EQ(fetched.data_[0], 101);
  pusher.join();
  fetched = Frame(100);
  mixer.GetMixedAudioFrame(fetched);
  EXPECT_EQ(fetched.data_[0], 102);
}
