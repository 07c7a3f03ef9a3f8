#include "desktop/dsp/dynamics/sum_limiter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

std::vector<int16_t> Limited(const std::vector<int32_t>& sums, size_t channels) {
  desktop::SumLimiter limiter;
  std::vector<int16_t> out(sums.size());
  limiter.Process(sums.data(), sums.size() / channels, channels, out.data());
  return out;
}

TEST(SumLimiter, ChangesNoBitOfWhatIsInRange) {
  const std::vector<int32_t> sums = {32767, -32768, 0, 1, -32767};
  EXPECT_EQ(Limited(sums, 1), std::vector<int16_t>(sums.begin(), sums.end()));
}

// 50 ms at 44.1 kHz is the time after which 1/e of what was taken is left.
TEST(SumLimiter, WinsBackWhatIsMissingOfTheGainStepByStep) {
  std::vector<int32_t> sums(20001, 10000);
  sums[0] = 65534;
  const std::vector<int16_t> out = Limited(sums, 1);
  EXPECT_EQ(out[0], 32767);
  for (const int frame : {1, 100, 2205, 6615}) {
    const double gain = 1 - 0.5 * std::pow(1 - 1.0 / 2205, frame);
    EXPECT_NEAR(out[static_cast<size_t>(frame)], 10000 * gain, 2) << frame;
  }
  EXPECT_EQ(out.back(), 10000);
}

// By the second frame the gain is 0.25 + 0.75 / 2205.
TEST(SumLimiter, LowersAllChannelsForTheLoudestOfThem) {
  EXPECT_EQ(Limited({1000, -131068, 65534, 2000}, 2),
            (std::vector<int16_t>{250, -32767, 16406, 501}));
}

}  // namespace
