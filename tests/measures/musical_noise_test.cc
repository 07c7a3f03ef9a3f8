#include "audio_measures/musical_noise.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "measures/noise.h"

namespace audio_measures {
namespace {

constexpr int kRate = 8000;
constexpr size_t kBlock = 256;  // 20 ms and more, a power of two.

Figure LogRatio(const std::vector<float>& before, const std::vector<float>& after) {
  MusicalNoise noise(kRate);
  noise.Add(before, after);
  return noise.LogRatio();
}

TEST(MusicalNoise, ALouderOrSofterNoiseIsNoMoreMusical) {
  const std::vector<float> noise = Noise(10 * kRate, 0.1, 1);
  EXPECT_DOUBLE_EQ(*LogRatio(noise, noise).value, 0);
  EXPECT_NEAR(*LogRatio(noise, Later(noise, 0, 0.01)).value, 0, 1e-4);
  EXPECT_NEAR(*LogRatio(noise, Noise(10 * kRate, 0.1, 2)).value, 0, 0.1);
}

// What is left of the powers for a share q of the time has moments of q times what they were, and a
// mean of q times: E[p^4] / E[p^2]^2 grows by 1 / q.
TEST(MusicalNoise, WhatIsLeftForPartOfTheTimeHasAKurtosisOfThatManyTimes) {
  const std::vector<float> noise = Noise(60 * kRate, 0.1, 1);
  for (const size_t parts : {2U, 4U}) {
    const std::vector<float> left = Bursts(noise, kRate, (parts - 1) * kRate);
    const double expected = std::log(static_cast<double>(parts));
    EXPECT_NEAR(*LogRatio(noise, left).value, expected, 0.1) << parts;
    EXPECT_NEAR(*LogRatio(left, noise).value, -expected, 0.1) << parts;
  }
}

// The powers of normal noise have an exponential distribution: 4! / (2!)^2 = 6. What repeats itself
// every half block has the same power in all blocks: 1.
TEST(MusicalNoise, TheKurtosisOfNormalNoiseIsSix) {
  const std::vector<float> part = Noise(kBlock / 2, 0.1, 1);
  std::vector<float> steady;
  for (int i = 0; i < 5000; ++i) steady.insert(steady.end(), part.begin(), part.end());
  const std::vector<float> noise = Noise(steady.size(), 0.1, 2);
  EXPECT_NEAR(*LogRatio(steady, noise).value, std::log(6), 0.05);
  EXPECT_NEAR(*LogRatio(noise, steady).value, -std::log(6), 0.05);
}

TEST(MusicalNoise, TheColourOfTheNoiseDoesNotCount) {
  const std::vector<float> noise = Noise(30 * kRate, 0.1, 1);
  std::vector<float> coloured(noise.size());
  for (size_t i = 1; i < noise.size(); ++i) {
    coloured[i] = noise[i] + 0.95F * coloured[i - 1];
  }
  EXPECT_NEAR(*LogRatio(noise, coloured).value, 0, 0.05);
}

TEST(MusicalNoise, BlocksOverlapByHalfWithinEachPart) {
  const std::vector<float> noise = Noise(kBlock * 17 / 2, 0.1, 1);
  const std::vector<float> shorter(noise.begin(), noise.end() - 1);
  EXPECT_TRUE(LogRatio(noise, noise).value);
  EXPECT_STREQ(LogRatio(shorter, shorter).reason, "too little pause");
  MusicalNoise parts(kRate);
  for (int i = 0; i < 16; ++i) {
    parts.Add(std::vector<float>(kBlock, 0.1F), std::vector<float>(kBlock, 0.1F));
    parts.Add(std::vector<float>(kBlock - 1, 0.1F), std::vector<float>(kBlock - 1, 0.1F));
  }
  EXPECT_STRNE(parts.LogRatio().reason, "too little pause");
}

TEST(MusicalNoise, OfNothingIsUnknown) {
  const std::vector<float> noise = Noise(kRate, 0.1, 1);
  const std::vector<float> silence(kRate);
  EXPECT_STREQ(LogRatio(noise, silence).reason, kSilence);
  EXPECT_STREQ(LogRatio(silence, noise).reason, kSilence);
}

}  // namespace
}  // namespace audio_measures
