#include "desktop/enhancement/parts/activity_detector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <span>
#include <vector>

#include "support/signals.h"

namespace {

constexpr int kRate = 16000;
constexpr size_t kHop = 160;

// A background of white noise in which a louder noise sounds for `loud` of every `period` blocks,
// from the second second on.
struct Bursts {
  double decibels;
  size_t period;
  size_t loud;
};

std::vector<bool> Decisions(const Bursts& bursts, size_t blocks, bool silenceAfterwards = false) {
  const std::vector<double> noise = WhiteNoise(static_cast<int>(blocks * kHop), 0.1, 7);
  desktop::ActivityDetector detector(kRate, kHop);
  std::vector<bool> active;
  std::vector<float> block(kHop);
  for (size_t at = 0; at < blocks; ++at) {
    const bool loud = at >= 100 && at % bursts.period < bursts.loud;
    const bool silent = silenceAfterwards && at >= 100 && at % bursts.period == bursts.loud;
    double gain = loud ? 1000 * std::pow(10.0, bursts.decibels / 20) : 1000;
    if (silent) gain = 0;
    for (size_t i = 0; i < kHop; ++i) block[i] = static_cast<float>(gain * noise[at * kHop + i]);
    active.push_back(detector.Process(block, false));
  }
  return active;
}

// For how many blocks the decision holds on after a burst, the mean of the last five.
double HangOver(const Bursts& bursts, bool silenceAfterwards = false) {
  const size_t blocks = 20 * bursts.period;
  const std::vector<bool> active = Decisions(bursts, blocks, silenceAfterwards);
  size_t sum = 0;
  for (size_t burst = 15; burst < 20; ++burst) {
    const size_t begin = burst * bursts.period;
    for (size_t at = begin + bursts.loud; at < begin + bursts.period; ++at)
      sum += active[at] ? 1 : 0;
  }
  return static_cast<double>(sum) / 5;
}

// 1 block at 28 dB and above, 8 at 12 dB and below, and 4 in the middle, as the ratio follows the
// louder blocks. The transform of the first block after a burst still contains half of it.
TEST(ActivityDetector, HoldsOnForLongerInNoise) {
  EXPECT_NEAR(HangOver({40, 100, 40}), 2, 0.5);
  EXPECT_NEAR(HangOver({20, 100, 40}), 4.5, 1);
  EXPECT_NEAR(HangOver({9, 100, 40}), 9, 1);
}

struct Burst {
  double decibels;
  size_t blocks;
};

// For how many blocks the decision holds on after the last of these bursts, between which there are
// 0.6 s.
size_t HeldAfter(const std::vector<Burst>& bursts) {
  const std::vector<double> noise = WhiteNoise(static_cast<int>(600 * kHop), 0.1, 8);
  desktop::ActivityDetector detector(kRate, kHop);
  size_t from = 0;
  const auto hear = [&](double gain, size_t blocks) {
    size_t active = 0;
    std::vector<float> block(kHop);
    for (size_t at = 0; at < blocks; ++at) {
      for (float& sample : block) sample = static_cast<float>(gain * noise[from++]);
      active += detector.Process(block, false) ? 1 : 0;
    }
    return active;
  };
  hear(1000, 100);
  size_t held = 0;
  for (const Burst& burst : bursts) {
    hear(1000 * std::pow(10.0, burst.decibels / 20), burst.blocks);
    held = hear(1000, 60);
  }
  return held;
}

// A quarter of a second tells that it is quiet around, and 0.4 s in noise do not yet tell
// otherwise.
TEST(ActivityDetector, KnowsQuietWithinASyllableAndNoiseWithinSeconds) {
  EXPECT_LE(HeldAfter({{40, 25}}), 2U);
  EXPECT_LE(HeldAfter({{40, 25}, {9, 40}}), 3U);
  EXPECT_GE(HeldAfter({{40, 25}, {9, 40}, {9, 40}, {9, 40}, {9, 40}}), 7U);
}

TEST(ActivityDetector, DoesNotHoldOnAfterDigitalSilence) {
  EXPECT_LT(HangOver({9, 100, 40}, true), 1);
}

}  // namespace
