#include <gtest/gtest.h>

#include <vector>

#include "desktop/dsp/dynamics/limiter.h"

// A limiter that is set while sound passes.

namespace {

TEST(Limiter, TakesANewShareOfTheLookAheadWhileItRuns) {
  LimiterParameter parameter{};
  parameter.fThreshold = parameter.fCeiling = -12;
  parameter.fRelease = 100;
  parameter.fLookahead = 20;
  desktop::Limiter limiter;
  limiter.SetParameter(parameter);
  std::vector<float> sound(4800, 0.1F);
  float* const rows[] = {sound.data()};
  limiter.Process(rows, 1, sound.size(), 48000);
  parameter.fLookaheadRatio = 1;
  limiter.SetParameter(parameter);
  limiter.Process(rows, 1, sound.size(), 48000);
  sound.assign(1, 1.0F);
  limiter.Process(rows, 1, 1, 48000);
  // From the frame on that makes the peak known the gain falls over the whole look-ahead.
  sound.assign(480, 0.1F);
  limiter.Process(rows, 1, 480, 48000);
  EXPECT_NEAR(sound.back(), 0.1 * (1 + 0.2512) / 2, 0.002);
}

}  // namespace
