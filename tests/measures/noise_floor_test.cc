#include "audio_measures/noise_floor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace audio_measures {
namespace {

constexpr int kRate = 8000;
constexpr size_t kBlock = 160;

// Blocks of 20 ms, each a square wave of one of the amplitudes.
std::vector<float> Blocks(const std::vector<float>& amplitudes) {
  std::vector<float> samples;
  for (const float amplitude : amplitudes) {
    for (size_t i = 0; i < kBlock; ++i) samples.push_back(i % 2 == 0 ? amplitude : -amplitude);
  }
  return samples;
}

Figure Floor(const std::vector<float>& samples) {
  NoiseFloor floor(kRate);
  floor.Add(samples);
  return floor.Floor();
}

// Eleven blocks: the tenth percentile is the second lowest. With twelve it lies a tenth of the way
// to the third.
TEST(NoiseFloor, IsTheTenthPercentileOfTheBlocks) {
  std::vector<float> amplitudes = {0.5F, 0.02F, 0.5F, 0.01F, 0.5F, 0.5F,
                                   0.5F, 0.5F,  0.5F, 0.5F,  0.5F};
  EXPECT_NEAR(*Floor(Blocks(amplitudes)).value, 20 * std::log10(0.02), 1e-5);
  amplitudes.push_back(0.04F);
  EXPECT_NEAR(*Floor(Blocks(amplitudes)).value, 20 * std::log10(0.022), 1e-5);
}

TEST(NoiseFloor, BlocksOfAnySizeMakeTheSameFigureAndALastPartDoesNotCount) {
  std::vector<float> samples = Blocks(std::vector<float>(20, 0.1F));
  samples.resize(samples.size() + kBlock - 1);  // Silence, were it a block.
  NoiseFloor floor(kRate);
  for (size_t i = 0; i < samples.size(); i += 77) {
    floor.Add(std::span(samples).subspan(i, std::min<size_t>(77, samples.size() - i)));
  }
  EXPECT_NEAR(*floor.Floor().value, -20, 1e-5);
}

std::string Reason(const Figure& figure) { return figure.value ? "a value" : figure.reason; }

TEST(NoiseFloor, WhatCannotBeComputedSaysWhy) {
  EXPECT_EQ(Reason(Floor({})), kNoSamples);
  EXPECT_EQ(Reason(Floor(Blocks(std::vector<float>(9, 0.1F)))), kTooShort);
  EXPECT_EQ(Reason(Floor(Blocks(std::vector<float>(10, 0.1F)))), "a value");
  EXPECT_EQ(Reason(Floor(Blocks(std::vector<float>(10, 0.0F)))), kSilence);
  std::vector<float> broken = Blocks(std::vector<float>(20, 0.1F));
  broken.back() = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(Reason(Floor(broken)), kNotFinite);
}

}  // namespace
}  // namespace audio_measures
