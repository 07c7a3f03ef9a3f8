#include "audio_measures/activity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

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

// The level while active is that of 25 blocks over 35 of them: 1.46 dB below that of the noise.
TEST(Activity, ActiveIsAtMost15Point9DecibelsBelowTheActiveLevel) {
  for (const double below : {-16.9, -17.9}) {
    std::vector<float> words = Words(100);
    const std::vector<float> soft = Noise(4 * kBlock, 0.1 * std::pow(10, below / 20), 2);
    std::ranges::copy(soft, words.begin() + 40 * kBlock);
    const Activity activity = ActivityOf(words, kRate);
    EXPECT_EQ(activity.active[41], below > -17.4) << below;
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

TEST(Activity, OfSilenceSaysWhyThereIsNone) {
  const std::vector<float> silence(100 * kBlock);
  EXPECT_STREQ(ActivityOf(silence, kRate).fault, kSilence);
  EXPECT_STREQ(ActivityInNoise(silence, kRate).fault, kSilence);
  EXPECT_TRUE(ActivityOf(silence, kRate).active.empty());
}

}  // namespace
}  // namespace audio_measures
