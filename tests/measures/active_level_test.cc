#include "audio_measures/active_level.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "measures/noise.h"

namespace audio_measures {
namespace {

// Noise that is on for `on` s and off for `off` s, `times` times.
std::vector<float> Bursts(int rate, double rms, double on, double off, int times) {
  const auto length = static_cast<size_t>(on * rate);
  const auto pause = static_cast<size_t>(off * rate);
  std::vector<float> bursts;
  for (int i = 0; i < times; ++i) {
    const std::vector<float> burst = Noise(length, rms, static_cast<unsigned>(i + 1));
    bursts.insert(bursts.end(), burst.begin(), burst.end());
    bursts.insert(bursts.end(), pause, 0.0F);
  }
  return bursts;
}

ActiveLevel Of(const std::vector<float>& samples, int rate) {
  ActiveLevel level(rate);
  level.Add(samples);
  return level;
}

TEST(ActiveLevel, OfWhatIsAlwaysOnIsItsRms) {
  for (const int rate : {8000, 44100, 192000}) {
    const ActiveLevel level = Of(Bursts(rate, 0.05, 4, 0, 1), rate);
    EXPECT_NEAR(*level.Level().value, 20 * std::log10(0.05), 0.1) << rate;
    EXPECT_NEAR(*level.Activity().value, 1, 0.02) << rate;
  }
}

// The envelope needs some hundredths of a second to rise and to fall, which the bursts make small.
TEST(ActiveLevel, ActivityIsTheTimeThatIsOnAndAFifthOfASecond) {
  const ActiveLevel level = Of(Bursts(16000, 0.05, 5, 5, 3), 16000);
  const double active = 5.2 / 10;
  EXPECT_NEAR(*level.Activity().value, active, 0.01);
  EXPECT_NEAR(*level.Level().value, 20 * std::log10(0.05) + 10 * std::log10(0.5 / active), 0.1);
}

TEST(ActiveLevel, PausesDoNotLowerIt) {
  const double few = *Of(Bursts(16000, 0.05, 2, 1, 4), 16000).Level().value;
  const double many = *Of(Bursts(16000, 0.05, 2, 6, 4), 16000).Level().value;
  EXPECT_NEAR(few, many, 0.01);
}

TEST(ActiveLevel, FollowsTheGainFromVerySoftToBeyondFullScale) {
  const double base = *Of(Bursts(16000, 0.05, 2, 1, 2), 16000).Level().value;
  for (const double gain : {-60.0, -20.0, 6.0, 20.0}) {
    const double rms = 0.05 * std::pow(10, gain / 20);
    const ActiveLevel level = Of(Bursts(16000, rms, 2, 1, 2), 16000);
    EXPECT_NEAR(*level.Level().value, base + gain, 0.05) << gain;
  }
}

TEST(ActiveLevel, BlocksOfAnySizeMakeTheSameFigure) {
  const std::vector<float> bursts = Bursts(16000, 0.05, 1, 1, 5);
  const double whole = *Of(bursts, 16000).Level().value;
  ActiveLevel level(16000);
  const std::span<const float> samples = bursts;
  for (size_t i = 0; i < bursts.size(); i += 77) {
    level.Add(samples.subspan(i, std::min<size_t>(77, bursts.size() - i)));
  }
  EXPECT_NEAR(*level.Level().value, whole, 1e-9);
}

// A sample by itself is taken in as the recommendation writes it down, many at once in blocks.
TEST(ActiveLevel, BlocksMakeTheFiguresOfSingleSamples) {
  for (const int rate : {100, 1000, 8000, 44100}) {
    std::vector<float> sound = Bursts(rate, 0.05, 0.7, 0.4, 5);
    for (size_t i = 0; i < sound.size(); ++i) {
      const double swell = std::sin(0.9 * M_PI * static_cast<double>(i) / rate);
      sound[i] *= static_cast<float>(std::pow(10, 2 * swell - 1));
    }
    ActiveLevel single(rate);
    for (const float& sample : sound) single.Add(std::span(&sample, 1));
    const ActiveLevel whole = Of(sound, rate);
    EXPECT_NEAR(*whole.Level().value, *single.Level().value, 1e-10) << rate;
    EXPECT_NEAR(*whole.Activity().value, *single.Activity().value, 1e-11) << rate;
  }
}

TEST(ActiveLevel, WhatCannotBeComputedSaysWhy) {
  EXPECT_STREQ(Of({}, 8000).Level().reason, kNoSamples);
  EXPECT_STREQ(Of(std::vector<float>(800), 8000).Activity().reason, kSilence);
  EXPECT_STREQ(Of({0.5F, std::numeric_limits<float>::quiet_NaN()}, 8000).Level().reason,
               kNotFinite);
  std::vector<float> click(48000);
  click[24000] = 0.9F;
  EXPECT_EQ(Of(click, 48000).Level().value, std::nullopt);
  EXPECT_EQ(Of({0.5F}, 48000).Level().value, std::nullopt);
}

}  // namespace
}  // namespace audio_measures
