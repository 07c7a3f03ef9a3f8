#include "engine_api/effects/drc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <vector>

#include "desktop/dsp/filters/linkwitz_riley.h"
#include "engine_api/effects/multiband_drc.h"
#include "process_frames.h"
#include "support/captured_stderr.h"
#include "support/signals.h"
#include "support/tone.h"

namespace {

using Shorts = std::vector<short>;

double Amplitude(double decibels) { return 32767 * std::pow(10.0, decibels / 20); }

Shorts Processed(Drc& drc, Shorts samples, int rate, int channels) {
  const int frames = rate / 100;
  const auto block = static_cast<size_t>(frames * channels);
  for (size_t at = 0; at + block <= samples.size(); at += block) {
    drc.Process(&samples[at], channels, frames);
  }
  return samples;
}

// Amplitude of the tone in the settled last second, dBFS.
double LevelOf(const Shorts& samples, double frequency, int rate) {
  const std::vector<double> sound = ToDoubles(samples);
  return Decibels(AmplitudeAt(
      {sound.data() + sound.size() - static_cast<size_t>(rate), static_cast<size_t>(rate)},
      frequency, rate));
}

TEST(DrcCurve, IsMonotoneNarrowerThanItsInputAndClean) {
  double previous = -200, lowest = 0, highest = 0;
  std::printf("in dBFS, out dBFS, THD %%:");
  for (int level = -50; level <= 0; level += 2) {
    Drc drc;
    const Shorts out = Processed(drc, Tone(1000, Amplitude(level), 48000, 96000), 48000, 1);
    const double outLevel = LevelOf(out, 1000, 48000);
    const std::vector<double> sound = ToDoubles(out);
    const double thd = Thd({sound.data() + 48000, 48000}, 1000, 48000);
    std::printf("  %d %.2f %.3f", level, outLevel, 100 * thd);
    EXPECT_GT(outLevel, previous);
    EXPECT_LE(outLevel, level + 0.02);
    EXPECT_LT(thd, 0.01) << level;
    // What the header says: 3:1 above a knee of 6 dB that begins at -24 dBFS.
    const double over = std::max(0, level + 24);
    const double taken = over < 6 ? over * over / 18 : (over - 3) * 2 / 3;
    EXPECT_NEAR(outLevel, level - taken, 0.1) << level;
    if (level == -50) lowest = outLevel;
    highest = previous = outLevel;
  }
  std::printf("\n");
  EXPECT_LT(highest - lowest, 44);
}

TEST(DrcCurve, DistortsLowTonesLittle) {
  for (const double frequency : {60.0, 100.0, 250.0}) {
    Drc drc;
    const std::vector<double> out =
        ToDoubles(Processed(drc, Tone(frequency, Amplitude(-1), 48000, 96000), 48000, 1));
    EXPECT_LT(Thd({out.data() + 48000, 48000}, frequency, 48000), 0.01) << frequency;
  }
}

TEST(DrcTest, ChangesNoBitBelowItsThreshold) {
  const Shorts noise = ToShorts(WhiteNoise(44100, 0.063, 1));  // -24.01 dBFS at most.
  Drc drc;
  EXPECT_EQ(Processed(drc, noise, 44100, 2), noise);
}

// Milliseconds until the gain (dB) is within 1 / e of its way, from a step of the input's level.
double StepTime(double from, double to, int rate, int channels) {
  Drc drc;
  Shorts samples;
  const auto add = [&](double level, int frames) {
    // A level of constant magnitude: every sample shows the gain.
    for (int i = 0; i < frames; ++i) {
      const double sign = i % 2 == 0 ? 1 : -1;
      samples.insert(samples.end(), static_cast<size_t>(channels),
                     static_cast<short>(sign * Amplitude(level)));
    }
  };
  add(from, rate);
  add(to, rate * 2);
  const Shorts out = Processed(drc, samples, rate, channels);
  const auto gain = [&](int frame) {
    const auto at = static_cast<size_t>(frame * channels);
    return Decibels(std::abs(static_cast<double>(out[at]) / samples[at]));
  };
  const double first = gain(rate - 1), last = gain(rate * 3 - 1);
  int frame = rate;
  while (std::abs(gain(frame) - last) > std::abs(first - last) / std::numbers::e) ++frame;
  return 1000.0 * (frame - rate) / rate;
}

TEST(DrcTest, HasTheSameTimesAtEveryRateAndChannelCount) {
  for (const int rate : {8000, 16000, 44100, 48000}) {
    for (const int channels : {1, 2}) {
      EXPECT_NEAR(StepTime(-40, -4, rate, channels), 5, 0.5) << rate << " x " << channels;
      EXPECT_NEAR(StepTime(-4, -26, rate, channels), 150 + 12, 15) << rate << " x " << channels;
    }
  }
}

TEST(DrcTest, GivesAllChannelsOneGain) {
  Shorts samples = Interleaved(Tone(1000, Amplitude(-2), 44100, 88200),
                               Tone(3000, Amplitude(-40), 44100, 88200));
  Drc drc;
  const Shorts out = Processed(drc, samples, 44100, 2);
  const double left = LevelOf(Channel(out, 2, 0), 1000, 44100) + 2;
  const double right = LevelOf(Channel(out, 2, 1), 3000, 44100) + 40;
  EXPECT_LT(left, -10);
  EXPECT_NEAR(left, right, 0.1);
}

TEST(DrcTest, DoesNothingToNothing) {
  Drc drc;
  short sample = 30000;
  CapturedStderr log;
  drc.Process(&sample, 0, 441);
  drc.Process(&sample, 2, 0);
  drc.Process(&sample, -1, -441);
  drc.Process(nullptr, 1, 1);
  EXPECT_TRUE(log.Lines().empty()) << log.Text();
  Shorts many(65 * 10, 30000);
  drc.Process(many.data(), 65, 10);
  drc.Process(many.data(), 65, 10);
  EXPECT_EQ(many, Shorts(65 * 10, 30000));
  EXPECT_EQ(log.Lines().size(), 1u) << log.Text();
}

TEST(DrcTest, TakesUnusualFormats) {
  for (const int channels : {3, 20, 64}) {
    Drc drc;
    Shorts loud(static_cast<size_t>(1920 * channels), 30000);
    drc.Process(loud.data(), channels, 1920);
    EXPECT_LT(loud.back(), 29000);
    EXPECT_GT(loud.back(), 0);
  }
}

TEST(MultibandSplit, SumsToAFlatSpectrum) {
  for (const int rate : {8000, 16000, 44100, 48000, 192000}) {
    desktop::ThreeBandSplit split;
    split.Reset(200, 3000, rate);
    std::vector<double> sum;
    for (int i = 0; i < rate; ++i) {
      double bands[3];
      split.Run(0, i == 0 ? 1 : 0, bands);
      sum.push_back(bands[0] + bands[1] + bands[2]);
    }
    for (double frequency = 20; frequency < 0.49 * rate; frequency *= 1.3) {
      double re = 0, im = 0;
      for (int i = 0; i < rate; ++i) {
        const double angle = 2 * std::numbers::pi * frequency * i / rate;
        re += sum[static_cast<size_t>(i)] * std::cos(angle);
        im += sum[static_cast<size_t>(i)] * std::sin(angle);
      }
      EXPECT_NEAR(Decibels(std::hypot(re, im)), 0, 0.01) << frequency << " at " << rate;
    }
  }
}

TEST(MultibandDrcTest, KeepsTheLevelBelowItsThresholds) {
  for (const double frequency : {40.0, 200.0, 600.0, 3000.0, 12000.0}) {
    MultibandDrc drc;
    drc.Init();
    const Shorts out = ProcessFrames(drc, Tone(frequency, Amplitude(-30), 44100, 88200), 44100, 1);
    EXPECT_NEAR(LevelOf(out, frequency, 44100), -30, 0.1) << frequency;
  }
}

TEST(MultibandDrcTest, CompressesEachBandBy3To1) {
  for (const double frequency : {60.0, 800.0, 9000.0}) {
    for (const double level : {-18.0, -6.0, 0.0}) {
      MultibandDrc drc;
      const Shorts out =
          ProcessFrames(drc, Tone(frequency, Amplitude(level), 44100, 88200), 44100, 1);
      EXPECT_NEAR(LevelOf(out, frequency, 44100), -24 + (level + 24) / 3, 0.5) << frequency;
    }
  }
}

TEST(MultibandDrcTest, LeavesOneBandAloneWhenAnotherIsLoud) {
  const double pairs[2][2] = {{9000, 60}, {60, 9000}};
  for (const auto& [soft, loud] : pairs) {
    const Shorts alone = Tone(soft, Amplitude(-45), 44100, 88200);
    const Shorts partner = Tone(loud, Amplitude(-3), 44100, 88200);
    Shorts both = alone;
    for (size_t i = 0; i < both.size(); ++i) both[i] = static_cast<short>(both[i] + partner[i]);
    MultibandDrc first, second;
    const double before = LevelOf(ProcessFrames(first, alone, 44100, 1), soft, 44100);
    const double after = LevelOf(ProcessFrames(second, both, 44100, 1), soft, 44100);
    EXPECT_NEAR(after, before, 0.1) << soft;
  }
}

TEST(MultibandDrcTest, GivesTheChannelsOneGainPerBand) {
  const Shorts samples =
      Interleaved(Tone(1000, Amplitude(-2), 44100, 88200), Tone(800, Amplitude(-40), 44100, 88200));
  MultibandDrc drc;
  const Shorts out = ProcessFrames(drc, samples, 44100, 2);
  const double left = LevelOf(Channel(out, 2, 0), 1000, 44100) + 2;
  EXPECT_LT(left, -10);
  EXPECT_NEAR(LevelOf(Channel(out, 2, 1), 800, 44100) + 40, left, 0.2);
}

// Milliseconds until the gain of a tone is within 1 / e of its way, from a step of its level.
double BandStepTime(double frequency, double from, double to) {
  constexpr int kRate = 48000;
  std::vector<double> squares(kRate * 3);
  // Sine and cosine: their squares add up to that of the envelope.
  for (const double phase : {0.0, std::numbers::pi / 2}) {
    Shorts tone;
    for (int i = 0; i < kRate * 3; ++i) {
      const double wave = std::sin(2 * std::numbers::pi * frequency * i / kRate + phase);
      tone.push_back(static_cast<short>(std::lround(Amplitude(i < kRate ? from : to) * wave)));
    }
    MultibandDrc drc;
    const Shorts out = ProcessFrames(drc, tone, kRate, 1);
    for (size_t i = 0; i < out.size(); ++i) squares[i] += static_cast<double>(out[i]) * out[i];
  }
  const auto gain = [&](int frame) {
    const double level = 10 * std::log10(squares[static_cast<size_t>(frame)] + 1e-9);
    return level - 20 * std::log10(Amplitude(frame < kRate ? from : to));
  };
  const double first = gain(kRate - 1), last = gain(kRate * 3 - 1);
  // From the end on, for the split itself swings at the step.
  int frame = kRate * 3 - 1;
  while (std::abs(gain(frame) - last) < std::abs(first - last) / std::numbers::e) --frame;
  return 1000.0 * (frame - kRate) / kRate;
}

// The release begins when the last peak no longer counts, after 12 ms; the split of the low band
// makes both a little longer.
TEST(MultibandDrcTest, HasTheTimesOfEachBand) {
  EXPECT_NEAR(BandStepTime(100, -40, -4), 10, 2);
  EXPECT_NEAR(BandStepTime(100, -4, -26), 200 + 12 + 20, 15);
  EXPECT_NEAR(BandStepTime(800, -40, -4), 5, 0.5);
  EXPECT_NEAR(BandStepTime(800, -4, -26), 150 + 12, 10);
  EXPECT_NEAR(BandStepTime(9000, -40, -4), 2, 0.3);
  EXPECT_NEAR(BandStepTime(9000, -4, -26), 80 + 12, 6);
}

TEST(MultibandDrcTest, StartsAnewWithEveryInit) {
  const Shorts noise = ToShorts(WhiteNoise(44100, 0.8, 1));
  MultibandDrc drc;
  drc.Init();
  const Shorts first = ProcessFrames(drc, noise, 44100, 1);
  EXPECT_NE(ProcessFrames(drc, noise, 44100, 1), first);
  drc.Init();
  drc.Init();
  EXPECT_EQ(ProcessFrames(drc, noise, 44100, 1), first);
}

// One channel after two, and two after one, at the same rate: all of them are compressed, and from
// the start.
TEST(MultibandDrcTest, StartsAnewWithOtherChannels) {
  const Shorts mono = ToShorts(WhiteNoise(22050, 0.8, 1));
  const Shorts stereo = Interleaved(mono, mono);
  MultibandDrc drc;
  drc.Init();
  const Shorts alone = ProcessFrames(drc, mono, 44100, 1);
  const Shorts both = ProcessFrames(drc, stereo, 44100, 2);
  EXPECT_EQ(Channel(both, 2, 0), alone);
  EXPECT_EQ(Channel(both, 2, 1), alone);
  EXPECT_EQ(ProcessFrames(drc, mono, 44100, 1), alone);
}

}  // namespace
