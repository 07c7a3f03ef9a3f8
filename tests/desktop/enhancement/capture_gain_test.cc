#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "engine_api/enhancement/audio_agc.h"
#include "engine_api/enhancement/webrtc_agc.h"
#include "support/allocation_count.h"
#include "support/captured_stderr.h"
#include "support/talk.h"

namespace {

struct Plain : ZUAudio::AudioAgc {
  using AudioAgc::AudioAgc;
  void Block(short* samples) { Process(samples); }
};

struct Capture : ZUAudio::WebrtcAgc {
  using WebrtcAgc::WebrtcAgc;
  void Block(short* samples) { ProcessCapture(samples, false); }
};

template <typename Control>
Samples Level(Samples samples, int rate, int channels, bool on = true) {
  Control control(rate, channels);
  control.EnableAGC(on);
  const auto block = static_cast<size_t>(rate * channels / 100);
  for (size_t at = 0; at + block <= samples.size(); at += block) control.Block(&samples[at]);
  return samples;
}

template <typename Control>
class CaptureGain : public testing::Test {};
using Controls = testing::Types<Plain, Capture>;
TYPED_TEST_SUITE(CaptureGain, Controls);

TYPED_TEST(CaptureGain, BringsSpeechOfAnyLevelToOneLevel) {
  for (const int rate : {8000, 16000, 44100, 48000}) {
    double loudest = -100;
    double quietest = 0;
    for (const double level : {-50.0, -35.0, -25.0, -16.0}) {
      const Samples out = Level<TypeParam>(Talk(rate, 9, 1, level), rate, 1);
      const double now = LevelDb(out, rate, 5, 9);
      loudest = std::max(loudest, now);
      quietest = std::min(quietest, now);
      for (const short sample : out) ASSERT_LT(std::abs(static_cast<int>(sample)), 32000);
    }
    EXPECT_LT(loudest - quietest, 3) << rate;
    EXPECT_GT(quietest, -30) << rate;
  }
}

TYPED_TEST(CaptureGain, PassesEveryBitWhenOff) {
  const Samples noise = Hiss(44100, 0.5, 2, -3);
  EXPECT_EQ(Level<TypeParam>(noise, 44100, 1, false), noise);
  TypeParam fresh(16000, 1);
  Samples block(noise.begin(), noise.begin() + 160);
  fresh.Block(block.data());
  EXPECT_TRUE(std::equal(block.begin(), block.end(), noise.begin()));
}

TYPED_TEST(CaptureGain, GivesAllChannelsOneGain) {
  Samples stereo;
  for (const short sample : Talk(44100, 5, 3, -40)) {
    stereo.insert(stereo.end(), {sample, static_cast<short>(sample / 4)});
  }
  const Samples out = Level<TypeParam>(stereo, 44100, 2);
  EXPECT_GT(LevelDb(out, 88200, 3, 4.9), LevelDb(stereo, 88200, 3, 4.9) + 6);
  for (size_t i = 0; i < out.size(); i += 2) ASSERT_NEAR(out[i + 1], out[i] / 4.0, 25) << i;
}

TYPED_TEST(CaptureGain, TouchesExactlyOneBlock) {
  TypeParam control(22050, 2);
  control.EnableAGC(true);
  for (int i = 0; i < 500; ++i) {
    Samples block = Talk(22050, 0.03, 4, -50);
    const Samples before = block;
    control.Block(block.data());
    ASSERT_TRUE(std::equal(block.begin() + 441, block.end(), before.begin() + 441));
  }
}

TYPED_TEST(CaptureGain, KeepsPausesQuietAndHasNoLag) {
  Samples speech = Talk(16000, 12, 5, -30);
  EXPECT_EQ(FindLag(speech, Level<TypeParam>(speech, 16000, 1), 300).samples, 0);
  std::fill(speech.begin() + 8 * 16000, speech.begin() + 10 * 16000, short{0});
  const Samples out = Level<TypeParam>(Sum(speech, Hiss(16000, 12, 6, -65)), 16000, 1);
  EXPECT_GT(LevelDb(out, 16000, 5, 8) - LevelDb(out, 16000, 8.1, 9.9), 22);
}

Samples After(double zeros, const Samples& sound) {
  Samples after(static_cast<size_t>(16000 * zeros));
  after.insert(after.end(), sound.begin(), sound.end());
  return after;
}

// The noise may start within a block, which is softer then.
TYPED_TEST(CaptureGain, DoesNotTakeNoiseAfterSilenceForSpeech) {
  for (const double zeros : {0.5, 0.5094, 3.0}) {
    const Samples noise = After(zeros, Hiss(16000, 6, 9, -60));
    EXPECT_NEAR(LevelDb(Level<TypeParam>(noise, 16000, 1), 16000, zeros, zeros + 6), -60, 0.1);
  }
}

TYPED_TEST(CaptureGain, LeavesSpeechAfterNoiseAfterSilenceInRange) {
  const auto firstSecond = [](double zeros) {
    Samples samples = After(zeros, Hiss(16000, 3, 10, -60));
    const Samples speech = Talk(16000, 3, 11, -25);
    samples.insert(samples.end(), speech.begin(), speech.end());
    return LevelDb(Level<TypeParam>(samples, 16000, 1), 16000, zeros + 3, zeros + 4);
  };
  EXPECT_NEAR(firstSecond(1), firstSecond(0), 1);
}

TYPED_TEST(CaptureGain, GoesOnWhenItIsSwitchedOnAgain) {
  TypeParam once(16000, 1);
  TypeParam again(16000, 1);
  once.EnableAGC(true);
  again.EnableAGC(true);
  Samples quiet = Talk(16000, 4, 12, -45);
  Samples other = quiet;
  for (size_t at = 0; at + 160 <= quiet.size(); at += 160) {
    once.Block(&quiet[at]);
    if (at == 32000) again.EnableAGC(true);
    again.Block(&other[at]);
  }
  EXPECT_EQ(other, quiet);
}

TYPED_TEST(CaptureGain, StartsAfreshWhenItWasOff) {
  const Samples quiet = Talk(16000, 3, 13, -45);
  TypeParam control(16000, 1);
  Samples runs[2];
  for (Samples& out : runs) {
    control.EnableAGC(true);
    out = quiet;
    for (size_t at = 0; at + 160 <= out.size(); at += 160) control.Block(&out[at]);
    control.EnableAGC(false);
  }
  EXPECT_EQ(runs[1], runs[0]);
}

TYPED_TEST(CaptureGain, PassesWhatItDoesNotKnowWithOneLine) {
  CapturedStderr log;
  const Samples noise = Hiss(96000, 0.1, 7, -50);
  EXPECT_EQ(Level<TypeParam>(noise, 96000, 1), noise);
  EXPECT_EQ(log.Lines().size(), 1u);
}

TYPED_TEST(CaptureGain, AllocatesNothingPerBlock) {
  TypeParam control(16000, 1);
  control.EnableAGC(true);
  short block[160] = {1000, -1000};
  const size_t before = AllocationCount();
  for (int i = 0; i < 100; ++i) control.Block(block);
  EXPECT_EQ(AllocationCount(), before);
}

TEST(CaptureGainEcho, TeachesNothing) {
  ZUAudio::WebrtcAgc control(16000, 1);
  control.EnableAGC(true);
  const Samples quiet = Talk(16000, 4, 8, -45);
  Samples out = quiet;
  for (size_t at = 0; at + 160 <= out.size(); at += 160) control.ProcessCapture(&out[at], true);
  EXPECT_EQ(out, quiet);
}

}  // namespace
