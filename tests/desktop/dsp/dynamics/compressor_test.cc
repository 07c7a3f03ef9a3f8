#include "desktop/dsp/dynamics/compressor.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr int kRate = 16000;

// The gain after so many seconds of one level.
float After(desktop::Compressor& compressor, float level, double seconds) {
  float gain = 1;
  for (int i = 0; i < seconds * kRate; ++i) gain = compressor.Gain(level);
  return gain;
}

// 12 dB above the threshold become 4 dB.
TEST(Compressor, CompressesByItsRatio) {
  desktop::Compressor compressor(
      {.threshold = -24, .ratio = 3, .knee = 0, .attackMs = 5, .releaseMs = 100});
  compressor.Reset(kRate);
  EXPECT_EQ(After(compressor, 0.05F, 0.5), 1);
  EXPECT_NEAR(20 * std::log10(After(compressor, std::pow(10.0F, -12.0F / 20), 0.5)), -8, 0.01);
}

// A sound that is as loud as the one before the reset is compressed as that was, and one that is
// quiet not at all.
TEST(Compressor, ForgetsAllWhenItIsReset) {
  desktop::Compressor compressor(
      {.threshold = -24, .ratio = 3, .knee = 6, .attackMs = 5, .releaseMs = 100});
  compressor.Reset(kRate);
  const float loud = After(compressor, 0.5F, 0.5);
  EXPECT_LT(loud, 0.5F);
  compressor.Reset(kRate);
  EXPECT_EQ(compressor.Gain(0.01F), 1);
  After(compressor, 0.5F, 0.5);
  compressor.Reset(kRate);
  EXPECT_GT(compressor.Gain(0.5F), 0.97F);
  EXPECT_FLOAT_EQ(After(compressor, 0.5F, 0.5), loud);
}

// Between the peaks of a low tone the gain does not come back.
TEST(Compressor, KeepsASteadyGainThroughALowTone) {
  desktop::Compressor compressor(
      {.threshold = -24, .ratio = 3, .knee = 0, .attackMs = 1, .releaseMs = 5});
  compressor.Reset(kRate);
  After(compressor, 0.5F, 0.1);
  const float gain = compressor.Gain(0.5F);
  for (int i = 0; i < kRate / 2; ++i) {
    const double level = 0.5 * std::fabs(std::cos(2 * M_PI * 45 * i / kRate));
    ASSERT_NEAR(20 * std::log10(compressor.Gain(static_cast<float>(level)) / gain), 0, 0.03) << i;
  }
  // It does so once the tone is over.
  After(compressor, 0.01F, 0.012);
  EXPECT_GT(20 * std::log10(After(compressor, 0.01F, 0.005) / gain), 5);
}

// In the knee the slope grows from nothing, so that it ends in the straight line beyond.
TEST(Compressor, BendsThroughItsKnee) {
  const desktop::Compressor compressor(
      {.threshold = -24, .ratio = 3, .knee = 6, .attackMs = 5, .releaseMs = 100});
  EXPECT_EQ(compressor.Reduction(-24), 0);
  EXPECT_NEAR(compressor.Reduction(-21), 2.0 / 3 * 9 / 12, 1e-9);
  EXPECT_NEAR(compressor.Reduction(-18.0001), compressor.Reduction(-17.9999), 1e-3);
  EXPECT_NEAR(compressor.Reduction(-12), 2.0 / 3 * 9, 1e-9);
}

}  // namespace
