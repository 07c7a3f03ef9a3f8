#include "audio_measures/near_sdr.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include "audio_measures/compute.h"
#include "measures/noise.h"

namespace audio_measures {
namespace {

constexpr int kRate = 8000;
constexpr size_t kLength = 10 * kRate;

// Talks in the first 5 of 10 s.
std::vector<float> Far() { return Bursts(Noise(kLength, 0.1, 1), kLength / 2, kLength / 2); }

double Measured(const std::vector<float>& near, const std::vector<float>& output) {
  return NearSdr(near, Far(), output, kRate, 1).value.value_or(-1000);
}

TEST(NearSdr, IsTheNearEndOverWhatIsAddedToIt) {
  const std::vector<float> near = Noise(kLength, 0.1, 2);
  EXPECT_NEAR(Measured(near, Sum(near, Noise(kLength, 0.01, 3))), 20, 0.1);
  EXPECT_NEAR(Measured(near, Sum(near, Noise(kLength, 0.2, 3))), -6.02, 0.1);
  EXPECT_DOUBLE_EQ(Measured(near, near), 120);
}

TEST(NearSdr, NeitherGainNorPolarityCounts) {
  const std::vector<float> near = Noise(kLength, 0.1, 2);
  const std::vector<float> output = Sum(near, Noise(kLength, 0.01, 3));
  EXPECT_NEAR(Measured(near, Later(output, 0, -0.25)), Measured(near, output), 1e-4);
}

// Half a sample off, noise up to 0.4 of the rate would have an SDR of 2.
TEST(NearSdr, IsTakenAtTheSameTimeToAFractionOfASample) {
  const std::vector<float> near = Between(kLength, 0.1, 2, 0);
  const std::vector<float> output = Between(kLength, 0.1, 2, 104.5);
  EXPECT_NEAR(Measured(near, Sum(output, Noise(kLength, 0.001, 3))), 40, 0.2);
}

// Half of the near end's frequencies are gone: as much is missing as is left.
TEST(NearSdr, WhatIsTakenOffTheNearEndCounts) {
  const std::vector<float> kept = Noise(kLength, 0.1, 2);
  EXPECT_NEAR(Measured(Sum(kept, Noise(kLength, 0.1, 4)), kept), 0, 0.1);
}

TEST(NearSdr, OnlyDoubleTalkCounts) {
  const std::vector<float> near = Noise(kLength, 0.1, 2);
  std::vector<float> output = Sum(near, Noise(kLength, 0.01, 3));
  const double alone = Measured(near, output);
  const std::vector<float> noise = Noise(kLength, 0.1, 4);
  for (size_t i = kLength / 2 + kRate / 4; i < kLength; ++i) output[i] = noise[i];
  EXPECT_NEAR(Measured(near, output), alone, 0.1);

  const std::vector<float> pausing = Bursts(near, 2 * kRate, kRate);
  std::vector<float> echo = Noise(kLength, 0.05, 3);
  for (size_t i = 0; i < kLength; ++i) {
    if (i % (3 * kRate) < 9 * kRate / 4) echo[i] *= 0.2F;
  }
  EXPECT_NEAR(Measured(pausing, Sum(pausing, echo)), alone, 1);
}

TEST(NearSdr, WhatCannotBeComputedSaysWhy) {
  const std::vector<float> far = Far();
  const std::vector<float> near = Noise(kLength, 0.1, 2);
  const std::vector<float> silence(kLength);
  EXPECT_STREQ(NearSdr(silence, far, near, kRate, 1).reason, kSilence);
  EXPECT_STREQ(NearSdr(near, silence, near, kRate, 1).reason, kSilence);
  EXPECT_STREQ(NearSdr(near, far, silence, kRate, 1).reason, kSilence);
  EXPECT_STREQ(NearSdr(near, far, Noise(kLength, 0.1, 5), kRate, 1).reason, "no clear delay");
  std::vector<float> later = near;
  std::fill_n(later.begin(), kLength * 3 / 4, 0.0F);
  EXPECT_STREQ(NearSdr(later, far, later, kRate, 1).reason, "no double talk");
}

TEST(NearSdr, IsComputedForEachChannel) {
  const std::vector<float> far = Far();
  const std::vector<float> near = Noise(kLength, 0.1, 2);
  const std::vector<float> noisy = Sum(near, Noise(kLength, 0.01, 3));
  const Inputs inputs = {
      .output = {kRate, {noisy, near}}, .far = {kRate, {far}}, .near = {kRate, {near}}};
  const std::vector<NamedFigure> figures =
      Compute(inputs, std::vector<std::string_view>{"near_sdr"});
  ASSERT_EQ(figures.size(), 3U);
  EXPECT_NEAR(*figures[0].figure.value, 20, 0.1);
  EXPECT_DOUBLE_EQ(*figures[1].figure.value, 120);
  EXPECT_NEAR(*figures[2].figure.value, 70, 0.1);
}

}  // namespace
}  // namespace audio_measures
