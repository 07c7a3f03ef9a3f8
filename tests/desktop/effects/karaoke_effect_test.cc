#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "engine_api/effects/audio_karaoke_effect_module.h"
#include "process_frames.h"
#include "support/captured_stderr.h"
#include "support/signals.h"
#include "support/tone.h"
#include "support/voice.h"

namespace {

using Shorts = std::vector<short>;

constexpr NreverbFv3Parameter kReverb = {3.6f, -17.7f, 3, 0.8f, 0.6f, 0, 0.2f, 2.1f, 0.6f, 16};
constexpr LimiterParameter kLimiter = {0, -2, 7, 90, 0, 1, 1, 0, 0, 1, 0};
constexpr NreverbFv3Parameter kDryReverb = {1, -100, 3, 0, 0, 0, 0, 1, 1, 0};
EqGains g_gains = {0, -5.7f, 0, -4.6f, 0, 4, 4, 3, 2, 1, 1.3f};

void SetUpAll(AudioKaraokeEffectModule& module) {
  module.EnableDrc(true);
  module.EnableEqReverb(true);
  module.SetEqualizerEnable(true);
  module.SetEqGains(g_gains, true);
  module.EnableReverbFv3(true);
  module.SetReverbFv3Param(kReverb);
  module.EnableLimiter(true);
  module.SetLimiterParameter(kLimiter);
}

TEST(KaraokeEffect, ChangesNoBitWhileAllIsOff) {
  const Shorts noise = ToShorts(WhiteNoise(44100, 1, 1));
  AudioKaraokeEffectModule module;
  module.SetEqGains(g_gains, true);
  module.SetReverbFv3Param(kReverb);
  module.SetLimiterParameter(kLimiter);
  EXPECT_EQ(ProcessFrames(module, noise, 44100, 2), noise);
}

// +4 dB of the band, +3 of the reverberation and +7 of the limiter reach the limiter unclipped.
TEST(KaraokeEffect, BringsAToneBetweenThresholdAndCeilingUndistorted) {
  for (const int rate : {16000, 44100, 48000}) {
    for (const bool drc : {false, true}) {
      AudioKaraokeEffectModule module;
      SetUpAll(module);
      module.EnableDrc(drc);
      const double amplitude = 32767 * std::pow(10.0, -1.0 / 20);
      const std::vector<double> out =
          ToDoubles(ProcessFrames(module, Tone(1000, amplitude, rate, rate * 4), rate, 1));
      const std::span<const double> steady(out.data() + rate * 3, static_cast<size_t>(rate));
      const double peak = Decibels(Peak(steady));
      EXPECT_GE(peak, -2) << rate;
      EXPECT_LE(peak, 0) << rate;
      EXPECT_LT(Thd(steady, 1000, rate), 0.003) << rate;
    }
  }
}

TEST(KaraokeEffect, DelaysByTheLookAheadOfItsLimiter) {
  for (const bool limiter : {false, true}) {
    AudioKaraokeEffectModule module;
    module.EnableLimiter(limiter);
    LimiterParameter parameter = kLimiter;
    parameter.fPreGain = 0;
    module.SetLimiterParameter(parameter);
    Shorts samples(4410);
    samples[1000] = 10000;
    const Shorts out = ProcessFrames(module, samples, 44100, 1);
    EXPECT_EQ(std::max_element(out.begin(), out.end()) - out.begin(), limiter ? 1044 : 1000);
    EXPECT_EQ(*std::max_element(out.begin(), out.end()), 10000);
  }
}

TEST(KaraokeEffect, AnswersEveryFrameFromTheFirstWithItsLength) {
  AudioKaraokeEffectModule module;
  SetUpAll(module);
  zuwebrtc::AudioFrame frame;
  frame.sample_rate_hz_ = 44100;
  frame.num_channels_ = 2;
  for (const int samples : {441, 441, 1, 882, 2646}) {
    frame.samples_per_channel_ = samples;
    EXPECT_EQ(module.Process(frame), static_cast<uint32_t>(samples));
  }
}

TEST(KaraokeEffect, CompressesFromMinus15At2To1) {
  for (const double level : {-40.0, -20.0, -9.0, -3.0}) {
    AudioKaraokeEffectModule module;
    module.EnableDrc(true);
    const double amplitude = 32767 * std::pow(10.0, level / 20);
    const Shorts in = Tone(1000, amplitude, 44100, 88200);
    const Shorts out = ProcessFrames(module, in, 44100, 1);
    if (level < -15) {
      EXPECT_EQ(out, in) << level;
      continue;
    }
    const double gain = Decibels(FitTone(out, 1000, 44100).amplitude / amplitude);
    EXPECT_NEAR(gain, -(level + 15) / 2, 0.1) << level;
  }
}

// The equaliser comes first: what it boosts the compressor takes back.
TEST(KaraokeEffect, HasItsStagesInOrder) {
  AudioKaraokeEffectModule module;
  module.EnableDrc(true);
  module.SetEqualizerEnable(true);
  EqGains gains = {0, 0, 0, 0, 0, 0, 12, 0, 0, 0, 0};
  module.SetEqGains(gains, false);
  module.EnableReverbFv3(true);
  module.SetReverbFv3Param(kDryReverb);
  module.EnableLimiter(true);
  LimiterParameter limiter = kLimiter;
  limiter.fPreGain = 3;
  module.SetLimiterParameter(limiter);
  const Shorts out = ProcessFrames(module, Tone(1000, 32768 * 0.1, 44100, 88200), 44100, 1);
  // -20 + 12 + 3 = -5; the compressor takes 5 of the 10 dB above -15; + 3 = -7.
  EXPECT_NEAR(Decibels(FitTone(out, 1000, 44100).amplitude / 32768), -7, 0.1);
}

TEST(KaraokeEffect, TakesEqualiserAndReverbOutTogether) {
  const Shorts noise = ToShorts(WhiteNoise(44100, 0.1, 1));
  AudioKaraokeEffectModule module;
  module.SetEqualizerEnable(true);
  module.SetEqGains(g_gains, true);
  module.EnableReverbFv3(true);
  EXPECT_NE(ProcessFrames(module, noise, 44100, 1), noise) << "they take part at first";
  module.EnableEqReverb(false);
  ProcessFrames(module, noise, 44100, 1);
  EXPECT_EQ(ProcessFrames(module, noise, 44100, 1), noise);
  module.SetEqualizerEnable(true);
  EXPECT_EQ(ProcessFrames(module, noise, 44100, 1), noise)
      << "their own switches do not count meanwhile";
  module.EnableEqReverb(true);
  EXPECT_NE(ProcessFrames(module, noise, 44100, 1), noise) << "and come back";
}

// What comes out of a tone of 201.25 Hz, to which a look-ahead of 5 ms makes little difference,
// while `change` is called ahead of every 100 ms.
template <typename Change>
Shorts WhileItChanges(AudioKaraokeEffectModule& module, Change change, double amplitude = 6000) {
  const Shorts in = Tone(201.25, amplitude, 44100, 44100);
  Shorts out;
  for (int turn = 0; turn < 10; ++turn) {
    change(turn);
    const auto begin = in.begin() + turn * 4410;
    const Shorts part = ProcessFrames(module, Shorts(begin, begin + 4410), 44100, 1);
    out.insert(out.end(), part.begin(), part.end());
  }
  return out;
}

// By its slope a jump shows, and a gap by the quietest 5 ms.
void ExpectNoClick(const Shorts& out, double lowestGain, double highestGain) {
  const double slope = 6000 * 2 * M_PI * 200 / 44100;
  EXPECT_LE(LargestStep(out), 1.1 * slope * highestGain);
  for (size_t at = 441; at + 220 <= out.size(); at += 220) {
    EXPECT_GE(Rms(ToDoubles({&out[at], 220})), 0.9 * lowestGain * 6000 / 32768 / std::sqrt(2))
        << at;
  }
}

// While a limiter that raises the sound goes on and off.
Shorts WhileItsLimiterSwitches() {
  AudioKaraokeEffectModule module;
  LimiterParameter limiter = kLimiter;
  limiter.fPreGain = 6;
  limiter.fLookahead = 5;
  module.SetLimiterParameter(limiter);
  return WhileItChanges(module, [&](int turn) { module.EnableLimiter(turn % 2 == 1); });
}

TEST(KaraokeEffect, SwitchesItsLimiterWithoutAClick) {
  ExpectNoClick(WhileItsLimiterSwitches(), 1, 2);
}

// A fade of 1 ms makes no jump either, but a tick: what lies far above a low tone.
TEST(KaraokeEffect, FadesItsLimiterWithoutATick) {
  const Shorts out = WhileItsLimiterSwitches();
  const std::vector<double> high = HighPassed(ToDoubles(out), 4000, 44100);
  EXPECT_LT(Peak(std::span(high).subspan(441)), 1e-4);
}

void SetLimiter(AudioKaraokeEffectModule& module, float lookahead, float preGain) {
  LimiterParameter limiter = kLimiter;
  limiter.fPreGain = preGain;
  limiter.fLookahead = lookahead;
  module.SetLimiterParameter(limiter);
}

TEST(KaraokeEffect, SetsItsLimiterWithoutAClick) {
  AudioKaraokeEffectModule later;
  later.EnableLimiter(true);
  const auto setLookahead = [&](int turn) { SetLimiter(later, turn % 2 == 1 ? 5 : 10, 0); };
  ExpectNoClick(WhileItChanges(later, setLookahead), 1, 1);
  AudioKaraokeEffectModule louder;
  louder.EnableLimiter(true);
  const auto setGain = [&](int turn) { SetLimiter(louder, 5, turn % 2 == 1 ? 9 : 0); };
  ExpectNoClick(WhileItChanges(louder, setGain), 1, 2.9);
}

TEST(KaraokeEffect, SwitchesItsCompressorWithoutAClick) {
  AudioKaraokeEffectModule module;
  const auto change = [&](int turn) { module.EnableDrc(turn % 2 == 1); };
  const Shorts out = WhileItChanges(module, change, 20000);
  EXPECT_LT(Rms(ToDoubles({&out[8000], 441})), 0.6 * Rms(ToDoubles({&out[4000], 441})));
  const Shorts in = Tone(201.25, 20000, 44100, 44100);
  EXPECT_LE(LargestStep(out), 1.02 * LargestStep(in));
  // 20 ms later it changes no bit.
  EXPECT_TRUE(std::equal(out.begin() + 8820 + 882, out.begin() + 13230, in.begin() + 8820 + 882));
}

// What a stage heard before it was switched off is neither heard again nor counts.
TEST(KaraokeEffect, ForgetsTheSoundFromBeforeAPause) {
  AudioKaraokeEffectModule module;
  LimiterParameter limiter = kLimiter;
  limiter.fPreGain = 0;
  limiter.fLookahead = 20;
  limiter.fRelease = 5000;
  module.SetLimiterParameter(limiter);
  module.EnableLimiter(true);
  module.EnableDrc(true);
  ProcessFrames(module, Tone(200, 32767, 44100, 44100), 44100, 1);
  module.EnableLimiter(false);
  module.EnableDrc(false);
  const Shorts silence(4410);
  ProcessFrames(module, silence, 44100, 1);
  module.EnableLimiter(true);
  module.EnableDrc(true);
  EXPECT_EQ(ProcessFrames(module, silence, 44100, 1), silence);
  // Neither the limiter's gain nor the compressor's is still on its way back.
  const Shorts soft = Tone(200, 3000, 44100, 4410);
  const Shorts out = ProcessFrames(module, soft, 44100, 1);
  EXPECT_EQ(Shorts(out.begin() + 882, out.end()), Shorts(soft.begin(), soft.end() - 882));
}

// A look-ahead that is set before the first sound holds from its first sample on.
TEST(KaraokeEffect, NeedsNoFadeAtTheStart) {
  AudioKaraokeEffectModule module;
  LimiterParameter limiter = kLimiter;
  limiter.fPreGain = 0;
  module.EnableLimiter(true);
  module.SetLimiterParameter(limiter);
  const Shorts in = Tone(200, 6000, 44100, 4410);
  const Shorts out = ProcessFrames(module, in, 44100, 1);
  EXPECT_EQ(Shorts(out.begin() + 44, out.end()), Shorts(in.begin(), in.end() - 44));
}

TEST(KaraokeEffect, RefusesFramesThatCannotBe) {
  CapturedStderr log;
  AudioKaraokeEffectModule module;
  SetUpAll(module);
  zuwebrtc::AudioFrame frame;
  EXPECT_EQ(module.Process(frame), 0u);
  frame.sample_rate_hz_ = 44100;
  frame.num_channels_ = 2;
  for (const int samples : {-1, 2647, 5292}) {
    frame.samples_per_channel_ = samples;
    EXPECT_EQ(module.Process(frame), 0u);
  }
  frame.samples_per_channel_ = 2646;
  EXPECT_EQ(module.Process(frame), 2646u);
  frame.num_channels_ = 20;
  frame.samples_per_channel_ = 100;
  EXPECT_EQ(module.Process(frame), 0u);
  EXPECT_EQ(log.Lines().size(), 1u) << log.Text();
}

}  // namespace
