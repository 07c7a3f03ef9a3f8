#include "audio_measures/level.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace audio_measures {
namespace {

Level Of(const std::vector<float>& samples) {
  Level level;
  level.Add(samples);
  return level;
}

std::vector<float> Sine(double amplitude, size_t samples, double offset = 0) {
  std::vector<float> sine(samples);
  for (size_t i = 0; i < samples; ++i) {
    const double angle = 2 * M_PI * static_cast<double>(i) / 48;
    sine[i] = static_cast<float>(offset + amplitude * std::sin(angle));
  }
  return sine;
}

TEST(Level, OfASineIsItsAmplitudeAndThreeDecibelsLess) {
  const Level level = Of(Sine(0.5, 4800));
  EXPECT_NEAR(*level.Peak().value, -6.0206, 1e-4);
  EXPECT_NEAR(*level.Rms().value, -6.0206 - 3.0103, 1e-4);
  EXPECT_NEAR(*level.Crest().value, 3.0103, 1e-4);
  EXPECT_NEAR(*level.Dc().value, 0, 1e-7);
}

TEST(Level, DcIsTheMeanAndCountsInTheRms) {
  const Level level = Of(Sine(0.5, 4800, -0.25));
  EXPECT_NEAR(*level.Dc().value, -0.25, 1e-6);
  EXPECT_NEAR(*level.Rms().value, 10 * std::log10(0.125 + 0.0625), 1e-4);
  EXPECT_NEAR(*level.Peak().value, 20 * std::log10(0.75), 1e-4);
}

TEST(Level, SwingIsFromTheLowestToTheHighest) {
  EXPECT_NEAR(*Of(Sine(0.25, 4800, 0.5)).Swing().value, 0.5, 1e-6);
  EXPECT_EQ(Of({0.5F}).Swing().value, 0);
  EXPECT_NEAR(*Of({0.5F, 0.75F}).Swing().value, 0.25, 1e-7);
}

TEST(Level, BlocksOfAnySizeMakeTheSameFigures) {
  const std::vector<float> sine = Sine(0.9, 5003, 0.01);
  const Level whole = Of(sine);
  for (const size_t size : {size_t{1}, size_t{7}, size_t{16}, size_t{1030}}) {
    Level level;
    const std::span<const float> samples = sine;
    for (size_t i = 0; i < sine.size(); i += size) {
      level.Add(samples.subspan(i, std::min(size, sine.size() - i)));
    }
    EXPECT_NEAR(*level.Rms().value, *whole.Rms().value, 1e-5) << size;
    EXPECT_EQ(level.Peak().value, whole.Peak().value) << size;
    EXPECT_NEAR(*level.Dc().value, *whole.Dc().value, 1e-6) << size;
  }
}

TEST(Level, PartsMakeTheFiguresOfTheWhole) {
  const std::vector<float> sine = Sine(0.3, 5000, 0.01);
  Level whole;
  whole.Add(sine);
  Level joined;
  joined.Add(Level());
  for (const size_t start : {0U, 1700U, 1701U}) {
    Level part;
    const size_t end = start == 0 ? 1700 : start == 1700 ? 1701 : sine.size();
    part.Add(std::span(sine).subspan(start, end - start));
    joined.Add(part);
  }
  EXPECT_DOUBLE_EQ(*joined.Peak().value, *whole.Peak().value);
  EXPECT_DOUBLE_EQ(*joined.Swing().value, *whole.Swing().value);
  EXPECT_NEAR(*joined.Rms().value, *whole.Rms().value, 1e-5);
  EXPECT_NEAR(*joined.Dc().value, *whole.Dc().value, 1e-8);
}

TEST(Level, OfOneSampleIsThatSample) {
  const Level level = Of({-0.1F});
  EXPECT_NEAR(*level.Peak().value, -20, 1e-5);
  EXPECT_NEAR(*level.Rms().value, -20, 1e-5);
  EXPECT_NEAR(*level.Dc().value, -0.1, 1e-7);
}

TEST(Level, ThePeakIsFoundInEveryPlace) {
  for (size_t place = 0; place < 40; ++place) {
    std::vector<float> samples(40, 0.1F);
    samples[place] = -0.7F;
    EXPECT_NEAR(*Of(samples).Peak().value, 20 * std::log10(0.7), 1e-5) << place;
  }
}

TEST(Level, WhatCannotBeComputedSaysWhy) {
  EXPECT_STREQ(Of({}).Rms().reason, kNoSamples);
  EXPECT_STREQ(Of({}).Dc().reason, kNoSamples);
  const Level silence = Of(std::vector<float>(100));
  EXPECT_STREQ(silence.Rms().reason, kSilence);
  EXPECT_STREQ(silence.Peak().reason, kSilence);
  EXPECT_EQ(silence.Dc().value, 0);
  for (const float odd :
       {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
    std::vector<float> samples(100, 0.5F);
    samples[50] = odd;
    EXPECT_STREQ(Of(samples).Peak().reason, kNotFinite);
    EXPECT_STREQ(Of(samples).Rms().reason, kNotFinite);
    EXPECT_EQ(Of(samples).Dc().value, std::nullopt);
  }
}

}  // namespace
}  // namespace audio_measures
