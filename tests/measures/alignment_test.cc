#include "audio_measures/alignment.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "measures/noise.h"

namespace audio_measures {
namespace {

constexpr int kRate = 48000;
constexpr size_t kLength = kRate;

std::vector<float> Scaled(std::vector<float> samples, float gain) {
  for (float& sample : samples) sample *= gain;
  return samples;
}

std::vector<float> WithNoise(std::vector<float> samples, double rms) {
  const std::vector<float> noise = Noise(samples.size(), rms, 99);
  for (size_t i = 0; i < samples.size(); ++i) samples[i] += noise[i];
  return samples;
}

Alignment Find(const std::vector<float>& reference, const std::vector<float>& signal) {
  return Align(reference, signal, kRate, -0.1, 0.5);
}

TEST(Alignment, OfTheSameSignalIsNothing) {
  const std::vector<float> noise = Noise(kLength, 0.1, 1);
  const Alignment same = Find(noise, noise);
  EXPECT_NEAR(*same.delay.value, 0, 1e-9);
  EXPECT_NEAR(*same.correlation.value, 1, 1e-6);
}

TEST(Alignment, FindsDelaysOfWholeSamples) {
  const std::vector<float> noise = Noise(kLength, 0.1, 1);
  for (const int delay : {1, 100, 11999, -1, -4800}) {
    std::vector<float> later(kLength);
    for (size_t i = 0; i < kLength; ++i) {
      const auto from = static_cast<int64_t>(i) - delay;
      if (from >= 0 && from < static_cast<int64_t>(kLength))
        later[i] = noise[static_cast<size_t>(from)];
    }
    EXPECT_NEAR(*Find(noise, later).delay.value * kRate, delay, 0.001) << delay;
  }
}

TEST(Alignment, FindsFractionsOfASample) {
  const std::vector<float> reference = Between(kLength, 0.1, 1, 0);
  for (const double delay : {0.1, 0.5, 0.9, 7.25, -3.7}) {
    const Alignment found = Find(reference, Between(kLength, 0.1, 1, delay));
    EXPECT_NEAR(*found.delay.value * kRate, delay, 0.01) << delay;
  }
}

TEST(Alignment, IsExactToATenthOfASampleInNoise20DecibelsBelow) {
  const std::vector<float> reference = Between(kLength, 0.1, 1, 0);
  const std::vector<float> signal = WithNoise(Between(kLength, 0.1, 1, 33.3), 0.01);
  const Alignment found = Find(reference, signal);
  EXPECT_NEAR(*found.delay.value * kRate, 33.3, 0.1);
  EXPECT_NEAR(*found.correlation.value, 1 / std::sqrt(1.01), 0.002);
}

TEST(Alignment, IsTheSameAtAnyGain) {
  const std::vector<float> noise = Noise(kLength, 0.1, 1);
  for (const float gain : {0.1F, -0.5F, 2.0F, -4.0F}) {
    const Alignment found = Find(noise, Scaled(noise, gain));
    EXPECT_NEAR(*found.correlation.value, 1, 1e-6);
    EXPECT_NEAR(*found.delay.value, 0, 1e-9);
  }
}

TEST(Alignment, IsNotClearForAStranger) {
  const std::vector<float> noise = Noise(kLength, 0.1, 1);
  EXPECT_STREQ(Find(noise, Noise(kLength, 0.1, 2)).delay.reason, "no clear delay");
}

TEST(Alignment, WhatCannotBeComputedSaysWhy) {
  const std::vector<float> noise = Noise(kLength, 0.1, 1);
  EXPECT_STREQ(Find({}, noise).delay.reason, kSilence);
  EXPECT_STREQ(Find(noise, {}).delay.reason, kSilence);
  EXPECT_STREQ(Find(noise, std::vector<float>(kLength)).correlation.reason, kSilence);
  const std::vector<float> least(noise.begin(), noise.begin() + 4096);
  const std::vector<float> shorter(noise.begin(), noise.begin() + 4095);
  EXPECT_TRUE(Find(least, least).correlation.value);
  EXPECT_STREQ(Find(shorter, shorter).correlation.reason, kTooShort);
}

}  // namespace
}  // namespace audio_measures
