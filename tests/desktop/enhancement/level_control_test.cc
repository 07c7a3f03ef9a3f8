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

// Sound of one level, of which each tenth block is a background of -60 dB. `seconds` counts the
// sound alone. Returns the level that was measured then.
double LevelAfter(desktop::LevelControl& control, double decibels, double seconds) {
  const auto process = [&](double level) {
    std::vector<float> block(160, static_cast<float>(32768 * std::pow(10, level / 20)));
    control.Process(block.data(), block.size(), true);
  };
  for (int i = 0; i < 100 * seconds; ++i) {
    if (i % 9 == 0) process(-60);
    process(decibels);
  }
  return control.LevelDb();
}

desktop::LevelControl Control() { return {16000, desktop::LevelControl::Settings()}; }

// A louder talker is known within seconds, a softer one within some more. What is much softer may
// be the end of a sound in a hall, and hardly counts.
TEST(LevelControl, MeasuresLouderSoundSoonerThanSofter) {
  desktop::LevelControl control = Control();
  EXPECT_NEAR(LevelAfter(control, -30, 30), -30, 0.01);
  EXPECT_NEAR(LevelAfter(control, -20, 1.5), -30 + 10 * (1 - std::exp(-1)), 0.2);
  LevelAfter(control, -20, 30);
  EXPECT_NEAR(LevelAfter(control, -30, 6), -20 - 10 * (1 - std::exp(-1)), 0.2);
  LevelAfter(control, -20, 30);
  EXPECT_NEAR(LevelAfter(control, -45, 6), -20 - 25 * (1 - std::exp(-6.0 / 20)), 0.3);
}

// Sound has to stand 8 dB above the background.
TEST(LevelControl, TakesWhatIsLittleAboveTheBackgroundForBackground) {
  for (const double above : {6.5, 9.5}) {
    desktop::LevelControl control = Control();
    LevelAfter(control, -20, 10);
    const double level = LevelAfter(control, -60 + above, 10);
    if (above < 8) {
      EXPECT_NEAR(level, -20, 0.01);
    } else {
      EXPECT_LT(level, -25);
    }
  }
}

// A recording that starts too loud is turned down within a third of a second, not at one blow.
TEST(LevelControl, TurnsDownBy60DecibelsASecond) {
  desktop::LevelControl::Settings settings;
  settings.ceilingDb = 0;
  desktop::LevelControl control(16000, settings);
  std::vector<float> quiet(1600, 10.0f);
  control.Process(quiet.data(), quiet.size(), true);
  std::vector<float> block;
  for (int i = 0; i < 10; ++i) {
    block.assign(160, 16384.0f);
    control.Process(block.data(), block.size(), true);
  }
  EXPECT_NEAR(20 * std::log10(block.back() / 16384), -6, 0.3);
}

// After a peak the gain comes back by half a decibel each millisecond.
TEST(LevelControl, LetsGoOfAPeakWithoutAClick) {
  desktop::LevelControl::Settings settings;
  settings.adapts = false;
  settings.firstGainDb = 20;
  desktop::LevelControl control(16000, settings);
  std::vector<float> block(160, 20000.0f);
  control.Process(block.data(), block.size(), true);
  const float limited = block.back() / 20000;
  block.assign(160, 100.0f);
  control.Process(block.data(), block.size(), true);
  EXPECT_NEAR(20 * std::log10(block[15] / 100 / limited), 0.5, 0.05);
  EXPECT_NEAR(20 * std::log10(block[159] / 100 / limited), 5, 0.2);
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
