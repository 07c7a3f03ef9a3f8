#include "desktop/dsp/dynamics/limiter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "desktop/dsp/dynamics/sliding_maximum.h"
#include "support/signals.h"

namespace {

using Doubles = std::vector<double>;

constexpr LimiterParameter kVoice = {0, -2, 7, 90, 0, 1, 1, 0, 0, 1, 0};

Doubles Sine(double frequency, double decibels, int rate, double seconds) {
  Doubles samples;
  const double amplitude = std::pow(10.0, decibels / 20);
  for (int i = 0; i < seconds * rate; ++i) {
    samples.push_back(amplitude * std::sin(2 * std::numbers::pi * frequency * i / rate));
  }
  return samples;
}

std::vector<Doubles> Processed(const LimiterParameter& parameter, const std::vector<Doubles>& in,
                               int rate) {
  desktop::Limiter limiter;
  limiter.SetParameter(parameter);
  std::vector<std::vector<float>> rows;
  for (const Doubles& channel : in) rows.emplace_back(channel.begin(), channel.end());
  float* const pointers[] = {rows.front().data(), rows.back().data()};
  limiter.Process(pointers, static_cast<int>(in.size()), in[0].size(), rate);
  std::vector<Doubles> out;
  for (const auto& row : rows) out.emplace_back(row.begin(), row.end());
  return out;
}

double SteadyPeak(const Doubles& samples) {
  return Peak({samples.data() + samples.size() / 2, samples.size() / 2});
}

TEST(Limiter, PassesALevelUpToTheThresholdUnchanged) {
  LimiterParameter parameter = kVoice;
  parameter.fPreGain = 0;
  for (const int rate : {8000, 44100, 48000}) {
    const Doubles in = Sine(1000, -2.05, rate, 0.5);
    const Doubles out = Processed(parameter, {in}, rate)[0];
    const auto latency = static_cast<size_t>(std::lround(rate / 1000.0));
    for (size_t i = latency; i < out.size(); ++i) {
      ASSERT_NEAR(out[i], in[i - latency], 1e-6) << i;
    }
  }
}

TEST(Limiter, IsTrueToItsThresholdAndItsCeiling) {
  for (const float ceiling : {0.0f, -3.0f, -12.0f}) {
    for (const float knee : {0.0f, 2.0f, 10.0f}) {
      LimiterParameter parameter = kVoice;
      parameter.fCeiling = ceiling;
      parameter.fThreshold = ceiling - knee;
      parameter.fPreGain = 0;
      const double threshold = static_cast<double>(parameter.fThreshold);
      const double at =
          SteadyPeak(Processed(parameter, {Sine(997, threshold, 48000, 1)}, 48000)[0]);
      EXPECT_NEAR(Decibels(at), threshold, 0.1);
      parameter.fPreGain = 40;
      const double far = SteadyPeak(Processed(parameter, {Sine(997, 0, 48000, 1)}, 48000)[0]);
      EXPECT_NEAR(Decibels(far), static_cast<double>(ceiling), 0.1);
    }
  }
}

TEST(Limiter, NeverExceedsItsCeiling) {
  for (const float attack : {0.0f, 20.0f}) {
    for (const float rms : {0.0f, 50.0f}) {
      for (const float lookahead : {0.0f, 0.2f, 1.0f, 20.0f}) {
        LimiterParameter parameter = kVoice;
        parameter.fCeiling = -1;
        parameter.fPreGain = 30;
        parameter.fAttack = attack;
        parameter.fRMS = rms;
        parameter.fLookahead = lookahead;
        const Doubles out = Processed(parameter, {BurstNoise(48000, 1, 48000, 1)}, 48000)[0];
        EXPECT_LE(Decibels(Peak(out)), -1 + 1e-4);
      }
    }
  }
}

// With the look-ahead the gain is down before a peak comes; a gain that followed it late would have
// to be helped by cutting the peak off at the ceiling.
TEST(Limiter, DoesNotClipWhatItSeesComing) {
  Doubles in(4800, 0.01);
  const Doubles burst = Sine(1000, 0, 48000, 0.1);
  in.insert(in.end(), burst.begin(), burst.end());
  const auto atTheCeiling = [&](float attack) {
    LimiterParameter parameter = kVoice;
    parameter.fPreGain = 6;  // The curve leads to -0.1 dBFS.
    parameter.fAttack = attack;
    const Doubles out = Processed(parameter, {in}, 48000)[0];
    EXPECT_GT(Peak(out), 0.98);
    return std::count_if(out.begin(), out.end(), [](double v) { return v >= 0.9999; });
  };
  EXPECT_EQ(atTheCeiling(0), 0);
  EXPECT_GT(atTheCeiling(20), 0);
}

TEST(Limiter, DistortsTonesLittle) {
  LimiterParameter parameter = kVoice;
  parameter.fPreGain = 14;
  for (const double frequency : {60.0, 200.0, 1000.0}) {
    const Doubles out = Processed(parameter, {Sine(frequency, -1, 48000, 2)}, 48000)[0];
    EXPECT_LT(Thd({out.data() + 48000, 48000}, frequency, 48000), 0.002) << frequency;
  }
}

TEST(Limiter, RecoversWithItsRelease) {
  for (const float release : {30.0f, 90.0f, 300.0f}) {
    for (const int rate : {8000, 48000}) {
      LimiterParameter parameter = kVoice;
      parameter.fRelease = release;
      parameter.fPreGain = 0;
      parameter.fThreshold = parameter.fCeiling = -12;
      Doubles in(static_cast<size_t>(rate), 1.0);
      in.resize(static_cast<size_t>(rate * 3), 0.1);
      const Doubles out = Processed(parameter, {in}, rate)[0];
      // Gain 0.25 at first; after one time constant 1 / e of the way to 1 is left.
      const double wanted = 0.1 * (1 - (1 - 0.2512) / std::numbers::e);
      const auto at = std::find_if(out.begin() + rate + rate / 50, out.end(),
                                   [&](double value) { return value >= wanted; });
      const double took = 1000.0 * static_cast<double>(at - out.begin() - rate) / rate - 13;
      EXPECT_NEAR(took / static_cast<double>(release), 1, 0.1) << rate;
    }
  }
}

// With a ratio of 1 the gain takes the whole look-ahead to fall, with less it is down sooner.
TEST(Limiter, FallsOverItsShareOfTheLookAhead) {
  for (const float ratio : {0.0f, 0.25f, 0.5f, 1.0f}) {
    LimiterParameter parameter = kVoice;
    parameter.fThreshold = parameter.fCeiling = -12;
    parameter.fPreGain = 0;
    parameter.fLookahead = 20;
    parameter.fLookaheadRatio = ratio;
    Doubles in(4800, 0.1);
    in.resize(9600, 1.0);
    const Doubles out = Processed(parameter, {in}, 48000)[0];
    // The loud part is known from frame 4800 on and comes out at 5760.
    size_t down = 4800;
    while (out[down] > 0.1 * 0.2520) ++down;
    EXPECT_NEAR(static_cast<double>(down - 4800), static_cast<double>(ratio) * 960, 8) << ratio;
  }
}

TEST(Limiter, FallsWithItsAttack) {
  LimiterParameter parameter = kVoice;
  parameter.fAttack = 50;
  parameter.fPreGain = 0;
  parameter.fThreshold = parameter.fCeiling = -6;
  parameter.fRMS = 0;
  Doubles in(48000, 0.01);
  in.resize(96000, 0.9);
  desktop::Limiter limiter;
  limiter.SetParameter(parameter);
  const Doubles slow = Processed(parameter, {in}, 48000)[0];
  EXPECT_NEAR(Peak({slow.data() + 48000 + 48, 10}), 0.501, 0.01);  // Held by the ceiling meanwhile.
  EXPECT_NEAR(SteadyPeak(slow), 0.501, 0.01);
}

TEST(Limiter, MeasuresPowerWhenAskedTo) {
  LimiterParameter parameter = kVoice;
  parameter.fRMS = 20;
  parameter.fPreGain = 0;
  parameter.fThreshold = -20;
  parameter.fCeiling = -20;
  // A sine counts by its peak, so both ways agree on it; sparse clicks count for little.
  EXPECT_NEAR(Decibels(SteadyPeak(Processed(parameter, {Sine(1000, -3, 48000, 1)}, 48000)[0])), -20,
              0.3);
  parameter.fCeiling = 0;
  parameter.fThreshold = -6;
  Doubles clicks(48000, 0.0);
  for (size_t i = 0; i < clicks.size(); i += 4800) clicks[i] = 0.9;
  EXPECT_NEAR(Peak(Processed(parameter, {clicks}, 48000)[0]), 0.9, 0.001);
  parameter.fRMS = 0;
  EXPECT_LT(Peak(Processed(parameter, {clicks}, 48000)[0]), 0.8);
}

// A sine of 1 kHz through a limiter that has heard others before.
Doubles SineThrough(desktop::Limiter& limiter, double decibels, int rate, double seconds) {
  const Doubles sine = Sine(1000, decibels, rate, seconds);
  std::vector<float> row(sine.begin(), sine.end());
  float* const rows[] = {row.data()};
  limiter.Process(rows, 1, row.size(), rate);
  return {row.begin(), row.end()};
}

// A loud sound of one format does not make a quiet one of the next format softer.
TEST(Limiter, ForgetsTheSoundOfAnotherFormat) {
  LimiterParameter parameter = kVoice;
  parameter.fRelease = 1000;
  desktop::Limiter limiter;
  limiter.SetParameter(parameter);
  SineThrough(limiter, 6, 48000, 0.1);
  desktop::Limiter fresh;
  fresh.SetParameter(parameter);
  const Doubles quiet = SineThrough(fresh, -20, 44100, 0.1);
  EXPECT_NEAR(Decibels(SteadyPeak(quiet)), -20 + 7, 0.1);
  EXPECT_EQ(SineThrough(limiter, -20, 44100, 0.1), quiet);
}

// A tone of one level is brought to each threshold that is set, though its level stays.
TEST(Limiter, TakesANewThresholdInASteadySound) {
  for (const auto& [before, after] : {std::pair{-3.0F, -12.0F}, {-12.0F, -3.0F}}) {
    LimiterParameter parameter = {0, before, 0, 20, 0, 1, 1, 0, 0, 1, 0};
    desktop::Limiter limiter;
    double peak = 0;
    for (const float threshold : {before, after}) {
      parameter.fCeiling = parameter.fThreshold = threshold;
      limiter.SetParameter(parameter);
      peak = SteadyPeak(SineThrough(limiter, -1, 48000, 0.5));
    }
    EXPECT_NEAR(Decibels(peak), after, 0.1);
  }
}

TEST(Limiter, LinksTheChannels) {
  LimiterParameter parameter = kVoice;
  parameter.fPreGain = 0;
  parameter.fThreshold = parameter.fCeiling = -12;
  const Doubles loud = Sine(1000, 0, 48000, 0.5), soft = Sine(1000, -20, 48000, 0.5);
  const auto softPeak = [&](float link) {
    parameter.fStLink = link;
    return Decibels(SteadyPeak(Processed(parameter, {loud, soft}, 48000)[1]));
  };
  EXPECT_NEAR(softPeak(1), -32, 0.1);
  EXPECT_NEAR(softPeak(0), -20, 0.1);
  EXPECT_LT(softPeak(0.5f), -21);
  EXPECT_GT(softPeak(0.5f), -31);
}

TEST(Limiter, DelaysByItsLookAhead) {
  for (const int rate : {8000, 22050, 44100, 48000}) {
    for (const float lookahead : {0.0f, 0.2f, 1.0f, 5.0f}) {
      LimiterParameter parameter = kVoice;
      parameter.fLookahead = lookahead;
      parameter.fPreGain = 0;
      desktop::Limiter limiter;
      limiter.SetParameter(parameter);
      Doubles in(1000);
      in[100] = 0.5;
      const Doubles out = Processed(parameter, {in}, rate)[0];
      const int delay = limiter.Latency(rate);
      EXPECT_EQ(delay, std::lround(static_cast<double>(lookahead) * rate / 1000));
      EXPECT_EQ(std::max_element(out.begin(), out.end()) - out.begin(), 100 + delay);
    }
  }
}

TEST(Limiter, StaysFiniteAtTheLimitsOfItsParameters) {
  const float inf = std::numeric_limits<float>::infinity();
  for (const float v : {inf, -inf, std::nanf(""), 0.0f, 1e30f, -1e30f}) {
    const LimiterParameter parameter = {v, v, v, v, v, v, v, v, v, v, v};
    for (const int rate : {8000, 192000}) {
      const Doubles noise = WhiteNoise(rate, 1, 1);
      const Doubles out = Processed(parameter, {noise, noise}, rate)[1];
      ASSERT_TRUE(std::all_of(out.begin(), out.end(), [](double o) { return std::abs(o) <= 1; }));
    }
  }
}

TEST(SlidingMaximum, IsTheLargestOfTheWindow) {
  const Doubles noise = WhiteNoise(3000, 1, 1);
  for (const int window : {1, 2, 3, 17, 500}) {
    desktop::SlidingMaximum maximum;
    maximum.Reset(window);
    for (int i = 0; i < 3000; ++i) {
      double expected = 0;
      for (int k = std::max(0, i - window + 1); k <= i; ++k) {
        expected = std::max(expected, std::abs(noise[static_cast<size_t>(k)]));
      }
      ASSERT_EQ(maximum.Push(static_cast<float>(std::abs(noise[static_cast<size_t>(i)]))),
                static_cast<float>(expected));
    }
  }
}

// Averaged, a sine counts as its peak does: it is taken down to the ceiling and not clipped there.
TEST(Limiter, MeasuresTheMeanPowerOfASineAsItsPeak) {
  LimiterParameter parameter = kVoice;
  parameter.fThreshold = parameter.fCeiling = -12;
  parameter.fRMS = 100;
  const Doubles out = Processed(parameter, {Sine(1000, -16, 16000, 2)}, 16000)[0];
  EXPECT_NEAR(Decibels(SteadyPeak(out)), -12, 0.2);
  EXPECT_LT(Thd({&out[16000], 16000}, 1000, 16000), 0.03);
}

}  // namespace
