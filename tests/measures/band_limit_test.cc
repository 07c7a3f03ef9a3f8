#include "audio_measures/band_limit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string_view>
#include <vector>

#include "audio_measures/compute.h"
#include "measures/noise.h"

namespace audio_measures {
namespace {

constexpr int kRate = 48000;
constexpr size_t kLength = 4 * kRate;

// What of it lies below a frequency: a sinc in a window of Hann, 200 Hz from pass to stop.
std::vector<float> Below(const std::vector<float>& samples, double hertz) {
  constexpr int kReach = 480;
  std::vector<float> taps(2 * kReach + 1);
  for (int i = -kReach; i <= kReach; ++i) {
    const double place = 2 * M_PI * hertz * i / kRate;
    const double sinc = i == 0 ? 1 : std::sin(place) / place;
    const double window = 0.5 + 0.5 * std::cos(M_PI * i / (kReach + 1));
    taps[static_cast<size_t>(i + kReach)] = static_cast<float>(2 * hertz / kRate * sinc * window);
  }
  std::vector<float> filtered(samples.size());
  for (size_t i = kReach; i + kReach < samples.size(); ++i) {
    // Pointers, because each index is a call in a build that does not optimise.
    const float* sample = &samples[i - kReach];
    float sum = 0;
    for (const float tap : taps) sum += tap * *sample++;
    filtered[i] = sum;
  }
  return filtered;
}

TEST(BandLimit, IsWhereALowPassEnds) {
  const std::vector<float> input = Noise(kLength, 0.1, 1);
  for (const double hertz : {3400.0, 7000.0, 20000.0}) {
    EXPECT_NEAR(*BandLimit(input, Below(input, hertz), kRate).value, hertz, 150) << hertz;
  }
}

// Nine tenths of the energy are left: the gain of all is -0.46 dB.
TEST(BandLimit, What20DecibelsAreTakenOffIsLost) {
  const std::vector<float> input = Noise(kLength, 0.1, 1);
  const std::vector<float> low = Below(input, 21600);
  const std::vector<float> high = Sum(input, Later(low, 0, -1));
  for (const double decibels : {-19.9, -21.1}) {
    const std::vector<float> output = Sum(low, Later(high, 0, std::pow(10, decibels / 20)));
    EXPECT_NEAR(*BandLimit(input, output, kRate).value, decibels > -20 ? 24000 : 21600, 150);
  }
}

TEST(BandLimit, OfWhatKeepsEverythingIsThatOfTheInput) {
  const std::vector<float> white = Noise(kLength, 0.1, 1);
  EXPECT_DOUBLE_EQ(*BandLimit(white, white, kRate).value, kRate / 2.0);
  const std::vector<float> input = Between(kLength, 0.1, 1, 0);
  EXPECT_NEAR(*BandLimit(input, input, kRate).value, 0.4 * kRate, 150);
  EXPECT_NEAR(*BandLimit(input, Sum(input, Noise(kLength, 1e-4, 2)), kRate).value, 0.4 * kRate,
              150);
}

TEST(BandLimit, IsOfWhatTheInputHasWithin70DecibelsOfItsMaximum) {
  const std::vector<float> white = Noise(kLength, 0.1, 1);
  const std::vector<float> low = Below(white, 7000);
  const std::vector<float> high = Sum(white, Later(low, 0, -1));
  for (const double decibels : {-66.0, -74.0}) {
    const std::vector<float> input = Sum(low, Later(high, 0, std::pow(10, decibels / 20)));
    EXPECT_NEAR(*BandLimit(input, input, kRate).value, decibels > -70 ? 24000 : 7000, 1000);
  }
}

TEST(BandLimit, NeitherGainNorDelayCounts) {
  const std::vector<float> input = Noise(kLength, 0.1, 1);
  const std::vector<float> output = Below(input, 7000);
  const double limit = *BandLimit(input, output, kRate).value;
  EXPECT_NEAR(*BandLimit(input, Later(output, 5000, -0.001), kRate).value, limit, 20);
}

TEST(BandLimit, WhatIsConstantDoesNotCount) {
  const std::vector<float> input = Noise(kLength, 0.01, 1);
  std::vector<float> output = Below(input, 7000);
  const double limit = *BandLimit(input, output, kRate).value;
  for (float& sample : output) sample += 0.5F;
  EXPECT_NEAR(*BandLimit(input, output, kRate).value, limit, 5);
}

TEST(BandLimit, WhatCannotBeComputedSaysWhy) {
  const std::vector<float> noise = Noise(4096, 0.1, 1);
  const std::vector<float> shorter(noise.begin(), noise.end() - 1);
  const std::vector<float> silence(4096);
  EXPECT_TRUE(BandLimit(noise, noise, kRate).value);
  EXPECT_STREQ(BandLimit(noise, shorter, kRate).reason, kTooShort);
  EXPECT_STREQ(BandLimit(shorter, noise, kRate).reason, kTooShort);
  EXPECT_STREQ(BandLimit(noise, silence, kRate).reason, kSilence);
  EXPECT_STREQ(BandLimit(silence, noise, kRate).reason, kSilence);
}

TEST(BandLimit, IsComputedForEachChannel) {
  const std::vector<float> input = Noise(kLength, 0.1, 1);
  const std::vector<float> low = Below(input, 7000);
  const Inputs inputs = {.output = {kRate, {input, low}}, .input = {kRate, {input}}};
  const std::vector<NamedFigure> figures =
      Compute(inputs, std::vector<std::string_view>{"band_limit"});
  ASSERT_EQ(figures.size(), 3U);
  EXPECT_DOUBLE_EQ(*figures[0].figure.value, 24000);
  EXPECT_NEAR(*figures[1].figure.value, 7000, 150);
  EXPECT_NEAR(*figures[2].figure.value, 15500, 75);
}

}  // namespace
}  // namespace audio_measures
