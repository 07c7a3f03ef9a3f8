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

}  // namespace
