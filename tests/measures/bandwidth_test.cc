#include "audio_measures/bandwidth.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "measures/noise.h"

namespace audio_measures {
namespace {

constexpr int kRate = 48000;
constexpr double kBin = kRate / 4096.0;  // Hz

Bandwidth Of(const std::vector<float>& samples) {
  Bandwidth bandwidth(kRate);
  bandwidth.Add(samples);
  return bandwidth;
}

std::vector<float> Sine(double hertz, double amplitude) {
  std::vector<float> samples(kRate);
  for (size_t i = 0; i < samples.size(); ++i) {
    samples[i] =
        static_cast<float>(amplitude * std::sin(2 * M_PI * hertz * static_cast<double>(i) / kRate));
  }
  return samples;
}

TEST(Bandwidth, OfWhiteNoiseIsItsShareOfHalfTheRate) {
  const Bandwidth bandwidth = Of(Noise(size_t{20} * kRate, 0.1, 1));
  EXPECT_NEAR(*bandwidth.OfEnergy().value, 0.99 * kRate / 2, 20);
  EXPECT_DOUBLE_EQ(*bandwidth.Of40Db().value, kRate / 2.0);
}

// Noise that is flat up to 0.4 of the rate has 99 % of its energy below 0.99 of that.
TEST(Bandwidth, OfNoiseUpToALimitEndsThere) {
  const Bandwidth bandwidth = Of(Between(size_t{5} * kRate, 0.1, 1, 0));
  EXPECT_NEAR(*bandwidth.OfEnergy().value, 0.99 * 0.4 * kRate, 100);
  EXPECT_NEAR(*bandwidth.Of40Db().value, 0.4 * kRate, 100);
}

TEST(Bandwidth, ATone39DecibelsDownCountsAndOne41DownDoesNot) {
  const std::vector<float> low = Sine(50 * kBin, 0.5);
  EXPECT_NEAR(*Of(Sum(low, Sine(1000 * kBin, 0.5 * std::pow(10, -39.0 / 20)))).Of40Db().value,
              1000 * kBin, 2 * kBin);
  EXPECT_NEAR(*Of(Sum(low, Sine(1000 * kBin, 0.5 * std::pow(10, -41.0 / 20)))).Of40Db().value,
              50 * kBin, 3 * kBin);
}

TEST(Bandwidth, AToneOfTwoPercentOfTheEnergyCountsAndOneOfHalfAPercentDoesNot) {
  const std::vector<float> low = Sine(50 * kBin, 0.5);
  EXPECT_NEAR(*Of(Sum(low, Sine(1000 * kBin, 0.5 * std::sqrt(0.02)))).OfEnergy().value, 1000 * kBin,
              2 * kBin);
  EXPECT_NEAR(*Of(Sum(low, Sine(1000 * kBin, 0.5 * std::sqrt(0.005)))).OfEnergy().value, 50 * kBin,
              2 * kBin);
}

// All other bins stand for both signs of their frequency. 0.8 % of the energy is at half the rate.
TEST(Bandwidth, TheLastBinCountsOnce) {
  std::vector<float> samples = Sine(1000 * kBin, 0.5);
  const double amplitude = 0.5 * std::sqrt(0.008 / 0.992 / 2);
  for (size_t i = 0; i < samples.size(); ++i) {
    samples[i] += static_cast<float>(i % 2 == 0 ? amplitude : -amplitude);
  }
  EXPECT_NEAR(*Of(samples).OfEnergy().value, 1000 * kBin, 2 * kBin);
}

TEST(Bandwidth, WhatIsConstantDoesNotCount) {
  std::vector<float> samples = Sine(1000 * kBin, 0.1);
  const Bandwidth without = Of(samples);
  for (float& sample : samples) sample += 0.5F;
  EXPECT_NEAR(*Of(samples).OfEnergy().value, *without.OfEnergy().value, 0.1);
  EXPECT_NEAR(*Of(samples).Of40Db().value, *without.Of40Db().value, 1);
}

TEST(Bandwidth, BlocksOfAnySizeMakeTheSameFigures) {
  const std::vector<float> samples = Noise(kRate, 0.1, 2);
  Bandwidth bandwidth(kRate);
  for (size_t i = 0; i < samples.size(); i += 1000) {
    bandwidth.Add(std::span(samples).subspan(i, 1000));
  }
  EXPECT_EQ(*bandwidth.OfEnergy().value, *Of(samples).OfEnergy().value);
}

std::string Reason(const Figure& figure) { return figure.value ? "a value" : figure.reason; }

TEST(Bandwidth, WhatCannotBeComputedSaysWhy) {
  EXPECT_EQ(Reason(Of({}).OfEnergy()), kNoSamples);
  EXPECT_EQ(Reason(Of(Noise(4095, 0.1, 1)).Of40Db()), kTooShort);
  EXPECT_EQ(Reason(Of(Noise(4096, 0.1, 1)).Of40Db()), "a value");
  EXPECT_EQ(Reason(Of(std::vector<float>(kRate)).OfEnergy()), kSilence);
  std::vector<float> broken = Noise(kRate, 0.1, 1);
  broken.back() = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(Reason(Of(broken).OfEnergy()), kNotFinite);
  broken.front() = std::numeric_limits<float>::infinity();
  EXPECT_EQ(Reason(Of(broken).Of40Db()), kNotFinite);
}

}  // namespace
}  // namespace audio_measures
