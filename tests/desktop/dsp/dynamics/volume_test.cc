#include "desktop/dsp/dynamics/volume.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

namespace {

uint32_t VolumeOfAll(size_t count, short value) {
  const std::vector<short> samples(count, value);
  return desktop::VolumeOf(samples.data(), count);
}

TEST(VolumeOf, GoesFromMinus60DecibelsToFullScale) {
  EXPECT_EQ(VolumeOfAll(100, 0), 0U);
  EXPECT_EQ(VolumeOfAll(0, 0), 0U);
  EXPECT_EQ(VolumeOfAll(100, 32), 0U);     // -60.2 dB.
  EXPECT_EQ(VolumeOfAll(100, 34), 0U);     // -59.7 dB.
  EXPECT_EQ(VolumeOfAll(100, 37), 1U);     // -58.9 dB.
  EXPECT_EQ(VolumeOfAll(100, 1040), 50U);  // -29.97 dB.
  EXPECT_EQ(VolumeOfAll(100, -1040), 50U);
  EXPECT_EQ(VolumeOfAll(1, 16384), 89U);  // -6.02 dB.
  EXPECT_EQ(VolumeOfAll(100, SHRT_MAX), 99U);
  EXPECT_EQ(VolumeOfAll(100, SHRT_MIN), 100U);
}

TEST(VolumeOf, TakesTheMeanPowerOfAllSamples) {
  std::vector<short> samples(100);
  samples.back() = SHRT_MIN;  // -20 dB.
  EXPECT_EQ(desktop::VolumeOf(samples.data(), samples.size()), 66U);
  EXPECT_EQ(desktop::VolumeOf(samples.data(), samples.size() - 1), 0U);
}

}  // namespace
