#include "audio_measures/clipped.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace audio_measures {
namespace {

constexpr float kFull = 32767.0F / 32768;

Clipped Of(const std::vector<float>& samples) {
  Clipped clipped(kFull);
  clipped.Add(samples);
  return clipped;
}

TEST(Clipped, ARunHasThreeSamplesOrMore) {
  EXPECT_EQ(Of({0, kFull, kFull, 0, kFull}).Samples(), 0U);
  const Clipped three = Of({0, 0.5F, kFull, kFull, kFull, 0});
  EXPECT_EQ(three.Samples(), 3U);
  EXPECT_EQ(three.Runs(), 1U);
  EXPECT_EQ(three.First(), 2U);
  EXPECT_DOUBLE_EQ(*three.Share().value, 0.5);
}

TEST(Clipped, LongerRunsCountEachSample) {
  const Clipped clipped = Of({-1, -1, -1, -1, -1, 0, kFull, 1, 1});
  EXPECT_EQ(clipped.Samples(), 8U);
  EXPECT_EQ(clipped.Runs(), 2U);
  EXPECT_EQ(clipped.First(), 0U);
}

TEST(Clipped, ARunHasOneSign) {
  EXPECT_EQ(Of({1, 1, -1, -1, 1, 1}).Samples(), 0U);
  EXPECT_EQ(Of({1, 1, -1, -1, -1}).First(), 2U);
}

TEST(Clipped, OneStepBelowFullScaleIsNotClipped) {
  const float below = 32766.0F / 32768;
  EXPECT_EQ(Of({below, below, below, -below, -below, -below}).Samples(), 0U);
}

TEST(Clipped, ARunGoesOnInTheNextBlock) {
  Clipped clipped(kFull);
  clipped.Add(std::vector<float>{0, 1});
  clipped.Add(std::vector<float>{1});
  clipped.Add(std::vector<float>{1, 0});
  EXPECT_EQ(clipped.Samples(), 3U);
  EXPECT_EQ(clipped.First(), 1U);
  EXPECT_DOUBLE_EQ(*clipped.Share().value, 0.6);
}

TEST(Clipped, RunsAreFoundAcrossWhatIsPassedOver) {
  std::vector<float> samples(2000, 0.5F);
  for (const size_t at : {254U, 255U, 256U, 767U, 768U, 1500U, 1501U, 1502U, 1503U})
    samples[at] = 1;
  Clipped clipped(1);
  clipped.Add(samples);
  EXPECT_EQ(clipped.Runs(), 2U);
  EXPECT_EQ(clipped.Samples(), 7U);
  EXPECT_EQ(clipped.First(), 254U);
  EXPECT_DOUBLE_EQ(*clipped.Share().value, 7.0 / 2000);
}

// Two samples at the end of what was looked at, one at the start of what comes later.
TEST(Clipped, WhatIsPassedOverEndsARun) {
  std::vector<float> samples(768, 0.5F);
  samples[254] = samples[255] = samples[512] = -1;
  Clipped clipped(1);
  clipped.Add(samples);
  EXPECT_EQ(clipped.Samples(), 0U);
}

TEST(Clipped, WhatIsNotFiniteEndsARun) {
  const float infinite = std::numeric_limits<float>::infinity();
  EXPECT_EQ(Of({1, 1, infinite, 1, 1, std::numeric_limits<float>::quiet_NaN(), 1}).Samples(), 0U);
}

TEST(Clipped, NothingHasNoShare) {
  EXPECT_STREQ(Of({}).Share().reason, kNoSamples);
  EXPECT_EQ(Of({1}).Share().value, 0);
}

}  // namespace
}  // namespace audio_measures
