#include "desktop/enhancement/parts/level_control.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "desktop/enhancement/parts/noise_tracker.h"

namespace {

// A burst that begins where a part of a block does is turned down before it begins: clipped are no
// more of its samples than its peaks.
TEST(LevelControl, TurnsABurstDownBeforeItBegins) {
  desktop::LevelControl::Settings settings;
  settings.adapts = false;
  desktop::LevelControl control(16000, settings);
  std::vector<float> block(160, 10.0f);
  control.Process(block.data(), block.size(), true);
  std::fill(block.begin(), block.begin() + 80, 10.0f);
  std::fill(block.begin() + 80, block.end(), 60000.0f);
  control.Process(block.data(), block.size(), true);
  EXPECT_LT(block[79], 7.0f);
  EXPECT_GT(block[79], 4.0f);
}

// Noise may grow while somebody speaks, and no block is known to be noise alone.
TEST(NoiseTracker, LetsGrownNoiseIn) {
  desktop::NoiseTracker tracker(1, {4.0f, 0.9f, 0.7f});
  for (int i = 0; i < 50; ++i) tracker.Update(std::vector<float>{100.0f}, false);
  EXPECT_NEAR(tracker.Noise()[0], 100, 1);
  for (int i = 0; i < 3000; ++i) tracker.Update(std::vector<float>{1e5f}, false);
  EXPECT_GT(tracker.Noise()[0], 5e4f);
}

}  // namespace
