#include "audio_measures/activity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "audio_measures/active_level.h"
#include "audio_measures/figure.h"
#include "measures/noise.h"

namespace audio_measures {
namespace {

constexpr int kRate = 8000;
constexpr size_t kBlock = 160;

// Noise of 25 blocks, then as many without, and so on.
std::vector<float> Words(size_t blocks) {
  return Bursts(Noise(blocks * kBlock, 0.1, 1), 25 * kBlock, 25 * kBlock);
}

TEST(Activity, TalkHangsOverBy200MillisecondsAndAPauseEnds60Before) {
  const Activity activity = ActivityOf(Words(100), kRate);
  ASSERT_STREQ(activity.fault, "");
  ASSERT_EQ(activity.active.size(), 100U);
  for (size_t i = 0; i < 100; ++i) {
    const size_t place = i % 50;
    EXPECT_EQ(activity.active[i], place < 25) << i;
    EXPECT_EQ(activity.talk[i], place < 35) << i;
    // Nobody talks after the last block.
    EXPECT_EQ(activity.pause[i], place >= 35 && (i >= 50 || place < 47)) << i;
  }
}

TEST(Activity, ActiveIsAtMost15Point9DecibelsBelowTheActiveLevel) {
  for (const double above : {-0.3, 0.3}) {
    std::vector<float> words = Words(100);
    // The soft word is part of what the level is of.
    for (int i = 0; i < 4; ++i) {
      ActiveLevel level(kRate);
      level.Add(words);
      const double rms = std::pow(10, (*level.Level().value - 15.9 + above) / 20);
      std::fill_n(words.begin() + 40 * kBlock, 4 * kBlock, static_cast<float>(rms));
    }
    const Activity activity = ActivityOf(words, kRate);
    EXPECT_EQ(activity.active[41], above > 0) << above;
  }
}

TEST(Activity, InNoiseIsSixDecibelsAboveItsFloor) {
  const std::vector<float> noise = Noise(100 * kBlock, 0.01, 3);
  for (const double level : {0.015, 0.025}) {
    std::vector<float> noisy = noise;
    const std::vector<float> louder = Noise(10 * kBlock, level, 4);
    std::ranges::copy(louder, noisy.begin() + 50 * kBlock);
    const Activity activity = ActivityInNoise(noisy, kRate);
    EXPECT_EQ(activity.active[55], level > 0.02) << level;
    EXPECT_EQ(activity.pause[30], 1) << level;
  }
}

TEST(Activity, TheNoiseOfALineIsNoSpeech) {
  EXPECT_STREQ(ActivityOf(Noise(100 * kBlock, 0.00095, 1), kRate).fault,
               "nothing as loud as speech");
  EXPECT_STREQ(ActivityOf(Noise(100 * kBlock, 0.00105, 1), kRate).fault, "");
}

TEST(Activity, OfSilenceSaysWhyThereIsNone) {
  const std::vector<float> silence(100 * kBlock);
  EXPECT_STREQ(ActivityOf(silence, kRate).fault, kSilence);
  EXPECT_STREQ(ActivityInNoise(silence, kRate).fault, kSilence);
  EXPECT_TRUE(ActivityOf(silence, kRate).active.empty());
}

}  // namespace
}  // namespace audio_measures
